#include "search/clock.h"

#include <chrono>

namespace varn {

std::uint32_t nodes;
std::uint32_t quiescent_nodes;
std::uint64_t search_nodes;
std::atomic<std::uint32_t> clock_running = 0;
std::atomic<std::uint32_t> clock_start_ms = 0;
std::atomic<std::int32_t> time_limit_ms = 5000000;

std::uint32_t clock_ms() {
    const auto since_start = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(since_start).count());
}

void start_clock() {
    clock_start_ms.store(clock_ms(), std::memory_order_relaxed);
    clock_running.store(1, std::memory_order_relaxed);
}

// A search that has begun to end must not be told to go on: `clock_running` stays as it is.
void restart_clock(std::int32_t limit_ms) {
    clock_start_ms.store(clock_ms(), std::memory_order_relaxed);
    time_limit_ms.store(limit_ms, std::memory_order_release);
}

void stop_clock() { clock_running.store(0, std::memory_order_relaxed); }

// The other thread may restart the clock between any two of these lines. The limit is read first, so that a new limit
// never meets an old start, and the time last, so that it is never before the start.
bool clock_ok_now() {
    const auto limit = static_cast<std::uint32_t>(time_limit_ms.load(std::memory_order_acquire));
    const std::uint32_t started = clock_start_ms.load(std::memory_order_relaxed);
    if (clock_ms() - started <= limit) return true;
    clock_running.store(0, std::memory_order_relaxed);
    return false;
}

}  // namespace varn
