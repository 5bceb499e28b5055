// The random source with a published sequence.
#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "patterns/chance.h"

namespace varn {
namespace {

TEST(PatternChance, MatchesThePublishedSequence) {
    UniformState first = {1}, late = {1764000000}, other = {-2};
    // The shuffle returns each number of the generator once, picked from a table.
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
        // An early number of the sequence is clamped.
        const long drawn = value == largest ? *in_table.rbegin() : std::lround(value * modulus);
        EXPECT_EQ(in_table.erase(drawn), 1U) << i;
        in_table.insert(next());
    }
}

}  // namespace
}  // namespace varn
