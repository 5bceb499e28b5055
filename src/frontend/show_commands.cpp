#include "frontend/show_commands.h"

#include <algorithm>
#include <string>

#include "board/attacks.h"
#include "board/legality.h"
#include "board/movegen.h"
#include "board/notation.h"
#include "board/position.h"
#include "eval/evaluate.h"
#include "eval/king_safety.h"
#include "eval/pawns.h"
#include "frontend/numbers.h"
#include "search/exchange.h"
#include "search/transposition.h"

namespace varn {

namespace {

/// One capture under the board: who attacks its target, and what the exchange is worth.
void show_exchange(Game* game, Move move) {
    constexpr const char* rule = "-------------------------------\n";
    say_text(rule);
    print_board(game);
    say("considering: %s\nattacks are:\n", move_text(move).c_str());
    print_bitboard(attackers_of(game, move.to));
    say("\nSEE eval is: %d\n%s", exchange_value(game, move), rule);
}

}  // namespace

void show_game(Console& console, const CommandLine&) {
    say_text("\n");
    print_board(console.game.get());
}

void show_draw_hash(Console&, const CommandLine&) { say_text("\n"); }

void show_cells(Console& console, const CommandLine&) { print_cells(console.game.get()); }

void show_position_text(Console& console, const CommandLine&) { print_position_text(console.game.get()); }

void list_moves(Console& console, const CommandLine&) {
    Game* game = console.game.get();
    if (refuse_unplayable(game)) return;
    std::string text = game->turn == 0 ? "\nAll white moves are:\n" : "\nAll black moves are:\n";
    int count = 0;
    const MoveList* list = generate_all(game, scratch_slot);
    for (int i = 0; i < list->count; ++i) {
        if (!is_legal(game, list->moves[i])) continue;
        text += move_text(list->moves[i]) + '\n';
        ++count;
    }
    say("%s\n%d legal moves exist for this position.\n\n", text.c_str(), count);
}

void list_captures(Console& console, const CommandLine&) {
    if (refuse_unplayable(console.game.get())) return;
    std::string text = "\nCaptures are:\n";
    const MoveList* list = generate_captures(console.game.get(), scratch_slot);
    for (int i = 0; i < list->count; ++i) text += move_text(list->moves[i]) + '\n';
    say_text(text + '\n');
}

void list_history(Console& console, const CommandLine&) {
    const Game& game = *console.game;
    std::string text;
    for (int i = 0; i < game.move_counter; ++i) {
        const std::string move = move_text(game.game_moves[i]);
        text += i % 2 == 0 ? std::to_string(i / 2 + 1) + ". " + move + "  " : move + '\n';
    }
    if (game.move_counter % 2 == 1) text += '\n';
    say_text(text + '\n');
}

void show_white_king_square(Console& console, const CommandLine&) {
    say("white king square is: %d\n\n", console.game->wking_sqr);
}

void show_black_king_square(Console& console, const CommandLine&) {
    say("black king square is: %d\n\n", console.game->bking_sqr);
}

void show_white_material(Console& console, const CommandLine&) {
    say("White's material sum is: %d\n", console.game->w_material);
}

void show_black_material(Console& console, const CommandLine&) {
    say("Black's material sum is: %d\n", console.game->b_material);
}

void show_hash_stats(Console&, const CommandLine&) {
    print_hash_stats();
    say_text("\n");
}

void show_evaluation(Console& console, const CommandLine&) {
    say("static evaluation is: %d\n", evaluate(console.game.get(), 0, -mate_score, mate_score));
}

void show_pawn_evaluation(Console& console, const CommandLine&) {
    say("static evaluation of pawns is: %d\n", pawn_terms(console.game.get()));
}

void show_king_safety(Console& console, const CommandLine&) {
    say("ksafety is: %d\n", king_shelter(console.game.get()) + king_attack(console.game.get()));
}

void show_attack_evaluation(Console& console, const CommandLine&) {
    say("attack eval is: %d\n", attack_eval(console.game.get()));
}

void show_square_control(Console& console, const CommandLine& line) {
    constexpr std::string_view blanks = " \t\n\v\f\r";
    std::string_view name = line.rest;
    name.remove_prefix(std::min(name.find_first_not_of(blanks), name.size()));
    const int square = square_from_text(name);
    if (square < 0) {
        ignore_line(line);
        return;
    }
    say("control value of %d is: %d\n", square, square_control(console.game.get(), square));
}

void show_attackers(Console& console, const CommandLine& line) {
    std::string_view rest = line.rest;
    const auto square = take_number(rest);
    if (!square || *square < 0 || *square >= square_count) {
        ignore_line(line);
        return;
    }
    print_bitboard(attackers_of(console.game.get(), *square));
    say_text("\n");
}

void show_exchanges(Console& console, const CommandLine&) {
    Game* game = console.game.get();
    if (refuse_unplayable(game)) return;
    const MoveList* list = generate_captures(game, scratch_slot);
    for (int i = 0; i < list->count; ++i) {
        if (is_legal(game, list->moves[i])) show_exchange(game, list->moves[i]);
    }
}

}  // namespace varn
