#include "board/san_reader.h"

#include <string>

#include "board/legality.h"
#include "board/notation.h"

namespace varn {

namespace {

/// What a text tells of a move; 0 for what it leaves open.
struct Description {
    char man = 0;  // capital letter
    char from_file = 0;
    char from_rank = 0;
    bool captures = false;  // it says so: a text that doesn't may mean a capture all the same
    std::string to;
    char promotion = 0;  // capital letter
};

bool contains(std::string_view letters, char c) { return letters.find(c) != std::string_view::npos; }
bool is_file(char c) { return c >= 'a' && c <= 'h'; }
bool is_rank(char c) { return c >= '1' && c <= '8'; }

void drop_end(std::string_view& text, std::string_view end) {
    if (text.ends_with(end)) text.remove_suffix(end.size());
}

/// Without what people add to a move's text.
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

/// The kind of a castling, or `kind_invalid` for any other text.
std::uint8_t castling_kind(std::string_view text) {
    for (const std::string_view name : {"O-O", "0-0", "o-o"}) {
        if (text == name) return kind_kingside_castling;
        if (text == std::string(name) + std::string(name.substr(1))) return kind_queenside_castling;
    }
    return kind_invalid;
}

/// Takes "Q", "=Q", "/Q" or "(Q)" off the end; gives the capital letter, 0 where there is none.
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

/// Takes a character off the front where it is one of those that the test knows; else gives 0.
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
    if (!is_file(move.to[0]) || !is_rank(move.to[1])) return std::nullopt;

    move.man = take_if(text, [](char c) { return contains("KQRBNP", c); });
    move.from_file = take_if(text, is_file);
    move.from_rank = take_if(text, is_rank);
    const char sign = take_if(text, [](char c) { return contains("x:-", c); });
    move.captures = sign == 'x' || sign == ':';
    return text.empty() ? std::optional(move) : std::nullopt;
}

/// A move without its piece's letter is a pawn's, unless it names the whole square that it starts from.
bool fits_man(const Description& wanted, char man) {
    if (wanted.man != 0) return man == wanted.man;
    return man == 'P' || (wanted.from_file != 0 && wanted.from_rank != 0);
}

bool fits(const Description& wanted, const Game& g, Move move) {
    const std::string from = square_text(move.from);
    const char man = piece_letter(man_of(g.cells[move.from]));
    const bool captures = g.cells[move.to] != no_piece || move.kind == kind_en_passant;
    const char promotion = is_promotion(move.kind) ? piece_letter(man_of(move.kind)) : '\0';
    // A pawn's capture names the file that the pawn leaves.
    if (man == 'P' && captures && wanted.from_file == 0) return false;
    return wanted.to == square_text(move.to) && wanted.promotion == promotion && fits_man(wanted, man) &&
           (wanted.from_file == 0 || wanted.from_file == from[0]) &&
           (wanted.from_rank == 0 || wanted.from_rank == from[1]) && (captures || !wanted.captures);
}

/// The one legal move of the position that passes the test.
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
