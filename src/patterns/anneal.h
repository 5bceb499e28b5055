// The annealing of king-and-pawn patterns: random merges and splits of boxes, which keep the set of positions that they
// cover and make the boxes fewer.
#pragma once

#include "board/game.h"
#include "patterns/pattern_list.h"

namespace varn {

/// Moves of a whole run: the better part of an hour, or more.
inline constexpr std::uint64_t kpk_moves = 100'000'000'000;

/// Random merges and splits, so many in all: as many tries of one as of the other, but few of the splits are made. The
/// list must not be empty.
void anneal(PatternList& list, std::uint64_t moves, Choices& choices, UniformState& acceptance);

/// The whole run: reads the file `kpkbb`, anneals the positions with result 0, writes `wkpk.eb`, and says how far it
/// is. Gives the boxes, or null, with a message, where there is no file or no such position, or no room for the result.
/// The game holds the last position read. A terminal on the error stream is shown the progress. The boxes stay until
/// the next run.
///
/// What couldn't be written isn't lost: the next call does nothing but to try once more to write it.
const PatternList* anneal_kpk(Game* game, std::uint64_t moves = kpk_moves);
/// Whether the last call has left boxes behind that it couldn't write.
bool patterns_are_unwritten();

}  // namespace varn
