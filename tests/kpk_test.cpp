// King and pawn against king, solved and listed.
#include <gtest/gtest.h>

#include "patterns/kpk_solver.h"
#include "process.h"

namespace varn {
namespace {

TEST(Kpk, TheSumsOfTheSolvedPositionsAreThePublishedOnes) {
    const auto wins = solve_kpk();
    EXPECT_EQ(kpk_placements().size(), 2U * 81664);
    EXPECT_EQ(wins->white_to_move.count(), 2U * 62480);
    EXPECT_EQ(wins->black_to_move.count(), 2U * 48802);
}

TEST(Kpk, PrintsAScriptOfThePlacements) {
    const std::string output = run_console("pvp\ne2e4\nkpk\nepd\nback\n").output;
    std::size_t groups = 0;
    const std::string group = "\nepdshow\ngo\n";
    for (std::size_t at = output.find(group); at != std::string::npos; at = output.find(group, at + 1)) ++groups;
    EXPECT_EQ(groups, kpk_placements().size());
    EXPECT_NE(output.find("Varn> setboard 8/8/8/8/8/8/7P/5k1K w - - 0 1\nepdshow\ngo\nsetboard 8/8/8/8/8/8/7P/4k2K w"),
              std::string::npos);
    const std::string last = "K1k5/P7/8/8/8/8/8/8 w - -";
    EXPECT_NE(output.find("setboard " + last + " 0 1" + group + "Varn> "), std::string::npos);
    EXPECT_NE(output.find("Varn> EPD string is: " + last + "\nVarn> \nK#k#.#.#\nP.#.#.#.\n"), std::string::npos);
    EXPECT_TRUE(output.ends_with("\nwhite to play\n\nStalemate.\n"));  // the report of a game that is over
}

}  // namespace
}  // namespace varn
