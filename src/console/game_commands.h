// Console commands that change the game: moves, new games, set positions and taking back.
#pragma once

#include "console/console.h"

namespace varn {

/// Whether the line has the shape of a move: two squares and perhaps a promotion letter. The move need not be legal,
/// nor the letters name files.
bool is_move_shaped(std::string_view line);

/// Plays the typed move, followed by the engine's reply if it is the engine's turn.
void type_move(Console& console, const CommandLine& line);

void start_new_game(Console& console, const CommandLine& line);
void take_back(Console& console, const CommandLine& line);
void set_board(Console& console, const CommandLine& line);
void switch_sides(Console& console, const CommandLine& line);

}  // namespace varn
