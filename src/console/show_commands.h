// Console commands that show boards, move lists and numbers. None of them changes the game.
#pragma once

#include "base/output.h"
#include "board/report.h"
#include "console/console.h"

namespace varn {

/// Instantiated for every bitboard of a game.
template <Bitboard Game::*Board> void show_bitboard(Console& console, const CommandLine&) {
    say_text(bitboard_text(console.engine.game.get()->*Board) + '\n');
}

/// The full report; ends the process if the game is over.
void show_game(Console& console, const CommandLine& line);
void show_cells(Console& console, const CommandLine& line);
void show_position_text(Console& console, const CommandLine& line);
/// Moves are legal, captures pseudo-legal.
void list_moves(Console& console, const CommandLine& line);
void list_captures(Console& console, const CommandLine& line);
void list_history(Console& console, const CommandLine& line);
void show_white_king_square(Console& console, const CommandLine& line);
void show_black_king_square(Console& console, const CommandLine& line);
void show_white_material(Console& console, const CommandLine& line);
void show_black_material(Console& console, const CommandLine& line);
/// Prints an empty line only.
void show_draw_hash(Console& console, const CommandLine& line);
void show_hash_stats(Console& console, const CommandLine& line);

// Evaluation terms.
void show_evaluation(Console& console, const CommandLine& line);
void show_pawn_evaluation(Console& console, const CommandLine& line);
void show_king_safety(Console& console, const CommandLine& line);
void show_attack_evaluation(Console& console, const CommandLine& line);
void show_square_control(Console& console, const CommandLine& line);

// Attacks and exchanges.
void show_attackers(Console& console, const CommandLine& line);
void show_exchanges(Console& console, const CommandLine& line);

}  // namespace varn
