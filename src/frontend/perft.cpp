#include "frontend/perft.h"

#include <chrono>
#include <vector>

#include "base/output.h"
#include "board/movegen.h"
#include "frontend/compare_games.h"
#include "search/picker.h"
#include "search/search.h"

namespace varn {

namespace {

struct PerftPly {
    MoveList list;
    UndoRecord undo;
};

/// Side S is to move. `depth`, the remaining depth, also indexes `plies`.
template <Side S> std::uint64_t count_leaves(Game& game, std::vector<PerftPly>& plies, std::size_t depth) {
    if (depth == 0) return 1;
    std::uint64_t leaves = 0;
    auto& [list, undo] = plies[depth];
    generate_all(game, list);
    save_undo(game, undo);
    const Pins pins = pins_of<S>(game);
    for (const Move move : list) {
        if (!make_if_legal<S>(game, move, pins, undo)) continue;
        leaves += count_leaves<other(S)>(game, plies, depth - 1);
        unmake_for<S>(game, move, undo);
    }
    return leaves;
}

/// The same through the move picker, with the window of a principal variation node.
std::uint64_t advperft_count(Search& s, Game& game, int depth, int ply) {
    if (depth == 0) return 1;
    std::uint64_t leaves = 0;
    const auto first = first_move(s, game, ply, -mate_score, mate_score, depth);
    const Pins pins = pins_of(game);
    Picker picker = make_picker(s, pins, ply, ply, mate_score, depth, first);
    while (const auto move = next_move(s, game, picker)) {
        leaves += advperft_count(s, game, depth - 1, ply + 1);
        retract_move(game, *move, s.undo_stack[ply]);
    }
    return leaves;
}

/// Sets up the search as for this depth. The clock must run, or internal iterative deepening would find nothing; it is
/// restored afterwards.
std::uint64_t count_as_a_search(Search& s, Game& game, int depth) {
    const std::uint32_t ran_before = s.clock.clock_running;
    const std::uint32_t start_before = s.clock.clock_start_ms;
    const std::int32_t iteration_before = s.iteration_depth;
    s.iteration_depth = depth;
    start_clock(s.clock);
    const std::uint64_t leaves = advperft_count(s, game, depth, 0);
    s.iteration_depth = iteration_before;
    s.clock.clock_start_ms = start_before;
    s.clock.clock_running = ran_before;
    return leaves;
}

template <typename Count> void report_count(const Game& game, int depth, Count count) {
    Game copy = game;
    const auto started = std::chrono::steady_clock::now();
    say("running perft=%d\n", depth);
    const std::uint64_t leaves = count(copy);
    const auto taken = std::chrono::steady_clock::now() - started;
    say("Counted: %llu nodes in %d seconds.\n", static_cast<unsigned long long>(leaves),
        static_cast<int>(std::chrono::duration_cast<std::chrono::seconds>(taken).count()));
    compare_games(game, copy);
}

}  // namespace

std::uint64_t count_leaves(Game& game, int depth) {
    const auto plies = static_cast<std::size_t>(depth);
    std::vector<PerftPly> records(plies + 1);
    return game.turn == Side::white ? count_leaves<Side::white>(game, records, plies)
                                    : count_leaves<Side::black>(game, records, plies);
}

void perft(const Game& game, int depth) {
    report_count(game, depth, [depth](Game& copy) { return count_leaves(copy, depth); });
}

void advperft(Search& s, const Game& game, int depth) {
    report_count(game, depth, [&s, depth](Game& copy) { return count_as_a_search(s, copy, depth); });
}

}  // namespace varn
