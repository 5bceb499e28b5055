// Tests for legal moves.
#pragma once

#include "board/pins.h"

namespace varn {

/// Whether a pseudo-legal move of the side to move is legal.
bool is_legal(const Game& game, Move move);

/// Whether an arbitrary move is legal in the position and equal to the generated one, kind included.
bool is_valid_move(const Game& game, Move move);

/// The legal moves in generation order.
MoveList legal_moves(const Game& game);

/// Whether a pseudo-legal move of the side leaves its king in check.
bool leaves_white_in_check(const Game& game, Move move);
bool leaves_black_in_check(const Game& game, Move move);

/// Whether the side has a legal move, as if it were to move.
bool white_has_legal_move(const Game& game);
bool black_has_legal_move(const Game& game);
/// The same for the side to move.
bool has_legal_move(const Game& game);
/// The same with known pins.
bool has_legal_move(const Game& game, const Pins& pins);

}  // namespace varn
