// The staged move picker: hands a node its legal moves one at a time, in order of promise, and does only the work that
// the node asks for. The stages: the hash move or that of an internal search; captures that don't lose material;
// promotions; two killers; quiet moves; captures that lose material.
#pragma once

#include "board/game.h"
#include "board/restraints.h"

namespace varn {

/// Starts a node's moves afresh.
void start_picking(int ply);

/// The next legal move of the node, already made on `game` with its keys pushed; null when there are no more, then and
/// ever after. The caller takes it back with `retract_move` and `undo_stack[ply]`. The pointer stays valid while the
/// node runs. Leaves the move and what it captured in `search_stack[ply]`. `alpha`, `beta` and `depth` are the node's
/// own.
const Move* next_move(Game* game, int ply, int alpha, int beta, int depth, int line_ply);

/// Whether a killer, a quiet move from another position, can legally be played in this one.
bool killer_valid(Game* game, Move move);
/// The same under the restraints of the side to move.
bool killer_valid(Game* game, Move move, const Restraints& restraints);

}  // namespace varn
