// Mate distances, compared with a brute-force solver.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "board/attacks.h"
#include "uci/session.h"

namespace varn {
namespace {

/// Whether the side to move can force mate in this many moves.
bool mates_in(const Game& game, int moves);
/// Whether the side to move is mated in this many moves.
bool is_mated_in(const Game& game, int moves) {
    const std::vector<Move> legal = every_legal_move(game);
    if (legal.empty()) return in_check(game);
    return moves > 0 && std::ranges::all_of(legal, [&](Move move) { return mates_in(*after(game, move), moves); });
}
bool mates_in(const Game& game, int moves) {
    return moves > 0 && std::ranges::any_of(every_legal_move(game),
                                            [&](Move move) { return is_mated_in(*after(game, move), moves - 1); });
}

/// Moves to mate for the side to move; 0 if none within two.
int moves_to_mate(const Game& game) {
    for (const int moves : {1, 2}) {
        if (mates_in(game, moves)) return moves;
        if (is_mated_in(game, moves)) return -moves;
    }
    return 0;
}

TEST(UciMates, DistancesMatchASolver) {
    constexpr const char* boards[] = {"7k/R7/1R6/8/8/8/8/K7",  "7k/8/8/8/8/8/R7/1R5K",    "8/8/8/8/8/1K6/7Q/k7",
                                      "6k1/R7/1R6/8/8/8/8/K7", "6rk/6pp/7N/8/8/8/8/K5Q1", "8/8/8/8/8/k1K5/8/7R"};
    UciSession session;
    std::vector<int> met;
    for (const std::string board : boards) {
        for (const std::string& text : {board + " w - -", board + " b - -"}) {
            for (const std::string& seen : {text, mirrored_text(text)}) {
                const int expected = moves_to_mate(*game_from(seen));
                if (expected == 0) continue;
                met.push_back(expected);
                const std::string said = session.search("ucinewgame; position fen " + seen + "; go depth 6");
                ASSERT_FALSE(last_lines(said).empty()) << said;
                EXPECT_TRUE(last_lines(said)[0].is_mate) << seen;
                EXPECT_EQ(last_lines(said)[0].score, expected) << seen;
                if (expected < 0) continue;
                const std::string found = session.search("ucinewgame; go mate " + std::to_string(expected));
                EXPECT_EQ(last_lines(found).at(0).score, expected) << seen;
                EXPECT_EQ(last_lines(found)[0].pv.size(), 2U * static_cast<unsigned>(expected) - 1) << found;
                EXPECT_LT(last_lines(found)[0].depth, 10) << "the search ends where the mate is found";
            }
        }
    }
    for (const int moves : {-2, -1, 1, 2}) EXPECT_NE(std::ranges::count(met, moves), 0) << moves;
}

}  // namespace
}  // namespace varn
