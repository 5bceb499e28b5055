#include "frontend/time_control.h"

#include <algorithm>
#include <limits>

#include "board/output.h"
#include "frontend/numbers.h"
#include "search/clock.h"

namespace varn {

namespace {

enum class TimeMode : std::uint8_t { none, moves_per_control, increment };

TimeMode time_mode = TimeMode::none;
std::int32_t moves_per_control = 0;
std::int32_t turns_left = 0;
std::int64_t increment_ms = 0;

constexpr std::int64_t held_back_ms = 20;  // for everything that isn't search
constexpr std::int64_t increment_reserve_ms = 50;
constexpr std::int64_t shortest_search_ms = 10;
constexpr std::int64_t moves_planned = 30;  // an increment game is planned as if so many moves were to come
constexpr std::int64_t moves_assumed = 40;  // before any `level`

std::int64_t moves_to_go() { return time_mode == TimeMode::none ? moves_assumed : std::max(1, turns_left); }

std::int64_t share_of(std::int64_t remaining_ms) {
    if (time_mode != TimeMode::increment) return remaining_ms / moves_to_go();
    return remaining_ms / moves_planned + increment_ms - increment_reserve_ms;
}

std::int32_t limit(std::int64_t milliseconds) {
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(milliseconds, 0, std::numeric_limits<std::int32_t>::max()));
}

}  // namespace

void set_level(std::string_view numbers) {
    const auto moves = take_number(numbers);
    if (!moves) return;
    const auto base = take_number(numbers);
    const auto increment = base ? take_number(numbers) : std::nullopt;
    if (*moves == 0) {
        time_mode = TimeMode::increment;
        increment_ms = std::int64_t{1000} * increment.value_or(0);
    } else {
        time_mode = TimeMode::moves_per_control;
        moves_per_control = turns_left = *moves;
    }
}

void allocate_time(std::int32_t centiseconds) {
    const std::int64_t remaining_ms = std::int64_t{10} * centiseconds - held_back_ms;
    const std::int32_t allocation = limit(std::max(share_of(remaining_ms), shortest_search_ms));
    restart_clock(std::min(allocation, limit(remaining_ms * 9 / 10)));
    say("got time: %lld\nturns left = %d\nallocating %d milliseconds for search.\n",
        static_cast<long long>(remaining_ms), turns_left, allocation);
}

void count_turn() {
    if (turns_left > std::numeric_limits<std::int32_t>::min()) --turns_left;
    if (turns_left == 1) turns_left = moves_per_control;
}

}  // namespace varn
