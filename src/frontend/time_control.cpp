#include "frontend/time_control.h"

#include <algorithm>
#include <limits>

#include "frontend/numbers.h"

namespace varn {

namespace {

constexpr std::int64_t reserve_ms = 20;  // overhead outside the search
constexpr std::int64_t increment_reserve_ms = 50;
constexpr std::int64_t shortest_search_ms = 10;
constexpr std::int64_t short_clock_ms = 1000;  // below this, overhead outside the search matters
constexpr std::int64_t moves_planned = 30;     // expected remaining moves in increment games
constexpr std::int64_t moves_assumed = 40;     // moves per control before any `level`

std::int64_t moves_to_go(const TimeControl& control) {
    return control.time_mode == TimeMode::none ? moves_assumed : std::max(1, control.turns_left);
}

std::int64_t share_of(const TimeControl& control, std::int64_t remaining_ms) {
    if (control.time_mode != TimeMode::increment) return remaining_ms / moves_to_go(control);
    return remaining_ms / moves_planned + control.increment_ms - increment_reserve_ms;
}

std::int32_t limit(std::int64_t milliseconds) {
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(milliseconds, 0, std::numeric_limits<std::int32_t>::max()));
}

}  // namespace

void set_level(TimeControl& control, std::string_view numbers) {
    const auto moves = take_number(numbers);
    if (!moves) return;
    // Kept: docs/compatibility.md#level
    const auto base = take_number(numbers);
    const auto increment = base ? take_number(numbers) : std::nullopt;
    if (*moves == 0) {
        control.time_mode = TimeMode::increment;
        control.increment_ms = std::int64_t{1000} * increment.value_or(0);
    } else {
        control.time_mode = TimeMode::moves_per_control;
        control.moves_per_control = control.turns_left = *moves;
    }
}

Allocation allocate_time(const TimeControl& control, std::int32_t centiseconds) {
    const std::int64_t remaining_ms = std::int64_t{10} * centiseconds - reserve_ms;
    const std::int32_t planned_ms = limit(std::max(share_of(control, remaining_ms), shortest_search_ms));
    const std::int64_t highest_ms = remaining_ms < short_clock_ms ? remaining_ms / 20 : remaining_ms * 9 / 10;
    return {remaining_ms, planned_ms, std::min(planned_ms, limit(highest_ms))};
}

std::int32_t allocate_time(const GameClock& clock, std::int64_t overhead_ms) {
    constexpr std::int64_t longest_ms = std::numeric_limits<std::int32_t>::max();
    const std::int64_t time_ms = std::clamp<std::int64_t>(clock.time_ms, 0, longest_ms);
    const std::int64_t increment_ms = std::clamp<std::int64_t>(clock.increment_ms, 0, longest_ms);
    const std::int64_t usable_ms = std::max<std::int64_t>(0, time_ms - overhead_ms);
    const std::int64_t moves = clock.moves_to_go > 0 ? std::min(clock.moves_to_go, moves_planned) : moves_planned;
    // A single move may use a quarter of the clock, the last one before the time control more. Part of the increment is
    // saved, so that some time is left in long games.
    const std::int64_t highest_ms = clock.moves_to_go == 1 ? usable_ms * 4 / 5 : usable_ms / 4;
    const std::int64_t share_ms = usable_ms / moves + increment_ms * 3 / 4;
    return limit(std::max<std::int64_t>(1, std::min(share_ms, highest_ms)));
}

void count_turn(TimeControl& control) {
    if (control.turns_left > std::numeric_limits<std::int32_t>::min()) --control.turns_left;
    if (control.turns_left == 1) control.turns_left = control.moves_per_control;
}

}  // namespace varn
