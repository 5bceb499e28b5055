// The node counters and the one test that ends a search. A search never polls the input: it runs until its budget is
// used up, or until the thread that reads the input stops its clock.
#pragma once

#include <atomic>
#include <cstdint>

namespace varn {

// Entries of the search and of quiescence, and of quiescence alone, in this iteration. Written by the searching thread.
extern std::uint32_t nodes;
extern std::uint32_t quiescent_nodes;
// The first of these over all iterations of the last move, the unfinished one included.
extern std::uint64_t search_nodes;

// Shared by two threads, hence atomic.
extern std::atomic<std::uint32_t> clock_running;   // 1 while the search may go on
extern std::atomic<std::uint32_t> clock_start_ms;  // the clock when `start_clock` ran
extern std::atomic<std::int32_t> time_limit_ms;    // the budget in milliseconds, read as unsigned by the test

/// Milliseconds on a clock that never jumps; wraps every 49.7 days, so only differences mean something.
std::uint32_t clock_ms();

/// The budget counts from now, and the search may run.
void start_clock();
/// A new budget that counts from now, for a search that may be running on the other thread.
void restart_clock(std::int32_t limit_ms);
/// A search on the other thread ends at its next node. It must have been given a clock that runs already: one that has
/// yet to start its own would not hear of it.
void stop_clock();

/// Reads the clock; past the budget the search may not run on.
bool clock_ok_now();

/// Whether the search may go on. Reads the clock once in 16384 nodes only.
inline bool clock_ok() {
    constexpr std::uint32_t clock_interval_mask = 0x3fff;
    if (clock_running.load(std::memory_order_relaxed) == 0) return false;
    return (nodes & clock_interval_mask) != 0 || clock_ok_now();
}

}  // namespace varn
