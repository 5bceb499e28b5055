// Complete searches: limits, listener calls, and the signature of the search. Scores, lines and node counts are
// compared with a plain search: see search_sequence_test.cpp.
#include <gtest/gtest.h>

#include "search/think.h"
#include "search_fixture.h"

namespace varn {
namespace {

class Think : public SearchTest {
protected:
    std::optional<Move> think_to(const Game& game, int depth, const SearchListener& listener = {}) {
        return think(s, game, {.depth = depth}, listener);
    }
};

/// A different number means that the engine plays differently.
TEST_F(Think, ItsSignatureStands) {
    think_to(*game_from("r1bq2r1/b4pk1/p1pp1p2/1p2pP2/1P2P1PB/3P4/1PPQ2P1/R3K2R w KQ -"),
             4);  // the next aspiration window depends on this score
    qhash_clear(qtable);
    s.killers = {};
    std::uint64_t all_nodes = 0;
    for (const KnownPosition& known : known_positions) {
        think_to(*game_from(known.text), 6);
        all_nodes += s.search_nodes;
    }
    EXPECT_EQ(all_nodes, 6250635U);
}

TEST_F(Think, StoppedWithoutALineGivesTheFirstLegalMove) {
    const auto game = game_from("qqqqkqqq/qqqqqqqq/8/8/8/8/QQQQQQQQ/QQQQKQQQ w - -");
    s.clock.time_limit_ms = 0;
    EXPECT_EQ(think_to(*game, deepest_iteration), every_legal_move(*game)[0]);
    EXPECT_EQ(s.iteration_depth, 1);
    EXPECT_FALSE(s.predicted_move);
    // The clock may have been started and stopped before the search begins.
    s.clock.time_limit_ms = 1 << 30;
    stop_clock(s.clock);
    EXPECT_EQ(think(s, *game, {.clock_runs = true}, {}), every_legal_move(*game)[0]);
    EXPECT_FALSE(is_running(s.clock));
}

TEST_F(Think, ExcludedRootMovesAreNeitherSearchedNorStored) {
    const auto game = game_from(start_text);
    const std::vector<Move> only = {parse_move(*game, "a2a3"), parse_move(*game, "h2h4")};
    for (const auto& moves : {only, std::vector<Move>{}}) {
        const auto best = think(s, *game, {.depth = 2, .only = moves}, {});
        EXPECT_EQ(hash_probe(s.tables.transposition_table, *game, 0) == nullptr, !moves.empty());
        EXPECT_TRUE(moves.empty() || best == moves[0] || best == moves[1]);
    }
    // Scores of excluded moves must not matter.
    const auto winning = game_from("4k3/8/8/3q4/4P3/8/8/4K3 w - -");
    think(s, *winning, {.depth = 4, .only = {parse_move(*winning, "e1e2")}}, {});
    EXPECT_LT(s.root_score, 0);
    think(s, *winning, {.depth = 4}, {});
    EXPECT_GT(s.root_score, 0);
}

TEST_F(Think, ReportsEachIterationAndEachBetterLine) {
    std::string order;
    int last_score = 0;
    SearchListener listener;
    listener.search_started = [&] { order += 's'; };
    listener.line_improved = [&](const SearchReport& report) {
        EXPECT_EQ(report.milliseconds, 0U);
        last_score = report.score;
        if (order.back() != 'l') order += 'l';
    };
    listener.iteration_finished = [&](const SearchReport& report) {
        EXPECT_EQ(report.score, last_score) << "not the score of the last line reported";
        order += static_cast<char>('0' + report.depth);
    };
    listener.search_finished = [&](double nodes_per_second) {
        EXPECT_GT(nodes_per_second, 0);
        order += 'f';
    };
    think_to(*game_from(start_text), 4, listener);
    EXPECT_EQ(order, "sl1l2l3l4f");
}

TEST_F(Think, RestartingTheClockCountsFromNowButDoesNotStart) {
    s.clock.clock_start_ms = clock_ms() - 1000;
    s.clock.time_limit_ms = 10;
    restart_clock(s.clock, 600000);
    EXPECT_TRUE(clock_ok_now(s.clock));
    stop_clock(s.clock);
    restart_clock(s.clock, 600000);
    EXPECT_FALSE(is_running(s.clock)) << "a search that has begun to end must not go on";
}

}  // namespace
}  // namespace varn
