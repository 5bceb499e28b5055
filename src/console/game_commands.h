// The console's commands that change the game: moves, new games, set positions and the way back.
#pragma once

#include "console/console.h"

namespace varn {

/// Whether the line is a typed move by its shape: two squares and perhaps a promotion letter. Says nothing of the move,
/// and the letters need not name files.
bool is_move_shaped(std::string_view line);

/// Plays the typed move, and has the engine reply where it is the engine's turn then.
void type_move(Console& console, const CommandLine& line);

void start_new_game(Console& console, const CommandLine& line);
void take_back(Console& console, const CommandLine& line);
void set_board(Console& console, const CommandLine& line);
void switch_sides(Console& console, const CommandLine& line);

}  // namespace varn
