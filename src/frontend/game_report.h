// How a game stands, as the console and its reports tell it.
#pragma once

#include <string_view>

#include "board/status.h"

namespace varn {

/// How a game stands that is told at the console: the fifty-move rule comes before mate, and draws that aren't on the
/// board don't count.
GameStatus console_status(const Game& game);

/// The line that tells a status.
std::string_view status_text(GameStatus status, Side turn);

enum class WhenOver : bool { end_process, go_on };
/// The board with all that belongs to it, and how the game stands. A game that is over ends the process with status 0,
/// or doesn't.
void print_board(const Game& game, WhenOver when_over);
void print_cells(const Game& game);

/// Says so where the position can't be played; returns whether it said it. Whatever generates moves asks first.
bool refuse_unplayable(const Game& game);

}  // namespace varn
