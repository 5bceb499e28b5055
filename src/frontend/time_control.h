// Time management: how much of the remaining time a move may use.
#pragma once

#include <cstdint>
#include <string_view>

namespace varn {

enum class TimeMode : std::uint8_t { none, moves_per_control, increment };

/// The time control of a front end. It is kept across games until the next `level`.
struct TimeControl {
    TimeMode time_mode = TimeMode::none;
    std::int32_t moves_per_control = 0;
    std::int32_t turns_left = 0;
    std::int64_t increment_ms = 0;
};

/// Reads the numbers of a `level` line: moves per control, base time in minutes, increment in seconds. 0 moves per
/// control means an increment game. An unreadable number and all after it count as 0; if the first is unreadable
/// nothing changes.
void set_level(TimeControl& control, std::string_view numbers);

/// Time for one move, in milliseconds.
struct Allocation {
    std::int64_t remaining_ms;  // time on the clock minus overhead
    std::int32_t planned_ms;    // the move's share
    std::int32_t limit_ms;      // limit of the search: the share, well within the clock
};

Allocation allocate_time(const TimeControl& control, std::int32_t centiseconds);

/// The clock of the side to move, as sent by a client before a move.
struct GameClock {
    std::int64_t time_ms;
    std::int64_t increment_ms = 0;
    std::int64_t moves_to_go = 0;  // until the next time control; 0: sudden death
};

/// The time limit of a search in milliseconds: the move's share minus overhead, never more than the clock allows.
std::int32_t allocate_time(const GameClock& clock, std::int64_t overhead_ms);

/// Counts a move of the engine towards the next time control.
void count_turn(TimeControl& control);

}  // namespace varn
