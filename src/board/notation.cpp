#include "board/notation.h"

#include <algorithm>
#include <cctype>

#include "board/attacks.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/movegen.h"
#include "board/status.h"

namespace varn {

namespace {

char lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

/// The character at the index, or 0 past the end.
char char_at(std::string_view text, std::size_t index) { return index < text.size() ? text[index] : '\0'; }

/// A square from letter and digit, unchecked: 8-bit arithmetic, so most invalid input gives a number above 63.
std::uint8_t raw_square(char letter, char digit) {
    return static_cast<std::uint8_t>((digit - '1') * 8 + ('h' - lower(letter)));
}

int code_on(const Game& g, int square) { return square < square_count ? g.cells[square] : no_piece; }

/// The kind of a promotion to the letter's piece, or `kind_invalid`.
std::uint8_t promotion_kind(char letter, Side side) {
    switch (lower(letter)) {
        case 'q': return static_cast<std::uint8_t>(code_of(side, queen));
        case 'r': return static_cast<std::uint8_t>(code_of(side, plain_rook));
        case 'n': return static_cast<std::uint8_t>(code_of(side, knight));
        case 'b': return static_cast<std::uint8_t>(code_of(side, bishop));
        default: return kind_invalid;
    }
}

/// The kind of castling, or `kind` if the king's move isn't castling.
std::uint8_t king_move_kind(int from, int to, std::uint8_t kind) {
    for (const int home : {static_cast<int>(e1), static_cast<int>(e8)}) {
        if (from != home) continue;
        if (to == home - 2) return kind_kingside_castling;
        if (to == home + 2) return kind_queenside_castling;
    }
    return kind;
}

template <Side S> bool is_double_step(int from, int to) {
    return rank_of(from) == own_rank<S>(2) && rank_of(to) == own_rank<S>(4);
}

std::uint8_t pawn_move_kind(const Game& g, int from, int to, std::uint8_t kind) {
    if (to >= square_count) return kind;
    const bool white = side_of(g.cells[from]) == Side::white;
    if (white ? is_double_step<Side::white>(from, to) : is_double_step<Side::black>(from, to)) return kind_double_step;
    const bool onto_enpassant = g.cells[to] == no_piece && (bit_mask(to) & g.enpassant) != 0;
    return onto_enpassant && file_of(from) != file_of(to) ? kind_en_passant : kind;
}

/// Whether another piece of the same type can legally move to the same square.
bool is_ambiguous(const Game& game, Move move) {
    return std::ranges::any_of(legal_moves(game), [&](Move rival) {
        return rival.to == move.to && rival.from != move.from &&
               same_mover(game.cells[rival.from], game.cells[move.from]);
    });
}

/// Whether another piece of the same type is on the line, even if it cannot reach the target.
bool rival_on_line(const Game& g, int from, Bitboard line) {
    Bitboard pieces = occupied(g) & line & not_bit(from);
    while (pieces != 0) {
        if (same_mover(g.cells[pop_first(pieces)], g.cells[from])) return true;
    }
    return false;
}

std::string disambiguation(const Game& game, Move move) {
    if (!is_ambiguous(game, move)) return "";
    std::string name = square_text(move.from);
    if (!rival_on_line(game, move.from, file_masks[file_of(move.from)])) return name.substr(0, 1);
    if (!rival_on_line(game, move.from, rank_masks[rank_of(move.from)])) return name.substr(1, 1);
    return name;
}

/// Mate on the hundredth ply of the fifty-move count is a draw here, so it gets no mate sign.
std::string check_sign(const Game& game, Move move) {
    Game after = game;
    make_move(after, move);
    if (status_of(after, {GameStatus::fifty_moves, GameStatus::mate}) == GameStatus::mate) return "#";
    return in_check(after) ? "+" : "";
}

}  // namespace

char piece_letter(int code) {
    constexpr std::string_view letters = "KQBNRRRP";
    const char letter = letters[static_cast<std::size_t>(type_of(code))];
    return side_of(code) == Side::white ? letter : lower(letter);
}

std::string square_text(int square) {
    if (square < 0 || square >= square_count) return "??";
    return {static_cast<char>('h' - (square & 7)), static_cast<char>('1' + (square >> 3))};
}

int square_from_text(std::string_view text) {
    const char letter = lower(char_at(text, 0));
    const char digit = char_at(text, 1);
    if (letter < 'a' || letter > 'h' || digit < '1' || digit > '8') return -1;
    return raw_square(letter, digit);
}

Move parse_move(const Game& g, std::string_view text) {
    Move move = {raw_square(char_at(text, 0), char_at(text, 1)), raw_square(char_at(text, 2), char_at(text, 3)),
                 kind_quiet};
    if (code_on(g, move.to) != no_piece) move.kind = kind_capture;
    const char fifth = char_at(text, 4);
    if (fifth != '\n' && fifth != '\0') move.kind = promotion_kind(fifth, g.turn);

    const int mover = code_on(g, move.from);
    if (mover == no_piece) return move;
    if (type_of(mover) == king) move.kind = king_move_kind(move.from, move.to, move.kind);
    if (type_of(mover) == pawn) move.kind = pawn_move_kind(g, move.from, move.to, move.kind);
    return move;
}

bool names_two_squares(std::string_view text) {
    return square_from_text(text) >= 0 && text.size() >= 2 && square_from_text(text.substr(2)) >= 0;
}

// A fifth letter is accepted only for promotions: the text must be what `move_text` would write.
std::optional<Move> read_move(const Game& game, std::string_view text) {
    if ((text.size() != 4 && text.size() != 5) || !names_two_squares(text)) return std::nullopt;
    const Move move = parse_move(game, text);
    const bool is_written_so =
        std::ranges::equal(text, move_text(move), [](char read, char written) { return lower(read) == written; });
    return is_written_so && is_valid_move(game, move) ? std::optional(move) : std::nullopt;
}

std::string move_text(Move move) {
    std::string text = square_text(move.from) + square_text(move.to);
    if (is_promotion(move.kind)) text += lower(piece_letter(move.kind));
    return text;
}

std::string san_text(const Game& g, Move move) {
    if (move.kind == kind_kingside_castling) return "O-O";
    if (is_castling(move.kind)) return "O-O-O";

    const PieceType mover = type_of(g.cells[move.from]);
    std::string text;
    if (mover != pawn) text += piece_letter(mover);
    text += disambiguation(g, move);
    if (g.cells[move.to] != no_piece || move.kind == kind_en_passant) {
        if (text.empty()) text += square_text(move.from)[0];
        text += 'x';
    }
    text += square_text(move.to);
    if (is_promotion(move.kind)) text += piece_letter(type_of(move.kind));
    return text + check_sign(g, move);
}

std::string san_column(const Game& game, Move move) {
    constexpr std::size_t columns = 5;
    const std::string text = san_text(game, move);
    return std::string(columns - std::min(columns, text.size()), ' ') + text;
}

}  // namespace varn
