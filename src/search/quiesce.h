// Below the horizon: captures and promotions that don't lose material are searched out, so that the static score is
// taken only where nothing hangs. No principal variation, no ordering tables, no keys in `draw_hash`, and no special
// treatment of checks.
#pragma once

#include "board/pins.h"
#include "search/record.h"

namespace varn {

/// The score for the side to move, or `abort_score` when the clock stopped the search at this very entry. `ply` indexes
/// the per-ply arrays, `line_ply` counts the real moves from the root.
int quiesce(Search& s, Game& game, int alpha, int beta, int ply, int line_ply);
/// The same for a leaf of the search, which knows the pins of the side to move, and that the position is no draw by
/// rule.
int quiesce_leaf(Search& s, Game& game, const Pins& pins, int alpha, int beta, int ply, int line_ply);

/// The static value of the position for the side to move: the end of the game, or material alone where much of it is on
/// the board and the difference is clear, or else the evaluation.
int static_score(Search& s, const Game& game, int line_ply);
/// The same where the pins of the side to move are known.
int static_score(Search& s, const Game& game, const Pins& pins, int line_ply);

inline constexpr int game_goes_on = -1;
/// The score of a finished game from white's point of view, or `game_goes_on`; a mate scores less the farther it is
/// from the root.
int node_status(const Game& game, int line_ply);
/// The same where the pins of the side to move are known.
int node_status(const Game& game, const Pins& pins, int line_ply);

}  // namespace varn
