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

bool clock_ok_now() {
    const std::uint32_t elapsed = clock_ms() - clock_start_ms.load(std::memory_order_relaxed);
    if (elapsed <= static_cast<std::uint32_t>(time_limit_ms.load(std::memory_order_relaxed))) return true;
    clock_running.store(0, std::memory_order_relaxed);
    return false;
}

}  // namespace varn
