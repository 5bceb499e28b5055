// Remainder by multiplication, compared with the % operator.
#include <gtest/gtest.h>

#include "base/divisor.h"
#include "base/random.h"

namespace varn {
namespace {

TEST(Divisor, MatchesTheRemainderOperator) {
    RandomSource random(2);
    for (int round = 0; round < 100000; ++round) {
        const std::uint64_t value = (random.next() >> random.below(64)) | 1U;  // of all bit lengths
        const std::uint64_t multiple = random.next() / value * value;
        for (const std::uint64_t d : {value, value == ~std::uint64_t{0} ? value : value + 1}) {
            for (const std::uint64_t number : {multiple, multiple - 1, random.next(), ~std::uint64_t{0}}) {
                ASSERT_EQ(remainder(number, divisor(d)), number % d) << number << " by " << d;
            }
        }
    }
}

}  // namespace
}  // namespace varn
