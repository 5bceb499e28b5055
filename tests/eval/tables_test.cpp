// Orientation of the evaluation tables.
#include <gtest/gtest.h>

#include "eval/tables.h"

namespace varn {
namespace {

constexpr Side white = Side::white;
constexpr Side black = Side::black;

TEST(EvalTables, AreOrientedAsWritten) {
    EXPECT_EQ(king_squares_game<white>[c1], 10);
    EXPECT_EQ(king_squares_game<black>[c8], 10);
    EXPECT_EQ(pawn_squares<white>[e1 + 8], -40);
    EXPECT_EQ(pawn_squares<black>[e1 + 8], 20);
    EXPECT_EQ(passed_pawn_bonus<white>[h8 - 8], 120);
    EXPECT_EQ(passed_pawn_bonus<black>[g1 + 8], 126);
    EXPECT_EQ(king_zone[h1], Bitboard{0x070706});
    EXPECT_EQ(w_king_region[e1], Bitboard{0x1C1C14});
    EXPECT_EQ(popcount(w_king_region[e8]), 5);
    EXPECT_EQ(popcount(b_king_region[e8]), 8);
}

}  // namespace
}  // namespace varn
