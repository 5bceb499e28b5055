// Thinking on the opponent's time: the position after the expected reply is searched on a second thread while the main
// thread goes on reading. There is one such thread at a time, started afresh for each search and always joined by the
// functions below; no lock is needed beyond the join, because the main thread doesn't search or clear tables meanwhile.
// A search is stopped by its clock, never by a message.
//
// Everything here belongs to the main thread.
#pragma once

#include <optional>

#include "board/game.h"

namespace varn {

/// Whether a pondering search was started and has not been dealt with; it may have ended by itself.
bool is_pondering();

/// Whether the move is the one that is being pondered on.
bool is_ponder_hit(Move move);

/// Starts the search of the position after `predicted_move`, without a time limit, and says so. A thread that can't be
/// started ends the process with a message and status 1.
void start_pondering(const Game* game);

/// The opponent has played the expected move: waits for the search to use up its time, and gives its move. A `time`
/// line that came meanwhile has set that time; without one it is the budget from before pondering, counted from now.
std::optional<Move> take_ponder_result();

/// Ends the search, if there is one, and drops its result. The time limit is then that of the engine's own search
/// again. Whatever touches what a search uses calls this first.
void stop_pondering();

}  // namespace varn
