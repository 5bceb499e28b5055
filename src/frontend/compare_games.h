// Comparison of two games.
#pragma once

#include "board/game.h"

namespace varn {

/// Prints a message for each difference. If there are any, prints both boards and ends the process with status 1. Pawn
/// hashes, the material of each side, `ep_side` and `draw_hash` aren't compared.
void compare_games(const Game& a, const Game& b);

}  // namespace varn
