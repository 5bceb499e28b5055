#include "frontend/time_control.h"

#include <algorithm>
#include <limits>

#include "frontend/numbers.h"

namespace varn {

namespace {

constexpr std::int64_t held_back_ms = 20;  // for everything that isn't search
constexpr std::int64_t increment_reserve_ms = 50;
constexpr std::int64_t shortest_search_ms = 10;
constexpr std::int64_t moves_planned = 30;  // an increment game is planned as if so many moves were to come
constexpr std::int64_t moves_assumed = 40;  // before any `level`

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
    const std::int64_t remaining_ms = std::int64_t{10} * centiseconds - held_back_ms;
    const std::int32_t planned_ms = limit(std::max(share_of(control, remaining_ms), shortest_search_ms));
    return {remaining_ms, planned_ms, std::min(planned_ms, limit(remaining_ms * 9 / 10))};
}

void count_turn(TimeControl& control) {
    if (control.turns_left > std::numeric_limits<std::int32_t>::min()) --control.turns_left;
    if (control.turns_left == 1) control.turns_left = control.moves_per_control;
}

}  // namespace varn
