#include "console/show_commands.h"

#include <string>

#include "board/attacks.h"
#include "board/legality.h"
#include "board/movegen.h"
#include "board/notation.h"
#include "board/position.h"
#include "eval/evaluate.h"
#include "eval/king_safety.h"
#include "frontend/command_line.h"
#include "frontend/game_report.h"
#include "frontend/numbers.h"
#include "search/exchange.h"
#include "search/transposition.h"

namespace varn {

namespace {

/// Prints the board, the attackers of the capture's target, and the exchange value.
void show_exchange(const Game& game, Move move) {
    constexpr const char* rule = "-------------------------------\n";
    say_text(rule);
    print_board(game, WhenOver::end_process);
    say("considering: %s\nattacks are:\n", move_text(move).c_str());
    say_text(bitboard_text(attackers_of(game, move.to)));
    say("\nSEE eval is: %d\n%s", exchange_value(game, move), rule);
}

MoveList pseudo_legal_captures(const Game& game) {
    MoveList list;
    generate_captures(game, list);
    return list;
}

}  // namespace

// Kept: docs/compatibility.md#finished-games-end-the-console
void show_game(Console& console, const CommandLine&) {
    say_text("\n");
    print_board(*console.engine.game, WhenOver::end_process);
}

void show_draw_hash(Console&, const CommandLine&) { say_text("\n"); }

void show_cells(Console& console, const CommandLine&) { print_cells(*console.engine.game); }

void show_position_text(Console& console, const CommandLine&) {
    const Game& game = *console.engine.game;
    if (is_consistent(game)) {
        say("EPD string is: %s\n", position_text(game).c_str());
    } else {
        say_text("error: cannot generate EPD string since game is corrupt.\n");
    }
}

void list_moves(Console& console, const CommandLine&) {
    const Game& game = *console.engine.game;
    if (refuse_unplayable(game)) return;
    std::string text = game.turn == Side::white ? "\nAll white moves are:\n" : "\nAll black moves are:\n";
    const MoveList list = legal_moves(game);
    for (const Move move : list) text += move_text(move) + '\n';
    say("%s\n%d legal moves exist for this position.\n\n", text.c_str(), list.count);
}

void list_captures(Console& console, const CommandLine&) {
    const Game& game = *console.engine.game;
    if (refuse_unplayable(game)) return;
    std::string text = "\nCaptures are:\n";
    for (const Move move : pseudo_legal_captures(game)) text += move_text(move) + '\n';
    say_text(text + '\n');
}

void list_history(Console& console, const CommandLine&) {
    const Game& game = *console.engine.game;
    std::string text;
    for (int i = 0; i < game.move_counter; ++i) {
        const std::string move = move_text(game.game_moves[i]);
        text += i % 2 == 0 ? std::to_string(i / 2 + 1) + ". " + move + "  " : move + '\n';
    }
    if (game.move_counter % 2 == 1) text += '\n';
    say_text(text + '\n');
}

void show_white_king_square(Console& console, const CommandLine&) {
    say("white king square is: %d\n\n", console.engine.game->wking_sqr);
}

void show_black_king_square(Console& console, const CommandLine&) {
    say("black king square is: %d\n\n", console.engine.game->bking_sqr);
}

void show_white_material(Console& console, const CommandLine&) {
    say("White's material sum is: %d\n", console.engine.game->w_material);
}

void show_black_material(Console& console, const CommandLine&) {
    say("Black's material sum is: %d\n", console.engine.game->b_material);
}

void show_hash_stats(Console& console, const CommandLine&) {
    say_text(hash_stats_text(console.engine.search->tables.transposition_table) + '\n');
}

void show_evaluation(Console& console, const CommandLine&) {
    say("static evaluation is: %d\n", evaluate(*console.engine.game, console.engine.search->eval));
}

void show_pawn_evaluation(Console& console, const CommandLine&) {
    say("static evaluation of pawns is: %d\n", pawn_terms(console.engine.search->eval.pawns, *console.engine.game));
}

void show_king_safety(Console& console, const CommandLine&) {
    say("ksafety is: %d\n", king_shelter(*console.engine.game) + king_attack(*console.engine.game));
}

void show_attack_evaluation(Console& console, const CommandLine&) {
    say("attack eval is: %d\n", attack_eval(*console.engine.game));
}

void show_square_control(Console& console, const CommandLine& line) {
    const int square = square_from_text(without_leading_blanks(line.rest));
    if (square < 0) {
        ignore_line(line);
        return;
    }
    say("control value of %d is: %d\n", square, square_control(*console.engine.game, square));
}

void show_attackers(Console& console, const CommandLine& line) {
    std::string_view rest = line.rest;
    const auto square = take_number(rest);
    if (!square || *square < 0 || *square >= square_count) {
        ignore_line(line);
        return;
    }
    say_text(bitboard_text(attackers_of(*console.engine.game, *square)) + '\n');
}

void show_exchanges(Console& console, const CommandLine&) {
    const Game& game = *console.engine.game;
    if (refuse_unplayable(game)) return;
    for (const Move move : pseudo_legal_captures(game)) {
        if (is_legal(game, move)) show_exchange(game, move);
    }
}

}  // namespace varn
