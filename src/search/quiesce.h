// Quiescence search: captures and promotions that don't lose material are searched until the position is quiet. It
// keeps no principal variation, uses no ordering tables, pushes no keys to `draw_hash`, and doesn't treat checks
// specially.
#pragma once

#include "board/pins.h"
#include "search/record.h"

namespace varn {

/// The score for the side to move, or `abort_score` if the clock stopped the search at this entry. `ply` indexes the
/// per-ply arrays, `line_ply` counts the real moves from the root.
int quiesce(Search& s, Game& game, int alpha, int beta, int ply, int line_ply);
/// The same for a leaf of the search, which knows the pins of the side to move, and that the position is no draw by
/// rule.
int quiesce_leaf(Search& s, Game& game, const Pins& pins, int alpha, int beta, int ply, int line_ply);

/// The static score for the side to move: the game result if the game is over, material alone where it decides,
/// otherwise the evaluation.
int static_score(Search& s, const Game& game, int line_ply);
/// The same where the pins of the side to move are known.
int static_score(Search& s, const Game& game, const Pins& pins, int line_ply);

inline constexpr int game_goes_on = -1;
/// The score of a finished game from white's point of view, or `game_goes_on`. Mates farther from the root score less.
int node_status(const Game& game, int line_ply);
/// The same where the pins of the side to move are known.
int node_status(const Game& game, const Pins& pins, int line_ply);

}  // namespace varn
