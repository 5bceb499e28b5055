// Game status for the console and its reports.
#pragma once

#include <string_view>

#include "board/status.h"

namespace varn {

/// Status of a game at the console: the fifty-move rule comes before mate, and draws by repetition or material are
/// ignored.
GameStatus console_status(const Game& game);

/// The text of a status.
std::string_view status_text(GameStatus status, Side turn);

enum class WhenOver : bool { end_process, go_on };
/// Prints the board, its data and the game status. `when_over` says whether a finished game ends the process, with
/// status 0.
void print_board(const Game& game, WhenOver when_over);
void print_cells(const Game& game);

/// If the position can't be played prints a message and returns true. Call before generating moves.
bool refuse_unplayable(const Game& game);

}  // namespace varn
