#include "board/report.h"

#include "board/attacks.h"
#include "board/notation.h"
#include "board/status.h"

namespace varn {

namespace {

/// The piece code on a square according to the bitboards.
template <Side S> int code_on_boards(const Game& g, int square) {
    for (const PieceType type : {king, queen, bishop, knight, plain_rook, pawn}) {
        if ((board_of<S>(g, type) & bit_mask(square)) != 0) return code_of(S, type);
    }
    return no_piece;
}

/// A piece's letter, or the colour of an empty square.
char square_sign(int square, int code) {
    if (code != no_piece) return piece_letter(code);
    return square % 2 == square / 8 % 2 ? '.' : '#';
}

/// Eight lines, rank 8 first, with one character per square from `sign_of_square`.
template <typename Sign> std::string drawing(Sign sign_of_square) {
    std::string text;
    for (int square = square_count - 1; square >= 0; --square) {
        text += sign_of_square(square);
        if (square % 8 == 0) text += '\n';
    }
    return text;
}

const char* castling_report(std::uint32_t rights) {
    switch (rights) {
        case 0: return "cannot castle";
        case kingside_right: return "can castle kingside";
        case queenside_right: return "can castle queenside";
        default: return "can castle on both sides";
    }
}

/// Printed form of a hash. Kept: docs/compatibility.md#hash-numbers
std::string low_half(std::uint64_t key) { return std::to_string(static_cast<std::int32_t>(key)); }

}  // namespace

std::string diagram_text(const Game& g) {
    return drawing([&g](int square) {
        const int white = code_on_boards<Side::white>(g, square);
        return square_sign(square, white != no_piece ? white : code_on_boards<Side::black>(g, square));
    });
}

std::string board_text(const Game& g) {
    const bool white = g.turn == Side::white;
    std::string text = diagram_text(g);
    text += "\nZobrist key: " + low_half(g.zobrist_key) + "\nZobrist lock: " + low_half(g.zobrist_lock) + '\n';
    text += "Material Balance: " + std::to_string(g.material) + '\n';
    if (is_playable(g) && in_check(g)) text += white ? "\nWhite is in check.\n" : "\nBlack is in check.\n";
    text += std::string("\nWhite ") + castling_report(g.w_castle) + ".\n";
    text += std::string("Black ") + castling_report(g.b_castle) + ".\n";
    return text + (white ? "\nwhite to play\n\n" : "\nblack to play\n\n");
}

std::string cells_text(const Game& game) {
    return '\n' + drawing([&game](int square) { return square_sign(square, game.cells[square]); }) + '\n';
}

std::string bitboard_text(Bitboard board) {
    return drawing([board](int square) { return (board & bit_mask(square)) != 0 ? '1' : '0'; });
}

}  // namespace varn
