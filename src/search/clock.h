// The clock of a search. A search never polls the input: it runs until its budget is used up, or until another thread,
// which reads the input, stops its clock.
#pragma once

#include <atomic>
#include <cstdint>

namespace varn {

/// Milliseconds on a clock that never jumps; wraps every 49.7 days, so only differences mean something.
std::uint32_t clock_ms();

/// Words that two threads share, hence atomic.
struct Clock {
    std::atomic<std::uint32_t> clock_running = 0;       // 1 while the search may go on
    std::atomic<std::uint32_t> clock_start_ms = 0;      // the clock when `start_clock` ran
    std::atomic<std::int32_t> time_limit_ms = 5000000;  // the budget in milliseconds, read as unsigned by the test
};

/// The budget counts from now, and the search may run.
void start_clock(Clock& clock);
/// A new budget that counts from now, for a search that may be running on another thread.
void restart_clock(Clock& clock, std::int32_t limit_ms);
/// A search on another thread ends at its next node. It must have been given a clock that runs already: one that has
/// yet to start its own would not hear of it.
void stop_clock(Clock& clock);

/// Reads the time; past the budget the search may not run on.
bool clock_ok_now(Clock& clock);

inline bool is_running(const Clock& clock) { return clock.clock_running.load(std::memory_order_relaxed) != 0; }

}  // namespace varn
