// Memory for the large tables.
#include <gtest/gtest.h>

#include <algorithm>

#include "base/memory.h"

namespace varn {
namespace {

TEST(Memory, BlocksAreZeroedAndLimitedByPhysicalMemory) {
    const auto block = zeroed_block<std::uint64_t>(1 << 20);
    ASSERT_NE(block, nullptr);
    EXPECT_TRUE(std::all_of(block.get(), block.get() + (1 << 20), [](std::uint64_t word) { return word == 0; }));
    EXPECT_EQ(zeroed_block<std::uint64_t>(std::uint64_t{1} << 60), nullptr);
    EXPECT_EQ(zeroed_block<std::uint64_t>((std::uint64_t{1} << 61) + 1), nullptr);  // overflows to 8 bytes
}

}  // namespace
}  // namespace varn
