// Test positions in the common EPD form, turned into lines of the engine's test suites.
//
// EPD is four fields of a position and then operations, each an opcode with its operands, closed by ";". Of these "bm",
// the best moves, "dm", the length of a mate, and "id" are kept. Everything else goes: a suite counts a position as
// solved wherever in its line it finds the engine's move.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

namespace varn {

/// What became of a line.
struct Conversion {
    std::string line;     // of the suite, without a newline; empty where the line was refused
    std::string refusal;  // the reason
    std::string note;     // what else there is to say, "" for nothing
};

/// Turns a line of EPD into one of a suite, with the best moves in the engine's own text. A line that holds no position
/// that can be played, no best move, or one that names no single legal move, is refused. Castling rights whose pieces
/// don't stand at home, and an en-passant square where nothing can capture, are left out; a position with an en-passant
/// capture is refused, as no suite can hold it.
Conversion convert_epd_line(std::string_view epd);

/// Converts line by line, and says on `messages`, with the line's number, what it refuses or notes; blank lines and
/// comments, which begin with "#", count but go nowhere. Returns how many lines it refused.
int convert_epd(std::istream& epd, std::ostream& suite, std::ostream& messages);

}  // namespace varn
