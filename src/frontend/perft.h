// Perft: counts the leaves of the move tree, to check and time move generation, make and unmake, and to check that the
// move picker returns every legal move exactly once.
#pragma once

#include <cstdint>

#include "search/record.h"

namespace varn {

/// Number of legal lines of `depth` plies; 1 for depth 0. The game is unchanged afterwards.
std::uint64_t count_leaves(Game& game, int depth);

/// Counts the legal lines of `depth` plies, 0 to 499, and prints count and time. If make and unmake corrupt the game
/// the process ends with a report and status 1.
void perft(const Game& game, int depth);

/// The same through the move picker, with the hash moves, killers and history of earlier searches, and with internal
/// iterative deepening. That may run for `time_limit_ms` in total; after that only it is skipped.
void advperft(Search& s, const Game& game, int depth);

}  // namespace varn
