#include "board/report.h"

#include <cstdlib>
#include <string>

#include "board/attacks.h"
#include "board/legality.h"
#include "board/notation.h"
#include "board/output.h"
#include "board/position.h"

namespace varn {

namespace {

/// Code of the man on a square as the bitboards have it.
template <Side S> int code_on_boards(const Game& g, int square) {
    for (const Man man : {king, queen, bishop, knight, plain_rook, pawn}) {
        if ((board_of<S>(g, man) & bit_mask(square)) != 0) return code_of(S, man);
    }
    return no_piece;
}

/// The letter of a man, or the colour of an empty square.
char square_sign(int square, int code) {
    if (code != no_piece) return piece_letter(code);
    return square % 2 == square / 8 % 2 ? '.' : '#';
}

/// Eight lines, rank 8 first and the a-file on the left; `sign_of_square` gives the character of a square.
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

}  // namespace

int game_status_score(Game* game) {
    if (game->fifty >= 100) return 0;
    if (has_legal_move(game)) return 1;
    if (!in_check(game)) return 0;
    return game->turn == 0 ? -mate_score : mate_score;
}

const char* game_status_text(Game* game) {
    switch (game_status_score(game)) {
        case 1: return "Game is in progress.\n";
        case -mate_score: return "White is Checkmated. Black wins.\n";
        case mate_score: return "Black is Checkmated. White wins.\n";
        default: return "Stalemate.\n";
    }
}

void print_game_status(Game* game, WhenOver when_over) {
    if (!is_playable(game)) {
        say_text(unplayable_text);
        return;
    }
    say_text(game_status_text(game));
    if (when_over == WhenOver::end_process && game_status_score(game) != 1) std::exit(0);
}

void print_board(Game* game, WhenOver when_over) {
    const Game& g = *game;
    say_text(drawing([&g](int square) {
        const int white = code_on_boards<Side::white>(g, square);
        return square_sign(square, white != no_piece ? white : code_on_boards<Side::black>(g, square));
    }));
    say("\nZobrist key: %d\n", static_cast<std::int32_t>(g.zobrist_key));
    say("Zobrist lock: %d\n", static_cast<std::int32_t>(g.zobrist_lock));
    say("Material Balance: %d\n", g.material);
    if (is_playable(game) && in_check(game)) say("\n%s is in check.\n", g.turn == 0 ? "White" : "Black");
    say("\nWhite %s.\nBlack %s.\n", castling_report(g.w_castle), castling_report(g.b_castle));
    say("\n%s to play\n\n", g.turn == 0 ? "white" : "black");
    print_game_status(game, when_over);
    say_text("\n");
}

void print_cells(const Game* game) {
    say_text("\n" + drawing([game](int square) { return square_sign(square, game->cells[square]); }) + "\n");
}

void print_bitboard(Bitboard board) {
    say_text(drawing([board](int square) { return (board & bit_mask(square)) != 0 ? '1' : '0'; }));
}

}  // namespace varn
