// Counting the leaves of the move tree: how the engine checks its generators, make and unmake, and times them, and how
// it checks that the search's move picker loses no move and gives none twice.
#pragma once

#include <cstdint>

#include "search/record.h"

namespace varn {

/// Legal lines of `depth` plies; 1 for a depth of 0. The game is the same afterwards.
std::uint64_t count_leaves(Game& game, int depth);

/// Counts the legal lines of `depth` plies, 0 to 499, and prints the count with the time it took. Where make and unmake
/// don't leave the game as it was, the process ends with a report and status 1.
void perft(const Game& game, int depth);

/// The same through the move picker, with the hash moves, killers and history that earlier searches left, and with
/// internal searches, which may run for `time_limit_ms` in all; once that is used up only they stay away.
void advperft(Search& s, const Game& game, int depth);

}  // namespace varn
