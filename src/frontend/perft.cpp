#include "frontend/perft.h"

#include <chrono>

#include "board/make.h"
#include "board/movegen.h"
#include "board/output.h"
#include "frontend/compare_games.h"
#include "frontend/numbers.h"
#include "search/clock.h"
#include "search/picker.h"
#include "search/search.h"

namespace varn {

namespace {

/// Legal lines of so many plies, side S to move. The depth left serves as ply, so that each level has slots of its own.
template <Side S> std::uint64_t perft_count(Game& game, int depth) {
    if (depth == 0) return 1;
    std::uint64_t leaves = 0;
    const MoveList* list = generate_all(&game, depth);
    const Restraints restraints = restraints_of<S>(game);
    UndoRecord* undo = save_undo(&game, {}, depth);
    for (int i = 0; i < list->count; ++i) {
        const Move move = list->moves[i];
        if (!make_if_legal<S>(game, move, depth, restraints, *undo)) continue;
        leaves += perft_count<other(S)>(game, depth - 1);
        unmake_for<S>(game, move, *undo);
    }
    return leaves;
}

std::uint64_t count_generated(Game* game, int depth) {
    return game->turn == 0 ? perft_count<Side::white>(*game, depth) : perft_count<Side::black>(*game, depth);
}

/// The same through the staged picker, on the plies and with the window of a search's main line.
std::uint64_t advperft_count(Game* game, int depth, int ply) {
    if (depth == 0) return 1;
    std::uint64_t leaves = 0;
    const auto next = [&] { return next_move(game, ply, -mate_score, mate_score, depth, ply); };
    start_picking(ply);
    for (const Move* made = next(); made != nullptr; made = next()) {
        const Move move = *made;
        leaves += advperft_count(game, depth - 1, ply + 1);
        retract_move(game, move, &undo_stack[ply]);
    }
    return leaves;
}

/// The picker as a search of this depth meets it: the clock runs, else the shallower searches that the picker asks for
/// would give it nothing. Whether a search may run afterwards is as it was before.
std::uint64_t count_as_a_search(Game* game, int depth) {
    const std::uint32_t ran_before = clock_running;
    const std::uint32_t start_before = clock_start_ms;
    const std::int32_t iteration_before = iteration_depth;
    iteration_depth = depth;
    start_clock();
    const std::uint64_t leaves = advperft_count(game, depth, 0);
    iteration_depth = iteration_before;
    clock_start_ms = start_before;
    clock_running = ran_before;
    return leaves;
}

void report_count(Game* game, int depth, std::uint64_t (*count)(Game* game, int depth)) {
    const Game copy = *game;
    const auto started = std::chrono::steady_clock::now();
    say("running perft=%d\n", depth);
    const std::uint64_t leaves = count(game, depth);
    const auto taken = std::chrono::steady_clock::now() - started;
    say("Counted: %llu nodes in %d seconds.\n", static_cast<unsigned long long>(leaves),
        static_cast<int>(std::chrono::duration_cast<std::chrono::seconds>(taken).count()));
    compare_games(&copy, game);
}

void run_count(Console& console, const CommandLine& line, void (*count)(Game* game, int depth)) {
    std::string_view rest = line.rest;
    const auto depth = take_number(rest);
    if (!depth || *depth < 0 || *depth > last_ply) {
        ignore_line(line);
    } else if (!refuse_unplayable(console.game.get())) {
        count(console.game.get(), *depth);
    }
}

}  // namespace

void perft(Game* game, int depth) { report_count(game, depth, count_generated); }

void advperft(Game* game, int depth) { report_count(game, depth, count_as_a_search); }

void count_moves(Console& console, const CommandLine& line) { run_count(console, line, perft); }

void count_picked_moves(Console& console, const CommandLine& line) { run_count(console, line, advperft); }

}  // namespace varn
