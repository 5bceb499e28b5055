// The boxes of king-and-pawn positions and their moves by chance: the list against the plain walk, and how likely what
// is. Whether a long annealing keeps all positions is asked where the tool is tested from end to end.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>

#include "patterns/anneal.h"
#include "plain_patterns.h"

namespace varn {
namespace {

/// Every square with every other on three edges: all of it can become one box.
std::vector<Pattern> full_block(int edge) {
    std::vector<Pattern> block;
    const int size = edge * edge * edge;
    block.reserve(static_cast<std::size_t>(size));
    for (int i = 0; i < size; ++i) {
        block.push_back({{bit_mask(i % edge), bit_mask(i / edge % edge), bit_mask(i / edge / edge)}});
    }
    return block;
}

/// Where in memory the box at an index of the list lies.
BoxPlace place_of(const PatternList& list, std::size_t index) {
    std::vector<std::uint64_t> stamps = list.stamps;
    const auto nth = stamps.begin() + static_cast<std::ptrdiff_t>(index);
    std::ranges::nth_element(stamps, nth);
    return static_cast<BoxPlace>(std::ranges::find(list.stamps, *nth) - list.stamps.begin());
}

TEST(Patterns, TheListChangesAsThePlainWalkChangesIt) {
    std::vector<Pattern> odd = full_block(4);  // positions more than once, or without a man, or with two
    odd.insert(odd.end(), odd.begin(), odd.begin() + 20);
    for (Bitboard i = 0; i < 20; ++i) odd.push_back({{0, i & 1, i}});
    const std::tuple<std::vector<Pattern>, std::size_t, int> works[] = {
        // positions, capacity, moves
        {full_block(6), 300, 30000},         // large groups
        {drawn_positions(200), 250, 20000},  // small groups
        {{{{255, 255, 255}}}, 40, 20000},    // no room
        {{{{1, 1, 1}}}, 3, 100},
        {odd, 200, 20000},
    };
    for (const auto& [positions, capacity, moves] : works) {
        PatternList list(positions, capacity);
        PlainList plain = {positions, capacity};
        Choices choices(positions.size());
        for (int i = 0; i < moves; ++i) {
            choices.renew();
            const std::uint32_t index = choices.below(list.count());
            // More merges at first, so that there are large boxes to split.
            const bool is_merge = choices.below(i % 5000 < 2500 ? 4 : 2) != 0;
            const auto field = static_cast<Field>(choices.below(field_count));
            Choices same = choices;
            (is_merge ? merge_patterns : split_pattern)(list, place_of(list, index), field, choices);
            (is_merge ? plain_merge : plain_split)(plain, index, field, same);
            ASSERT_EQ(in_order(list), plain.patterns) << positions.size() << ", move " << i;
            ASSERT_EQ(choices.below(1U << 30), same.below(1U << 30)) << i;
        }
    }
}

TEST(Patterns, EveryMoveHasItsShareOfChance) {
    // White's king tells the first three boxes apart, the first two can be merged, the last can be split.
    const std::vector<Pattern> start = {{{1, 1, 1}}, {{2, 1, 1}}, {{4, 4, 12}}};
    using Boxes = std::vector<std::pair<Bitboard, Bitboard>>;  // of either king
    const auto mean = [](double two, double three, double four) { return (two + three + four) / 3; };
    const double taken = mean(1. / 2, 1. / 3, 1. / 4);
    const double taken_alone = mean(1. / 4, 2. / 9, 3. / 16);
    const double to_the_end = (taken * 2 + taken_alone * 2) / 18;
    const double split = 0.08 / 18;  // the box, the field and the acceptance
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
    EXPECT_EQ(counts.size(), std::size(expected) + 1);  // and the list as it was
    for (const auto& [boxes, share] : expected) {
        EXPECT_NEAR(counts[boxes], moves * share, 3 * std::sqrt(moves * share)) << boxes.size() << ' ' << share;
    }
}

TEST(Patterns, AcceptanceHasThePublishedSequence) {
    UniformState first = {1}, late = {1764000000}, other = {-2};
    // The shuffle gives each number of the generator once, out of a table's length of them.
    constexpr int warm_up = 8, table = 32;
    constexpr double modulus = 2147483647, largest = 0.99999988;
    long number = 1;
    const auto next = [&] { return number = number * 16807 % 2147483647; };
    for (int i = 0; i < warm_up; ++i) next();
    std::set<long> in_table;
    for (int i = 0; i < table; ++i) in_table.insert(next());
    for (int i = 0; i < 10000; ++i) {
        const double value = uniform_random(first);
        EXPECT_EQ(value, uniform_random(late)) << i;
        EXPECT_NE(value, uniform_random(other)) << i;
        EXPECT_TRUE(i > 0 || std::abs(value - 0.4159994) < 5e-8);
        // The sequence has a number early on that is cut down.
        const long drawn = value == largest ? *in_table.rbegin() : std::lround(value * modulus);
        EXPECT_EQ(in_table.erase(drawn), 1U) << i;
        in_table.insert(next());
    }
}

}  // namespace
}  // namespace varn
