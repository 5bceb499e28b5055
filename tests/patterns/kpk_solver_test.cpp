// The king-and-pawn solver.
#include <gtest/gtest.h>

#include "patterns/kpk_solver.h"

namespace varn {
namespace {

TEST(Kpk, CountsMatchPublishedValues) {
    const auto wins = solve_kpk();
    EXPECT_EQ(kpk_placements().size(), 2U * 81664);
    EXPECT_EQ(wins->white_to_move.count(), 2U * 62480);
    EXPECT_EQ(wins->black_to_move.count(), 2U * 48802);
}

}  // namespace
}  // namespace varn
