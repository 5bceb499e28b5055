// A `go` of the protocol from its line to its `bestmove`, on a thread of its own.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string_view>

#include "frontend/search_thread.h"
#include "frontend/time_control.h"
#include "search/think.h"

namespace varn {

struct Uci;

/// What a `go` line asks for.
struct GoLimits {
    SearchLimits search;
    std::optional<GameClock> clock;  // of the side to move
    std::optional<std::int64_t> movetime_ms;
    bool infinite = false;
    bool ponder = false;
};

/// The work of the search thread. The thread has it from its start until it is joined, but for what `mutex` guards.
struct GoJob {
    SearchThread thread;
    Game game;
    GoLimits limits;
    std::int32_t limit_ms = 0;  // once a pondering search has been hit
    std::uint32_t started_ms = 0;
    bool is_count = false;  // a move count: what comes behind waits for its end, ten seconds at most

    std::mutex mutex;
    std::condition_variable changed;
    bool may_answer = true;     // guarded: false holds a finished search's move back
    bool is_pondering = false;  // guarded: until `ponderhit` or `stop`
    bool is_counted = false;    // guarded: a move count has ended
};

/// Starts what stands behind `go`; a search that is still at work is stopped first and gives its move.
void go(Uci& uci, std::string_view arguments);

/// Counts the legal lines of so many plies by root move, on the search thread.
void count_by_move(Uci& uci, std::string_view arguments);

/// The search gives its move at once, as a `go` without an answer does. Doesn't wait for it.
void stop(Uci& uci);
/// The opponent has played the move that is pondered on: the search goes on by the clock of its `go`.
void ponder_hit(Uci& uci);

/// Ends the search thread's work: a search gives its move at once, a move count is waited for a while. Whatever
/// touches what a search uses calls this first.
void finish_search(Uci& uci);

}  // namespace varn
