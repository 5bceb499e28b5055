#include "search/clock.h"

#include <chrono>

namespace varn {

std::uint32_t clock_ms() {
    const auto since_start = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(since_start).count());
}

void start_clock(Clock& clock) {
    clock.clock_start_ms.store(clock_ms(), std::memory_order_relaxed);
    clock.clock_running.store(1, std::memory_order_relaxed);
}

// Leaves `clock_running` alone: a search that is stopping must not resume.
void restart_clock(Clock& clock, std::int32_t limit_ms) {
    clock.clock_start_ms.store(clock_ms(), std::memory_order_relaxed);
    clock.time_limit_ms.store(limit_ms, std::memory_order_release);
}

void stop_clock(Clock& clock) { clock.clock_running.store(0, std::memory_order_relaxed); }

// The other thread may restart the clock between any two of these reads. The limit is read first, so that a new limit
// is never combined with an old start; the time is read last, so that it is never earlier than the start.
bool clock_ok_now(Clock& clock) {
    const auto limit = static_cast<std::uint32_t>(clock.time_limit_ms.load(std::memory_order_acquire));
    const std::uint32_t started = clock.clock_start_ms.load(std::memory_order_relaxed);
    if (clock_ms() - started <= limit) return true;
    stop_clock(clock);
    return false;
}

}  // namespace varn
