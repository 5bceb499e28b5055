// What the search tells of itself, as lines for people and for chess programs.
#pragma once

#include <string>

#include "search/record.h"

namespace varn {

/// A line's moves from a position in short algebraic form, as far as they follow from one another.
std::string line_text(const Game& game, const PvLine& line);

enum class QuiescentColumn : bool { left_out, shown };

/// One line of output: depth, score, hundredths of a second, nodes, quiescent nodes where they are shown, and the main
/// line.
void print_search_line(const SearchReport& report, QuiescentColumn column);

}  // namespace varn
