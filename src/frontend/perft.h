// Counting the leaves of the move tree: how the engine checks its generators, make and unmake, and times them, and how
// it checks that the search's move picker loses no move and gives none twice.
#pragma once

#include "frontend/console.h"

namespace varn {

/// Counts the legal lines of `depth` plies, 0 to 499, and prints the count with the time it took. The game is the same
/// afterwards; where it isn't, the process ends with a report and status 1.
void perft(Game* game, int depth);

/// The same through the move picker, with the hash moves, killers and history that earlier searches left, and with
/// internal searches, which may run for `time_limit_ms` in all; once that is used up only they stay away.
void advperft(Game* game, int depth);

void count_moves(Console& console, const CommandLine& line);
void count_picked_moves(Console& console, const CommandLine& line);

}  // namespace varn
