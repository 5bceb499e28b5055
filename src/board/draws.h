// The draws by rule: the fifty-move rule, insufficient material and repetition. Repetitions are found in the game's own
// list of keys.
#pragma once

#include "board/game.h"

namespace varn {

inline constexpr int fifty_move_limit = 100;  // plies

constexpr bool is_fifty_move_draw(const Game& game) { return game.fifty >= fifty_move_limit; }

/// No pawn, rook or queen on the board and at most one minor piece a side.
bool insufficient_material(const Game& game);

/// The present position stood at least once, or at least twice, before. In the search one earlier time is a draw.
bool is_repetition(const Game& game);
bool is_third_repetition(const Game& game);

/// Fifty moves, insufficient material or a repetition.
bool draw_by_rule(const Game& game);
/// Whether a pseudo-legal move leads to such a position.
bool draw_after_move(const Game& game, Move move);

}  // namespace varn
