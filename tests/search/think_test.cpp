// Complete searches: mates, limits, listener calls, and the signature of the search.
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

    std::string main_line(Game game) const {
        std::string text;
        for (int i = 0; i < s.main_pv.length; ++i) {
            if (!is_valid_move(game, s.main_pv.moves[i])) break;
            text += san_text(game, s.main_pv.moves[i]) + " ";
            make_move(game, s.main_pv.moves[i]);
        }
        return text;
    }
};

constexpr std::tuple<std::string_view, int, int, std::string_view> mates[] = {
    {"r1bq2r1/b4pk1/p1pp1p2/1p2pP2/1P2P1PB/3P4/1PPQ2P1/R3K2R w KQ -", 2, 4, "Qh6+ Kxh6 Bxf6# "},
    {"7k/8/4K3/8/8/8/8/6R1 w - -", 2, 4, "Kf7 Kh7 Rh1# "},
    {"r5rk/5p1p/5R2/4B3/8/8/7P/7K w - -", 3, 5, "Ra6+ f6 Bxf6+ Rg7 Rxa8# "},
    {"r5k1/2p2ppp/p1P2n2/8/1pP2bbQ/1B3PP1/PP1Pq2P/RNB3K1 b - -", 3, 6, "Qe1+ Kg2 Bxf3+ Kxf3 Qf1# "},
    {"2r1r3/p3P1k1/1p1pR1Pp/n2q1P2/8/2p4P/P4Q2/1B3RK1 w - -", 4, 7, "f6+ Kh8 g7+ Kg8 f7+ Kxg7 Qf6# "},
};

TEST_F(Think, Mates) {
    for (const auto& [text, moves, depth, line] : mates) {
        for (const bool mirror : {false, true}) {
            const auto game = game_from(mirror ? mirrored_text(text) : std::string(text));
            EXPECT_EQ(think_to(*game, depth), s.main_pv.moves[0]);
            EXPECT_EQ(s.root_score, mate_score - (2 * moves - 1)) << text << mirror;
            std::string expected(line);
            for (char& c : expected) c = static_cast<char>(mirror && c >= '1' && c <= '8' ? '1' + '8' - c : c);
            EXPECT_EQ(main_line(*game), expected) << text;
            EXPECT_EQ(s.predicted_move, s.main_pv.moves[1]);
        }
    }
}

/// A different number means that the engine plays differently.
TEST_F(Think, ItsSignatureStands) {
    think_to(*game_from(std::get<0>(mates[0])), 4);  // the next aspiration window depends on this score
    qhash_clear(qtable);
    s.killers = {};
    std::uint64_t all_nodes = 0;
    for (const KnownPosition& known : known_positions) {
        think_to(*game_from(known.text), 6);
        all_nodes += s.search_nodes;
    }
    EXPECT_EQ(all_nodes, 6250635U);
}

TEST_F(Think, StoppedSearchesGiveALegalMove) {
    for (const KnownPosition& known : known_positions) {
        for (const int limit : {0, 1, 5}) {
            s.clock.time_limit_ms = limit;
            const auto game = game_from(known.text);
            const auto move = think_to(*game, deepest_iteration);
            ASSERT_TRUE(move);
            EXPECT_TRUE(is_valid_move(*game, *move)) << known.text;
        }
    }
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

TEST_F(Think, ForcedMovesAndFinishedGamesAreNotSearched) {
    for (const auto& [text, forced] : {std::pair{"7k/8/8/8/8/8/r7/7K w - -", "h1g1"},
                                       {"7k/8/8/8/8/6q1/r7/7K w - -", ""},
                                       {"k7/8/8/8/8/8/r4q2/7K w - -", ""}}) {
        s.predicted_move = Move{e1, e8, kind_quiet};
        bool told = false;
        SearchListener listener;
        listener.search_started = [&] { told = true; };
        const auto move = think_to(*game_from(text), deepest_iteration, listener);
        EXPECT_EQ(move ? move_text(*move) : "", forced) << text;
        EXPECT_FALSE(told);
        EXPECT_FALSE(s.predicted_move);
        EXPECT_EQ(s.nodes, 0U);
    }
}

TEST_F(Think, DeepensToTheDepthLimit) {
    const auto game = game_from("4k3/8/8/8/8/8/8/4KB2 w - -");
    for (const auto& [limit, deepest] : {std::pair{-5, 1}, {0, 1}, {1, 1}, {7, 7}, {50, 50}, {99, 50}}) {
        think_to(*game, limit);
        EXPECT_EQ(s.iteration_depth, deepest);
    }
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
    const auto game = game_from(start_text);
    std::string order;
    int last_score = 0;
    const auto expect_report = [&](const SearchReport& report) {
        EXPECT_TRUE(same_game(report.game, *game));
        EXPECT_EQ(report.line.moves[0], s.main_pv.moves[0]);
        EXPECT_TRUE(report.line.length > 0 && is_valid_move(*game, report.line.moves[0]));
        EXPECT_EQ(report.depth, s.iteration_depth);
        EXPECT_EQ(report.nodes, s.nodes);
        EXPECT_EQ(report.quiescent_nodes, s.quiescent_nodes);
    };
    SearchListener listener;
    listener.search_started = [&] { order += 's'; };
    listener.line_improved = [&](const SearchReport& report) {
        expect_report(report);
        EXPECT_EQ(report.milliseconds, 0U);
        last_score = report.score;
        if (order.back() != 'l') order += 'l';
    };
    listener.iteration_finished = [&](const SearchReport& report) {
        expect_report(report);
        EXPECT_EQ(report.score, last_score) << "not the score of the last line reported";
        EXPECT_EQ(report.score, s.root_score);
        order += static_cast<char>('0' + report.depth);
    };
    listener.search_finished = [&](double nodes_per_second) {
        EXPECT_GT(nodes_per_second, 0);
        order += 'f';
    };
    const auto best = think_to(*game, 4, listener);
    EXPECT_EQ(order, "sl1l2l3l4f");
    EXPECT_EQ(best, s.main_pv.moves[0]);
}

}  // namespace
}  // namespace varn
