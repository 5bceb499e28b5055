#include "xboard/pondering.h"

#include <cstdlib>

#include "base/output.h"
#include "board/notation.h"

namespace varn {

namespace {

constexpr std::int32_t ponder_limit_ms = 99999999;  // no limit in practice

/// Whether no `time` line has changed the limit since the search started.
bool has_no_deadline(const Clock& clock) {
    return clock.time_limit_ms.load(std::memory_order_relaxed) == ponder_limit_ms;
}

void set_limit(Clock& clock, std::int32_t limit) { clock.time_limit_ms.store(limit, std::memory_order_relaxed); }

}  // namespace

void start_pondering(Pondering& pondering, Engine& engine, const SearchListener& listener) {
    Search& s = *engine.search;
    pondering.ponder_move = *s.predicted_move;
    pondering.ponder_game = *engine.game;
    play_move(pondering.ponder_game, pondering.ponder_move);
    pondering.own_limit_ms = s.clock.time_limit_ms.load(std::memory_order_relaxed);
    set_limit(s.clock, ponder_limit_ms);
    start_clock(s.clock);
    const SearchLimits limits = {.depth = engine.ply_limit, .clock_runs = true};
    const bool started = start_thread(pondering.thread, [&pondering, &s, &listener, limits] {
        pondering.ponder_result = think(s, pondering.ponder_game, limits, listener);
    });
    if (!started) {
        say_text("error: cannot start new search thread\n");
        std::exit(1);
    }
    say("pondering: %s\n", move_text(pondering.ponder_move).c_str());
}

std::optional<Move> take_ponder_result(Pondering& pondering, Engine& engine) {
    Clock& clock = engine.search->clock;
    if (has_no_deadline(clock)) restart_clock(clock, pondering.own_limit_ms);
    join_thread(pondering.thread);
    return pondering.ponder_result;
}

void stop_pondering(Pondering& pondering, Engine& engine) {
    if (!is_pondering(pondering)) return;
    Clock& clock = engine.search->clock;
    stop_clock(clock);
    join_thread(pondering.thread);
    if (has_no_deadline(clock)) set_limit(clock, pondering.own_limit_ms);
}

}  // namespace varn
