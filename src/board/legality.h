// Whether a move is legal, and whether a side has any legal move at all. All of these read the game and change nothing.
#pragma once

#include "board/pins.h"

namespace varn {

/// Whether a pseudo-legal move of the side to move leaves its own king unattacked.
bool is_legal(const Game& game, Move move);

/// Whether any move, however it came about, is a legal move of the position, equal to the generator's in all three
/// bytes.
bool is_valid_move(const Game& game, Move move);

/// The legal moves of the position, in the order of generation.
MoveList legal_moves(const Game& game);

/// Whether the king of the side is attacked after a pseudo-legal move of that side.
bool leaves_white_in_check(const Game& game, Move move);
bool leaves_black_in_check(const Game& game, Move move);

/// Whether the side has a legal move, as if it were its turn.
bool white_has_legal_move(const Game& game);
bool black_has_legal_move(const Game& game);
/// The same for the side to move.
bool has_legal_move(const Game& game);
/// The same where its pins are known.
bool has_legal_move(const Game& game, const Pins& pins);

}  // namespace varn
