#include "frontend/pondering.h"

#include <pthread.h>

#include <cstdlib>

#include "board/make.h"
#include "board/notation.h"
#include "board/output.h"
#include "search/clock.h"
#include "search/think.h"

namespace varn {

namespace {

constexpr std::int32_t ponder_limit_ms = 99999999;  // no limit in practice
// Each ply of a search keeps a line of moves on the stack, about 10 kilobytes; the deepest line has 500 plies.
constexpr std::size_t search_stack_bytes = 16U << 20U;

pthread_t search_thread;
bool pondering_now = false;
Game ponder_game;  // the search thread's own from its start until it is joined
Move ponder_move;
std::optional<Move> ponder_result;  // written by the search thread, read after the join
std::int32_t own_limit_ms;          // the budget from before pondering

void* search_thread_main(void*) {
    const Move* move = think_on_running_clock(&ponder_game);
    ponder_result = move != nullptr ? std::optional(*move) : std::nullopt;
    return nullptr;
}

void start_search_thread() {
    pthread_attr_t attributes;
    const bool started = pthread_attr_init(&attributes) == 0 &&
                         pthread_attr_setstacksize(&attributes, search_stack_bytes) == 0 &&
                         pthread_create(&search_thread, &attributes, search_thread_main, nullptr) == 0;
    if (!started) {
        say_text("error: cannot start new search thread\n");
        std::exit(1);
    }
    pthread_attr_destroy(&attributes);
}

void join_search_thread() {
    pthread_join(search_thread, nullptr);
    pondering_now = false;
}

/// Whether the running search still has the limit that it was started with: no `time` line came since.
bool has_no_deadline() { return time_limit_ms.load(std::memory_order_relaxed) == ponder_limit_ms; }

void set_limit(std::int32_t limit) { time_limit_ms.store(limit, std::memory_order_relaxed); }

}  // namespace

bool is_pondering() { return pondering_now; }

bool is_ponder_hit(Move move) { return pondering_now && move == ponder_move; }

void start_pondering(const Game* game) {
    ponder_move = predicted_move;
    ponder_game = *game;
    play_move(ponder_move, &ponder_game);
    own_limit_ms = time_limit_ms.load(std::memory_order_relaxed);
    set_limit(ponder_limit_ms);
    start_clock();
    start_search_thread();
    pondering_now = true;
    say("pondering: %s\n", move_text(ponder_move).c_str());
}

std::optional<Move> take_ponder_result() {
    if (has_no_deadline()) restart_clock(own_limit_ms);
    join_search_thread();
    return ponder_result;
}

void stop_pondering() {
    if (!pondering_now) return;
    stop_clock();
    join_search_thread();
    if (has_no_deadline()) set_limit(own_limit_ms);
}

}  // namespace varn
