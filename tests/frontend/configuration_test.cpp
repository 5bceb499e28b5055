// The settings file.
#include <gtest/gtest.h>

#include "folder.h"
#include "frontend/configuration.h"

namespace varn {
namespace {

TEST(Configuration, ReadsKeysAtLineStarts) {
    using Settings = Table<std::int32_t, 4>;
    constexpr Settings standard = {{21, 16777216, 1048576, 1}};
    const std::pair<std::string, Settings> cases[] = {
        {"hash 0\nqhash 0\nphash 0\n", standard},
        {"hash x\nqhash -\nphash\npondering \n", standard},
        {"hash21\n hash 19\nHASH 19\n# hash 19\nhash\t19\n", standard},
        {"hash 12\nqhash 34\nphash 56\npondering 0\n", {{12, 34, 56, 0}}},
        {"hash   +12abc\nphash -7", {{12, 16777216, -7, 1}}},
        {"hash 4294967297\nqhash -99999999999\n", {{INT32_MAX, INT32_MIN, 1048576, 1}}},
        {std::string(99, 'x') + "hash 12\n", {{12, 16777216, 1048576, 1}}},  // the rest is read as another line
        {std::string(990'000, '\0') + "hash 12\n", standard},                // not read forever
        {std::string("ha\0sh 12\nphash 56\n", 18), {{21, 16777216, 56, 1}}},
    };
    const WorkingFolder folder;
    EXPECT_FALSE(read_configuration());
    for (const auto& [text, expected] : cases) {
        folder.write("varn.ini", text);
        const auto read = read_configuration();
        ASSERT_TRUE(read);
        const TableSizes& sizes = read->tables;
        EXPECT_EQ((Settings{{sizes.hash_bits, sizes.qhash_bytes, sizes.phash_bytes, read->pondering_enabled}}),
                  expected)
            << text;
    }
}

}  // namespace
}  // namespace varn
