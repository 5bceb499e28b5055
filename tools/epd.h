// Converts EPD test positions to lines of the engine's test suites.
//
// EPD is four fields of a position followed by operations, each an opcode with operands, ended by ";". Kept are "bm"
// (best moves), "dm" (mate distance) and "id". Everything else is dropped, because a suite counts a position as solved
// wherever the engine's move occurs in the line.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

namespace varn {

/// Result of a conversion.
struct Conversion {
    std::string line;     // suite line without newline; empty if refused
    std::string refusal;  // the reason
    std::string note;     // other remarks, or ""
};

/// Converts a line of EPD to a suite line, with the best moves in the engine's notation. Refused are lines without a
/// playable position or a best move, ambiguous or illegal best moves, and positions with an en-passant capture, which
/// suites can't express. Castling rights without king and rook at home and unusable en-passant squares are dropped.
Conversion convert_epd_line(std::string_view epd);

/// Converts line by line and reports refusals and notes on `messages` with line numbers. Blank lines and "#" comments
/// are skipped but counted. Returns the number of refused lines.
int convert_epd(std::istream& epd, std::ostream& suite, std::ostream& messages);

}  // namespace varn
