// Draws by rule: the fifty-move rule, insufficient material and repetition, found in the game's list of keys.
#pragma once

#include "board/game.h"

namespace varn {

inline constexpr int fifty_move_limit = 100;  // plies

constexpr bool is_fifty_move_draw(const Game& game) { return game.fifty >= fifty_move_limit; }

/// No pawn, rook or queen, and at most one minor piece per side.
bool insufficient_material(const Game& game);

/// Whether the position occurred at least once, or at least twice, before. The search treats a single repetition as a
/// draw.
bool is_repetition(const Game& game);
bool is_third_repetition(const Game& game);

/// Fifty moves, insufficient material or a repetition.
bool draw_by_rule(const Game& game);
/// Whether a pseudo-legal move leads to such a draw.
bool draw_after_move(const Game& game, Move move);

}  // namespace varn
