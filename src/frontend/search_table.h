// Search output as text lines.
#pragma once

#include <string>

#include "search/record.h"

namespace varn {

/// The moves of a line in algebraic notation, as far as they are legal.
std::string line_text(const Game& game, const PvLine& line);

enum class QuiescentColumn : bool { left_out, shown };

/// Prints one line: depth, score, time in hundredths of a second, nodes, quiescent nodes if wanted, and the principal
/// variation.
void print_search_line(const SearchReport& report, QuiescentColumn column);

}  // namespace varn
