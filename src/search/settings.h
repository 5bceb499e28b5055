// The settings that the search obeys, as process-wide variables. The front ends write them between searches; those that
// they may change while a search runs on the other thread are atomic. `time_limit_ms` stands with the clock.
#pragma once

#include <atomic>
#include <cstdint>

namespace varn {

// Read from the settings file before the tables are allocated.
extern std::int32_t hash_bits;    // the transposition table has (1 << hash_bits) - 1 entries
extern std::int32_t qhash_bytes;  // memory for the quiescence table

// Written by commands.
extern std::int32_t xboard_mode;   // 1 once the protocol runs: no table header, no quiescent nodes, no speed line
extern std::int32_t book_enabled;  // 1: the opening book is asked first; a position set from text clears it, too
extern std::atomic<std::int32_t> ply_limit;      // deepest iteration of a search, as the user asked for it
extern std::atomic<std::int32_t> post_thinking;  // 1: a line at each improvement and at each finished iteration

/// Fills the board's reset hooks: new games and set positions then allocate and clear the search's and the evaluation's
/// tables. Called once at start-up, after the settings are read.
void install_reset_hooks();

}  // namespace varn
