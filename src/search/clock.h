// The search clock. The search never polls input: it runs until its time is up, or until the input thread stops the
// clock.
#pragma once

#include <atomic>
#include <cstdint>

namespace varn {

/// Monotonic time in milliseconds. Wraps every 49.7 days, so only differences are meaningful.
std::uint32_t clock_ms();

/// Shared by two threads, hence atomic.
struct Clock {
    std::atomic<std::uint32_t> clock_running = 0;       // 1 while the search may go on
    std::atomic<std::uint32_t> clock_start_ms = 0;      // `clock_ms()` at the start
    std::atomic<std::int32_t> time_limit_ms = 5000000;  // compared as unsigned
};

/// Starts the clock and lets the search run.
void start_clock(Clock& clock);
/// Sets a new limit, counted from now, for a search that may already be running on another thread.
void restart_clock(Clock& clock, std::int32_t limit_ms);
/// Ends a search on another thread at its next node. The search must have been given a running clock: one that starts
/// its own clock later would miss the stop.
void stop_clock(Clock& clock);

/// Reads the time. Stops the clock and returns false once the limit is passed.
bool clock_ok_now(Clock& clock);

inline bool is_running(const Clock& clock) { return clock.clock_running.load(std::memory_order_relaxed) != 0; }

}  // namespace varn
