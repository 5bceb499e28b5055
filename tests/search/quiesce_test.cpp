// Quiescence: finished games, stand pat, delta pruning, and the quiescence table.
#include <gtest/gtest.h>

#include "search/quiesce.h"
#include "search_fixture.h"
#include "tables.h"

namespace varn {
namespace {

class Quiesce : public SearchTest {
protected:
    int quiesce_afresh(Game& game, int alpha, int beta) {
        qhash_clear(qtable);
        s.quiescent_nodes = 0;
        return quiesce(s, game, alpha, beta, 0, 0);
    }
};

TEST_F(Quiesce, StatusOfFinishedGames) {
    for (const auto& row : table_rows("status.txt")) {
        const int status = node_status(*game_of_row(row), 5);
        EXPECT_EQ(status, row.at(2) == "-" ? game_goes_on : std::stoi(row.at(2))) << row.at(0) << row.at(1);
    }
}

TEST_F(Quiesce, LazyEvaluationWithMuchMaterial) {
    const auto game = game_from(middle_text);
    for (const auto& [total, balance, decides] : {std::tuple{3000, 302, true},
                                                  {3000, 301, false},
                                                  {3000, -299, true},
                                                  {3000, -298, false},
                                                  {2999, 302, false}}) {
        for (const Side turn : {Side::white, Side::black}) {
            const bool white = turn == Side::white;
            game->turn = turn;
            game->material = white ? balance : -balance;
            game->w_material = (total + game->material) / 2;
            game->b_material = total - game->w_material;
            const int evaluated = evaluate(*game, s.eval) * (white ? 1 : -1);
            EXPECT_EQ(static_score(s, *game, 0), decides ? balance : evaluated) << total << balance;
        }
    }
}

TEST_F(Quiesce, StandsPat) {
    const auto game = game_from("4k3/8/4p3/3p4/8/8/8/3QK3 w - -");  // the only capture loses material
    const int stand = static_score(s, *game, 0);
    for (const auto& [alpha, beta, bound] :
         {std::tuple{stand - 1, stand, 2}, {stand, stand + 1, 1}, {stand - 1, stand + 1, 0}}) {
        EXPECT_EQ(quiesce_afresh(*game, alpha, beta), stand) << bound;
        EXPECT_EQ(s.quiescent_nodes, 1U);
        EXPECT_EQ(qhash_probe(qtable, *game)->bound, bound);
        EXPECT_EQ(qhash_probe(qtable, *game)->score, stand) << bound;
    }
}

TEST_F(Quiesce, DeltaPruningKeepsWhatMayRaiseAlpha) {
    const auto nodes_of = [&](const Game& game, int alpha) {
        Game copy = game;
        quiesce_afresh(copy, alpha, full_window);
        EXPECT_TRUE(same_game(copy, game));
        return s.quiescent_nodes;
    };
    for (const auto& [text, gain] : {std::pair{"4k3/8/8/3p4/4P3/8/8/4K3 w - -", 100},
                                     {"8/P7/8/7k/8/8/8/K7 w - -", 850},
                                     {"8/8/8/3p4/4P1k1/8/8/2K5 b - -", 100},
                                     {"4k3/8/4p3/3p4/4P3/8/8/4K3 w - -", 0}}) {
        const auto game = game_from(text);
        const int stand = static_score(s, *game, 0);
        EXPECT_GT(nodes_of(*game, stand + gain + 300), 1U) << text;
        EXPECT_EQ(nodes_of(*game, stand + gain + 301), 1U) << text;
    }
    EXPECT_GT(nodes_of(*game_after("4k3/3p4/8/4P3/8/8/8/4K3 b - -", {"d7d5"}), -full_window), 1U);  // en passant
}

TEST_F(Quiesce, TableCutoffsComeBeforeStandPat) {
    const auto game = game_from("4k3/pppp4/8/8/8/8/4PPPP/4K3 w - -");
    const int stand = static_score(s, *game, 0);
    for (const auto& [bound, score, alpha, beta, answers] : {std::tuple{bound_upper, 700, 700, 800, true},
                                                             {bound_upper, 701, 700, 800, false},
                                                             {bound_lower, 700, 600, 700, true},
                                                             {bound_lower, 699, 600, 700, false},
                                                             {bound_exact, 700, 600, 800, true},
                                                             {bound_exact, 700, 800, 900, true}}) {
        qhash_store(qtable, *game, score, bound);
        EXPECT_EQ(quiesce(s, *game, alpha, beta, 0, 0), answers ? score : stand) << bound << score;
    }
    const auto drawn = game_from("4k3/8/8/8/8/8/8/4KB2 w - -");
    qhash_store(qtable, *drawn, 55, bound_exact);
    stop_clock(s.clock);
    EXPECT_EQ(quiesce(s, *game, 0, 1, 0, 0), abort_score);
    EXPECT_EQ(quiesce(s, *drawn, 0, 1, 0, 0), 0);
}

}  // namespace
}  // namespace varn
