// The files of the annealing: the solved positions that it reads and the boxes that it writes.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "board/position.h"
#include "patterns/pattern_list.h"

namespace varn {

// Both in the working directory.
inline constexpr const char* positions_file_name = "kpkbb";
inline constexpr const char* patterns_file_name = "wkpk.eb";
inline constexpr std::string_view cannot_dump_text = "error: cannot output evalubase file.\n";

struct LoadedPositions {
    std::vector<Pattern> drawn;  // one box for each position with result 0, in the file's order
    std::uint64_t lines = 0;     // of the file
};

/// Told of each position read what is wrong with its text; it may end the process.
using PositionReader = std::function<void(const PositionRemarks&)>;

/// Reads a file of lines of a position text, a tab and the position's result; nothing where it can't be opened. Lines
/// without a tab or without a number behind it are skipped, and what goes beyond 79 characters is a line of its own.
/// The game holds the last position read.
std::optional<LoadedPositions> load_positions(const char* file_name, Game& game, const PositionReader& position_read);

/// Whether the list could be written as it stands: a run finds out before it begins.
bool can_dump_patterns(const std::string& file_name, const PatternList& list);

/// A line with the number of boxes and the side, then a line for every box: its boards as `board_number` writes them
/// and the result. Says that the file was written, or that it couldn't be, and returns which.
bool dump_patterns(const std::string& file_name, const PatternList& list);

/// The same in a file of a name of its own, in the folder for temporary files; returns its name, or none.
std::optional<std::string> rescue_patterns(const std::string& file_name, const PatternList& list);

/// The high half of the board as a decimal number, left out where it is 0, and the low half, with nothing between them.
std::string board_number(Bitboard board);

}  // namespace varn
