// The clock of a game: how it is dealt out, and how much of the time left a move may use.
#pragma once

#include <cstdint>
#include <string_view>

namespace varn {

enum class TimeMode : std::uint8_t { none, moves_per_control, increment };

/// What a front end knows of the game's clock. It outlasts a game: until the next `level` the old control stands.
struct TimeControl {
    TimeMode time_mode = TimeMode::none;
    std::int32_t moves_per_control = 0;
    std::int32_t turns_left = 0;
    std::int64_t increment_ms = 0;
};

/// Reads the numbers behind the word of a `level` line: moves per control, base time in minutes, increment in seconds.
/// With no moves per control it is an increment game. A number that can't be read ends the line, and counts as 0 with
/// all behind it; without the first the line changes nothing.
void set_level(TimeControl& control, std::string_view numbers);

/// What a move may use of the clock, in milliseconds.
struct Allocation {
    std::int64_t remaining_ms;  // what the clock holds, less what is held back for everything that isn't search
    std::int32_t planned_ms;    // the move's share of it
    std::int32_t limit_ms;      // what bounds the search: the share, but never past the clock, nor near its end
};

Allocation allocate_time(const TimeControl& control, std::int32_t centiseconds);

/// The clock of the side to move, as a client tells it before a move.
struct GameClock {
    std::int64_t time_ms;
    std::int64_t increment_ms = 0;
    std::int64_t moves_to_go = 0;  // until the next control; 0: the time is for the rest of the game
};

/// What bounds the search of a move, in milliseconds: its share of the time, with what every move loses beside search
/// taken off, and never more than the clock allows.
std::int32_t allocate_time(const GameClock& clock, std::int64_t overhead_ms);

/// The engine has answered a move: one less to go until the next control.
void count_turn(TimeControl& control);

}  // namespace varn
