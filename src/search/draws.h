// The tests that end a line without search: the fifty-move rule, insufficient material, repetition, and the status of a
// position without a legal move. Repetitions are found in the game's own list of keys.
#pragma once

#include "board/game.h"
#include "board/restraints.h"

namespace varn {

/// No pawn, rook or queen on the board and at most one minor piece a side.
bool insufficient_material(const Game* game);

/// The present position stood at least once, or at least twice, before. In the search one earlier time is a draw.
bool is_repetition(const Game* game);
bool is_third_repetition(const Game* game);

/// Fifty moves, insufficient material or a repetition.
bool draw_by_rule(const Game* game);
/// Whether `move` leads to such a position; the game is the same on return.
bool draw_after_move(Game* game, Move move);

inline constexpr int game_goes_on = -1;
/// The score of a finished game from white's point of view, or `game_goes_on`; a mate scores less the farther it is
/// from the root.
int node_status(Game* game, int line_ply);
/// The same under the restraints of the side to move.
int node_status(Game* game, const Restraints& restraints, int line_ply);

}  // namespace varn
