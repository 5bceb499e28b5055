// Counting the leaves of the move tree: how the engine checks its generators, make and unmake, and times them.
#pragma once

#include "frontend/console.h"

namespace varn {

/// Counts the legal lines of `depth` plies, 0 to 499, and prints the count with the time it took. The game is the same
/// afterwards; where it isn't, the process ends with a report and status 1.
void perft(Game* game, int depth);

void count_moves(Console& console, const CommandLine& line);

}  // namespace varn
