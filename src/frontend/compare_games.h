// Holding two records of one game against each other.
#pragma once

#include "board/game.h"

namespace varn {

/// Prints a message for each difference. If there is any, prints both boards and ends the process with status 1. The
/// pawn hashes, the single material sums, `ep_side` and `draw_hash` aren't compared.
void compare_games(const Game& a, const Game& b);

}  // namespace varn
