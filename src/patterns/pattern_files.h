// Files of the annealing: solved positions as input, boxes as output.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "board/position.h"
#include "patterns/pattern_list.h"

namespace varn {

// In the working directory.
inline constexpr const char* positions_file_name = "kpkbb";
inline constexpr const char* patterns_file_name = "wkpk.eb";
inline constexpr std::string_view cannot_dump_text = "error: cannot output evalubase file.\n";

struct LoadedPositions {
    std::vector<Pattern> drawn;  // one box per position with result 0, in file order
    std::uint64_t lines = 0;     // in the file
};

/// Called with the remarks on each position read; may end the process.
using PositionReader = std::function<void(const PositionRemarks&)>;

/// Reads lines of a position text, a tab and the position's result; none if the file can't be opened. Lines without a
/// tab or a number after it are skipped, and lines are split after 79 characters. The game holds the last position
/// read.
std::optional<LoadedPositions> load_positions(const char* file_name, Game& game, const PositionReader& position_read);

/// Whether the list can be written: tested before a run starts.
bool can_dump_patterns(const std::string& file_name, const PatternList& list);

/// Writes a line with the number of boxes and the side, then a line per box with its boards, as `board_number` writes
/// them, and the result. Reports success or failure and returns it.
bool dump_patterns(const std::string& file_name, const PatternList& list);

/// The same in a uniquely named file in the folder for temporary files; returns its name, or none.
std::optional<std::string> rescue_patterns(const std::string& file_name, const PatternList& list);

/// The high half of the board as a decimal number, omitted if 0, directly followed by the low half.
std::string board_number(Bitboard board);

}  // namespace varn
