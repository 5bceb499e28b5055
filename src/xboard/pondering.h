// Thinking on the opponent's time: the position after the expected reply is searched on a second thread while the main
// thread goes on reading. The main thread doesn't search or clear tables meanwhile: whatever does either stops the
// pondering first.
#pragma once

#include <optional>

#include "frontend/engine.h"
#include "frontend/search_thread.h"

namespace varn {

/// Everything here belongs to the main thread, but for the result until the search thread is joined.
struct Pondering {
    SearchThread thread;
    Game ponder_game;    // the position that is searched
    Move ponder_move{};  // the move that is being pondered on
    std::optional<Move> ponder_result;
    std::int32_t own_limit_ms = 0;  // the budget from before pondering
};

/// Whether a pondering search was started and has not been dealt with; it may have ended by itself.
inline bool is_pondering(const Pondering& pondering) { return pondering.thread.is_active; }

/// Whether the move is the one that is being pondered on.
inline bool is_ponder_hit(const Pondering& pondering, Move move) {
    return is_pondering(pondering) && move == pondering.ponder_move;
}

/// Starts the search of the position after the predicted move, without a time limit, and says so. A thread that can't
/// be started ends the process with a message and status 1.
void start_pondering(Pondering& pondering, Engine& engine, const SearchListener& listener);

/// The opponent has played the expected move: waits for the search to use up its time, and gives its move. A `time`
/// line that came meanwhile has set that time; without one it is the budget from before pondering, counted from now.
std::optional<Move> take_ponder_result(Pondering& pondering, Engine& engine);

/// Ends the search, if there is one, and drops its result. The time limit is then that of the engine's own search
/// again. Whatever touches what a search uses calls this first.
void stop_pondering(Pondering& pondering, Engine& engine);

}  // namespace varn
