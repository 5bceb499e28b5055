// The phases of a game, told by material. They switch single terms on and off; no score is scaled by them. Pawns count
// in all of these sums, kings don't.
#pragma once

#include "board/game_sides.h"

namespace varn {

constexpr int total_material(const Game& g) { return g.w_material + g.b_material; }

/// Nearly all pieces are on the board.
constexpr bool in_opening(const Game& g) { return total_material(g) > 7000; }

/// So few pieces that no king has to fear an attack.
constexpr bool kings_are_safe(const Game& g) { return total_material(g) <= 2500; }

/// The side still has most of its pieces.
template <Side S> constexpr bool is_developing(const Game& g) { return material_of<S>(g) > 2500; }

/// The side is left with so little that the enemy king may come out: for that king it is an ending.
template <Side S> constexpr bool has_few_men(const Game& g) { return material_of<S>(g) <= 1800; }

}  // namespace varn
