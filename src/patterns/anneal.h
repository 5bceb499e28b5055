// The annealing of king-and-pawn patterns: random merges and splits of boxes, which keep the set of positions that they
// cover and make the boxes fewer.
#pragma once

#include <memory>

#include "board/game.h"
#include "patterns/pattern_list.h"

namespace varn {

/// Moves of a whole run: the better part of an hour, or more.
inline constexpr std::uint64_t kpk_moves = 100'000'000'000;

/// Random merges and splits, so many in all: as many tries of one as of the other, but few of the splits are made. The
/// list must not be empty.
void anneal(PatternList& list, std::uint64_t moves, Choices& choices, UniformState& acceptance);

/// The whole run: reads the file `kpkbb`, anneals the positions with result 0, writes `wkpk.eb`, and says how far it
/// is. Gives the boxes, or null, with a message, where there is no file or no such position. The game holds the last
/// position read. A terminal on the error stream is shown the progress.
std::unique_ptr<PatternList> anneal_kpk(Game* game, std::uint64_t moves = kpk_moves);

}  // namespace varn
