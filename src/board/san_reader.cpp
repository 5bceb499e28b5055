#include "board/san_reader.h"

#include <string>

#include "board/legality.h"
#include "board/notation.h"

namespace varn {

namespace {

/// What the text says about the move; 0 if unspecified.
struct Description {
    char piece = 0;  // capital letter
    char from_file = 0;
    char from_rank = 0;
    bool captures = false;  // if unset the move may still be a capture
    std::string to;
    char promotion = 0;  // capital letter
};

bool contains(std::string_view letters, char c) { return letters.find(c) != std::string_view::npos; }
bool is_file(char c) { return c >= 'a' && c <= 'h'; }
bool is_rank(char c) { return c >= '1' && c <= '8'; }

void drop_end(std::string_view& text, std::string_view end) {
    if (text.ends_with(end)) text.remove_suffix(end.size());
}

/// The text without annotations.
std::string_view bare_text(std::string_view text) {
    const auto drop_signs = [&text] {
        while (!text.empty() && contains("+#!?", text.back())) text.remove_suffix(1);
    };
    drop_signs();
    for (const std::string_view mark : {"e.p.", "ep"}) drop_end(text, mark);
    drop_end(text, " ");
    drop_signs();
    return text;
}

/// The kind of castling, or `kind_invalid`.
std::uint8_t castling_kind(std::string_view text) {
    for (const std::string_view name : {"O-O", "0-0", "o-o"}) {
        if (text == name) return kind_kingside_castling;
        if (text == std::string(name) + std::string(name.substr(1))) return kind_queenside_castling;
    }
    return kind_invalid;
}

/// Removes "Q", "=Q", "/Q" or "(Q)" from the end; returns the capital letter or 0.
char take_promotion(std::string_view& text) {
    std::string_view rest = text;
    const bool bracketed = rest.ends_with(')');
    if (bracketed) rest.remove_suffix(1);
    if (rest.empty() || !contains("QRBNqrbn", rest.back())) return 0;
    const char letter = static_cast<char>(rest.back() & ~('a' ^ 'A'));
    rest.remove_suffix(1);
    if (bracketed != rest.ends_with('(')) return 0;
    if (rest.ends_with('(') || rest.ends_with('=') || rest.ends_with('/')) rest.remove_suffix(1);
    text = rest;
    return letter;
}

/// Removes and returns the first character if the test accepts it, else returns 0.
template <typename Test> char take_if(std::string_view& text, Test knows) {
    if (text.empty() || !knows(text.front())) return 0;
    const char c = text.front();
    text.remove_prefix(1);
    return c;
}

std::optional<Description> describe(std::string_view text) {
    constexpr std::size_t square_length = 2;
    Description move;
    move.promotion = take_promotion(text);
    if (text.size() < square_length) return std::nullopt;
    move.to = text.substr(text.size() - square_length);
    text.remove_suffix(square_length);

    move.piece = take_if(text, [](char c) { return contains("KQRBNP", c); });
    move.from_file = take_if(text, is_file);
    move.from_rank = take_if(text, is_rank);
    const char sign = take_if(text, [](char c) { return contains("x:-", c); });
    move.captures = sign == 'x' || sign == ':';
    return text.empty() ? std::optional(move) : std::nullopt;
}

/// Without a piece letter it is a pawn's move, unless the full from-square is given.
bool fits_piece(const Description& wanted, char piece) {
    if (wanted.piece != 0) return piece == wanted.piece;
    return piece == 'P' || (wanted.from_file != 0 && wanted.from_rank != 0);
}

bool fits(const Description& wanted, const Game& g, Move move) {
    const std::string from = square_text(move.from);
    const char piece = piece_letter(type_of(g.cells[move.from]));
    const bool captures = g.cells[move.to] != no_piece || move.kind == kind_en_passant;
    const char promotion = is_promotion(move.kind) ? piece_letter(type_of(move.kind)) : '\0';
    // A pawn's capture needs its file.
    if (piece == 'P' && captures && wanted.from_file == 0) return false;
    return wanted.to == square_text(move.to) && wanted.promotion == promotion && fits_piece(wanted, piece) &&
           (wanted.from_file == 0 || wanted.from_file == from[0]) &&
           (wanted.from_rank == 0 || wanted.from_rank == from[1]) && (captures || !wanted.captures);
}

/// The only legal move that passes the test.
template <typename Test> std::optional<Move> only_legal_move(const Game& game, Test passes) {
    std::optional<Move> found;
    for (const Move move : legal_moves(game)) {
        if (!passes(move)) continue;
        if (found) return std::nullopt;
        found = move;
    }
    return found;
}

}  // namespace

std::optional<Move> read_san(const Game& game, std::string_view text) {
    text = bare_text(text);
    const std::uint8_t castling = castling_kind(text);
    if (castling != kind_invalid) return only_legal_move(game, [=](Move move) { return move.kind == castling; });
    const auto wanted = describe(text);
    if (!wanted) return std::nullopt;
    return only_legal_move(game, [&](Move move) { return fits(*wanted, game, move); });
}

}  // namespace varn
