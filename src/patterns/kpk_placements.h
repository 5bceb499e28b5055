// All legal placements of king and pawn against king with white to move.
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

/// Ordered by white king, pawn and black king square. No two pieces share a square, the pawn is on ranks 2 to 7, the
/// kings don't touch, and the pawn doesn't attack the black king.
std::vector<Placement> kpk_placements();

/// The position text with white to move.
std::string placement_text(Placement placement);

/// Prints a script for a program that solves positions: three lines per placement, which set it, show it and ask for a
/// move. Afterwards the game holds the last placement.
void print_kpk_script(Game& game);

}  // namespace varn
