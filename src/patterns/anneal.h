// The annealing of king-and-pawn patterns: random merges and splits of boxes, which keep the set of positions that they
// cover and make the boxes fewer.
#pragma once

#include <memory>

#include "patterns/pattern_files.h"

namespace varn {

/// Moves of a whole run: the better part of an hour, or more.
inline constexpr std::uint64_t kpk_moves = 100'000'000'000;

/// Random merges and splits, so many in all: as many tries of one as of the other, but few of the splits are made. The
/// list must not be empty.
void anneal(PatternList& list, std::uint64_t moves, Choices& choices, UniformState& acceptance);

/// The last run of the pattern tool: its boxes, which may be an hour's work.
struct AnnealRun {
    std::unique_ptr<PatternList> list;
    bool is_written = true;  // false: the boxes couldn't be written, and the next call tries once more
    bool has_room = true;    // false: there are none, since they couldn't have been written
};

/// The whole run: reads the file `kpkbb`, anneals the positions with result 0, writes `wkpk.eb`, and says how far it
/// is. Leaves the boxes in `run`, or none, with a message, where there is no file or no such position, or no room for
/// the result. The game holds the last position read; `position_read` is told of each. A terminal on the error stream
/// is shown the progress.
///
/// What couldn't be written isn't lost: the next call does nothing but to try once more to write it.
void anneal_kpk(AnnealRun& run, Game& game, const PositionReader& position_read, std::uint64_t moves = kpk_moves);

/// To be called before the boxes of the run are gone with the process. What couldn't be written is tried once more, and
/// where that fails again it goes to the folder for temporary files, which is said. Returns whether nothing is astray:
/// false, too, where a run didn't begin because its result couldn't be written.
bool settle_patterns(AnnealRun& run);

}  // namespace varn
