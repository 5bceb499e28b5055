// Game phases by material. They switch single terms on and off; there is no tapered evaluation. Pawns count, kings
// don't.
#pragma once

#include "board/game_sides.h"

namespace varn {

constexpr int total_material(const Game& g) { return g.w_material + g.b_material; }

/// Nearly all pieces are on the board.
constexpr bool in_opening(const Game& g) { return total_material(g) > 7000; }

/// Too little material for king attacks.
constexpr bool kings_are_safe(const Game& g) { return total_material(g) <= 2500; }

/// The side still has most of its pieces.
template <Side S> constexpr bool is_developing(const Game& g) { return material_of<S>(g) > 2500; }

/// The side has so little left that the enemy king is safe in the open: for that king it is an endgame.
template <Side S> constexpr bool has_little_material(const Game& g) { return material_of<S>(g) <= 1800; }

}  // namespace varn
