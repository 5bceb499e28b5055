// The board as a person reads it, and how a game stands.
#pragma once

#include "board/game.h"

namespace varn {

inline constexpr int mate_score = 9999;

/// How a game stands: 1 while it goes on, 0 for a draw, -9999 if white is mated, 9999 if black is. Of the draws it
/// knows stalemate and the fifty-move rule only.
int game_status_score(Game* game);
/// The line that tells the same.
const char* game_status_text(Game* game);

enum class WhenOver { end_process, go_on };
/// Prints that line; a game that is over ends the process with status 0, or doesn't.
void print_game_status(Game* game, WhenOver when_over = WhenOver::end_process);

/// The full report: board, keys, material, check, castling rights, side to play and status. May end the process
/// as `print_game_status` does.
void print_board(Game* game, WhenOver when_over = WhenOver::end_process);
/// The board drawn from `cells` alone, for comparison with the bitboards.
void print_cells(const Game* game);
/// Eight lines of eight digits, a8 first and h1 last.
void print_bitboard(Bitboard board);

}  // namespace varn
