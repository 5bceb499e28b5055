// The `go` command, from its line to its `bestmove`, on a search thread.
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

/// Limits given by a `go` line.
struct GoLimits {
    SearchLimits search;
    std::optional<GameClock> clock;  // of the side to move
    std::optional<std::int64_t> movetime_ms;
    bool infinite = false;
    bool ponder = false;
};

/// The search thread's job. The thread owns it until it is joined, except for what `mutex` guards.
struct GoJob {
    SearchThread thread;
    Game game;
    GoLimits limits;
    std::int32_t limit_ms = 0;  // applies after `ponderhit`
    std::uint32_t started_ms = 0;
    bool is_count = false;  // a move count: later commands wait for it, ten seconds at most

    std::mutex mutex;
    std::condition_variable changed;
    bool may_answer = true;     // guarded: whether `bestmove` may be sent
    bool is_pondering = false;  // guarded: until `ponderhit` or `stop`
    bool is_counted = false;    // guarded: the move count has ended
};

/// Executes a `go` line. A running search is stopped first and sends its move.
void go(Uci& uci, std::string_view arguments);

/// Perft by root move (`go perft`), on the search thread.
void count_by_move(Uci& uci, std::string_view arguments);

/// Stops the search, which sends its move at once. Doesn't wait.
void stop(Uci& uci);
/// `ponderhit`: the search continues on the clock of its `go`.
void ponder_hit(Uci& uci);

/// Ends the search thread's job: a search sends its move at once, a move count is waited for a while. Must be called
/// before anything touches the search.
void finish_search(Uci& uci);

}  // namespace varn
