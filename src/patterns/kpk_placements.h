// All placements of a king and a pawn against a king that can arise with white to move.
#pragma once

#include <string>
#include <vector>

#include "board/game.h"

namespace varn {

struct Placement {
    std::uint8_t white_king;
    std::uint8_t pawn;
    std::uint8_t black_king;
};

/// In the order of the white king's square, then the pawn's, then the black king's. No two pieces share a square, the
/// pawn stands on ranks 2 to 7, the kings don't touch, and the pawn doesn't attack the black king.
std::vector<Placement> kpk_placements();

/// The position text with white to move, no rights and fresh counters.
std::string placement_text(Placement placement);

/// Prints a script for a program that solves positions: three lines for every placement, which set it, show it and ask
/// for a move. The game holds the last placement afterwards.
void print_kpk_script(Game& game);

}  // namespace varn
