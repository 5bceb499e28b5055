// Building books: reading PGN, and the resulting rows.
#include <gtest/gtest.h>

#include <sstream>

#include "book_builder.h"
#include "positions.h"

namespace varn {
namespace {

struct Built {
    std::vector<std::string> rows;
    BookCounts counts;
    std::string complaints;
    long games_per_row = 0;
};

Built build(const std::string& pgn, int plies, long fewest_games, std::size_t most_rows = 10000) {
    std::istringstream input(pgn);
    std::ostringstream complaints;
    BookNode root;
    Built built;
    built.counts = add_games(input, "x.pgn", plies, root, complaints);
    built.complaints = complaints.str();
    built.rows = book_rows(root, fewest_games, most_rows, built.games_per_row);
    return built;
}

TEST(BookBuilder, ReadsPgnInAnyForm) {
    const char* const annotated =
        "[White \"A\"] [Black \"B\"]\r\n1. e4 {best {by test\r\n[Eval 0.3] } e5 $1 2. Nf3! ( 2. f4 (2. Bc4 {; )} Nf6) "
        "exf4 ) 2... Nc6!? ; the rest (of the line\r\n3. Bb5 a6 1/2-1/2\r\n";
    const char* const games[] = {
        "[Event \"a ] b\"]\n[Site \"\\\"x\\\" ]\"]\n\n1. e4 e5 2. Nf3 Nc6 1-0\n",
        "1.e4 e5 2.Ng1-f3 Nb8c6 *\n",
        annotated,
        "\xEF\xBB\xBF[Event \"?\"]\n% a remark e9\n1 e4 1... e5 2 Nf3 += 2... Nc6 {open\n\n[Event \"?\"]\n1. d4 d5 0-1",
        "e4 e5 Nf3 Nc6",
    };
    for (const char* game : games) {
        const Built built = build(game, 4, 1);
        ASSERT_FALSE(built.rows.empty()) << game;
        EXPECT_EQ(built.rows.back(), "e2e4e7e5g1f3b8c6,") << game;
        EXPECT_EQ(built.complaints, "");
    }
    EXPECT_EQ(build(games[3], 4, 1).rows.front(), "d2d4d7d5,");
    EXPECT_EQ(build(std::string(games[0]) + games[1] + games[4], 9, 1).rows.size(), 3U);
}

TEST(BookBuilder, ReportsUnreadableGamesAndContinues) {
    const Built built = build(
        "1. e4 e5 *\n[SetUp \"1\"]\n[FEN \"4k3/8/8/8/8/8/8/4K3 w - - 0 1\"]\n1. Kd2 *\n"
        "1. e4 e5 2. Qxh7 *\n1. d4 d5 {no end\n[Event \"\"]\n1. d4 d5 (2. c4\n[Event \"\"]\n1. d4 d5 *",
        20, 1);
    EXPECT_EQ(built.rows, (std::vector<std::string>{"d2d4d7d5,", "e2e4e7e5,"}));
    EXPECT_EQ(built.complaints,
              "x.pgn: game 3: \"Qxh7\" is not a legal move after 2 moves\nx.pgn: game 4: unterminated comment\n"
              "x.pgn: game 5: unterminated variation\n");
    EXPECT_EQ(built.counts.used, 2);
    EXPECT_EQ(built.counts.set_up, 1);
    EXPECT_EQ(built.counts.unreadable, 3);
    // Moves after the wanted plies don't matter, and rows end before promotions.
    EXPECT_EQ(build("1. e4 e5 2. Qxh7 *", 2, 1).rows, std::vector<std::string>{"e2e4e7e5,"});
    EXPECT_EQ(build("1. g4 h5 2. gxh5 g6 3. hxg6 Nf6 4. g7 d6 5. gxh8=Q d5 *", 20, 1).rows,
              std::vector<std::string>{"g2g4h7h5g4h5g7g6h5g6g8f6g6g7d7d6,"});
}

TEST(BookBuilder, WeightsLinesByTheirGames) {
    std::string games;
    for (int i = 0; i < 5; ++i) games += "1. e4 e5 *\n";
    for (int i = 0; i < 3; ++i) games += "1. e4 c5 *\n";
    games += "1. e4 a6 *\n1. c4 *\n";
    const Built built = build(games, 20, 2);
    const std::vector<std::string> expected = {"e2e4,",     "e2e4c7c5,", "e2e4c7c5,", "e2e4c7c5,", "e2e4e7e5,",
                                               "e2e4e7e5,", "e2e4e7e5,", "e2e4e7e5,", "e2e4e7e5,"};
    EXPECT_EQ(built.rows, expected);
    EXPECT_EQ(built.games_per_row, 1);
    // With too many rows every line gets one row per two games, at least one; then rare lines are dropped.
    EXPECT_EQ(build(games, 20, 2, 6).rows,
              (std::vector<std::string>{"e2e4c7c5,", "e2e4c7c5,", "e2e4e7e5,", "e2e4e7e5,", "e2e4e7e5,"}));
    EXPECT_EQ(build(games, 20, 2, 1).rows.size(), 1U);
    EXPECT_TRUE(std::ranges::is_sorted(build(games, 20, 1).rows));
}

}  // namespace
}  // namespace varn
