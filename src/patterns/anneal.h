// Annealing of king-and-pawn patterns: random merges and splits of boxes that keep the covered set of positions and
// reduce the number of boxes.
#pragma once

#include <memory>

#include "patterns/pattern_files.h"

namespace varn {

/// Moves of a full run, which takes the better part of an hour or more.
inline constexpr std::uint64_t kpk_moves = 100'000'000'000;

/// Random merges and splits, `moves` in total: both are tried equally often, but few splits are accepted. The list must
/// not be empty.
void anneal(PatternList& list, std::uint64_t moves, Choices& choices, UniformState& acceptance);

/// The last annealing run. Its boxes may be an hour's work.
struct AnnealRun {
    std::unique_ptr<PatternList> list;
    bool is_written = true;  // false: writing failed; the next call retries
    bool has_room = true;    // false: there are no boxes because they couldn't have been written
};

/// A full run: reads the file `kpkbb`, anneals the positions with result 0, writes `wkpk.eb`, and reports. Leaves the
/// boxes in `run`, or none, with a message, if there is no file, no such position, or no room for the result. The game
/// holds the last position read; `position_read` is called for each. Progress is shown if the error stream is a
/// terminal.
///
/// If writing failed, the next call only tries to write again.
void anneal_kpk(AnnealRun& run, Game& game, const PositionReader& position_read, std::uint64_t moves = kpk_moves);

/// Call before the process ends. Retries to write unwritten boxes, and if that fails writes them to the folder for
/// temporary files, with a message. Returns whether nothing went wrong: also false if a run didn't start because its
/// result couldn't be written.
bool settle_patterns(AnnealRun& run);

}  // namespace varn
