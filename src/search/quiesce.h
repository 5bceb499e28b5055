// Below the horizon: captures and promotions that don't lose material are searched out, so that the static score is
// taken only where nothing hangs. No principal variation, no ordering tables, no keys in `draw_hash`, and no special
// treatment of checks.
#pragma once

#include "search/search.h"

namespace varn {

/// The score for the side to move, or `abort_score` when the clock stopped the search at this very entry.
int quiesce(Game* game, int alpha, int beta, SearchFrame frame);

/// The static value of the position for the side to move: the end of the game, or material alone where much of it is on
/// the board and the difference is clear, or else the evaluation. Of the frame only `line_ply` matters.
int static_score(Game* game, const SearchFrame& frame, int alpha, int beta);
/// The same under the restraints of the side to move.
int static_score(Game* game, const Restraints& restraints, const SearchFrame& frame, int alpha, int beta);

/// Swaps the entry with the highest score from `index` on to `index`, the first of equals winning. Scores of -9999 or
/// less are passed over.
void pick_best(MoveList* list, int index);

}  // namespace varn
