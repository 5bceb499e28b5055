// Probabilities of the annealing moves.
#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "patterns/anneal.h"

namespace varn {
namespace {

TEST(Anneal, MovesHaveTheExpectedProbabilities) {
    // The first three boxes differ in the white king, the first two can be merged, the last can be split.
    const std::vector<Pattern> start = {{{1, 1, 1}}, {{2, 1, 1}}, {{4, 4, 12}}};
    using Boxes = std::vector<std::pair<Bitboard, Bitboard>>;  // white king, black king
    const auto mean = [](double two, double three, double four) { return (two + three + four) / 3; };
    const double taken = mean(1. / 2, 1. / 3, 1. / 4);
    const double taken_alone = mean(1. / 4, 2. / 9, 3. / 16);
    const double to_the_end = (taken * 2 + taken_alone * 2) / 18;
    const double split = 0.08 / 18;  // box, field and acceptance
    const std::pair<Boxes, double> expected[] = {
        {{{4, 12}, {3, 1}}, mean(1. / 4, 1. / 9, 1. / 16) * 2 / 18},
        {{{2, 1}, {4, 12}, {1, 1}}, to_the_end},
        {{{1, 1}, {4, 12}, {2, 1}}, to_the_end},
        {{{1, 1}, {2, 1}, {4, 4}, {4, 8}}, split * (1. / 2 + 1. / 3) / 2},
        {{{1, 1}, {2, 1}, {4, 8}, {4, 4}}, split * (1. / 4 + 2. / 9) / 2},
    };
    constexpr int moves = 200000;
    std::map<Boxes, int> counts;
    Choices choices(3);
    UniformState acceptance = {1};
    for (int i = 0; i < moves; ++i) {
        PatternList list(start, 4);
        anneal(list, 1, choices, acceptance);
        Boxes boxes;
        for (const Pattern& box : in_order(list)) boxes.emplace_back(box.squares[0], box.squares[2]);
        ++counts[boxes];
    }
    EXPECT_EQ(counts.size(), std::size(expected) + 1);  // and the unchanged list
    for (const auto& [boxes, share] : expected) {
        EXPECT_NEAR(counts[boxes], moves * share, 3 * std::sqrt(moves * share)) << boxes.size() << ' ' << share;
    }
}

}  // namespace
}  // namespace varn
