// Pondering: the position after the expected reply is searched on a second thread while the main thread keeps reading
// input. The main thread must stop pondering before it searches or clears tables.
#pragma once

#include <optional>

#include "frontend/engine.h"
#include "frontend/search_thread.h"

namespace varn {

/// Owned by the main thread; the search thread writes only the result.
struct Pondering {
    SearchThread thread;
    Game ponder_game;    // the position being searched
    Move ponder_move{};  // the expected move
    std::optional<Move> ponder_result;
    std::int32_t own_limit_ms = 0;  // time limit before pondering
};

/// Whether a pondering search was started and not yet stopped or taken; it may have finished.
inline bool is_pondering(const Pondering& pondering) { return pondering.thread.is_active; }

/// Whether the move is the expected one.
inline bool is_ponder_hit(const Pondering& pondering, Move move) {
    return is_pondering(pondering) && move == pondering.ponder_move;
}

/// Starts searching the position after the predicted move, without a time limit, and prints a message. If no thread can
/// be started the process ends with a message and status 1.
void start_pondering(Pondering& pondering, Engine& engine, const SearchListener& listener);

/// Ponder hit: waits for the search to use up its time and returns its move. A `time` line during pondering has set
/// that time; otherwise it is the limit from before pondering, counted from now.
std::optional<Move> take_ponder_result(Pondering& pondering, Engine& engine);

/// Stops a pondering search, if any, drops its result and restores the time limit. Must be called before anything
/// touches the search.
void stop_pondering(Pondering& pondering, Engine& engine);

}  // namespace varn
