// Mate scores.
#include <gtest/gtest.h>

#include "search/score.h"

namespace varn {
namespace {

TEST(Score, MateBand) {
    for (const int score : {9499, 9700, 9999, -9499, -9999}) EXPECT_TRUE(is_mate_score(score)) << score;
    for (const int score : {0, 9498, 10000, -9498, -10000, abort_score, -abort_score, no_score, full_window}) {
        EXPECT_FALSE(is_mate_score(score)) << score;
    }
}

}  // namespace
}  // namespace varn
