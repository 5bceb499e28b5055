// Whether a move is legal, and whether a side has any legal move at all. The tests make the move and take it back with
// a record of their own, so they may run in the middle of a search node, and on one game while another game is searched
// on another thread. The game is the same on return.
#pragma once

#include "board/game.h"

namespace varn {

/// Whether a pseudo-legal move of the side to move leaves its own king unattacked.
bool is_legal(Game* game, Move move);

/// Whether any move, however it came about, is a legal move of the position, equal to the generator's in all three
/// bytes.
bool is_valid_move(Game* game, Move move);

/// Whether the king of the side is attacked after the move.
template <Side S> bool leaves_in_check(Game& game, Move move);
bool leaves_white_in_check(Game* game, Move move);
bool leaves_black_in_check(Game* game, Move move);

/// Whether the side has a legal move, as if it were its turn.
bool white_has_legal_move(Game* game);
bool black_has_legal_move(Game* game);
/// The same for the side to move.
bool has_legal_move(Game* game);

}  // namespace varn
