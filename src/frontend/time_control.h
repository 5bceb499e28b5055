// The clock of a game under the protocol: what a `level` line says, and how much of the time left a move may use.
// What it keeps outlasts a game: until the next `level` the old control stands.
#pragma once

#include <cstdint>
#include <string_view>

namespace varn {

/// Reads the numbers behind the word of a `level` line: moves per control, base time in minutes, increment in seconds.
/// With no moves per control it is an increment game. A number that can't be read ends the line, and counts as 0 with
/// all behind it; without the first the line changes nothing.
void set_level(std::string_view numbers);

/// Sets `time_limit_ms` from the hundredths of a second left on the engine's clock, starts the clock, and prints the
/// allocation in three lines. The limit in force may be lower than the one printed: it never plans past the clock.
void allocate_time(std::int32_t centiseconds);

/// The engine has answered a move: one less to go until the next control.
void count_turn();

}  // namespace varn
