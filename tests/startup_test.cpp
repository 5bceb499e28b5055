// The settings file and what a start makes of it.
#include <gtest/gtest.h>

#include "board/types.h"
#include "eval/pawns.h"
#include "frontend/configuration.h"
#include "process.h"
#include "search/settings.h"

namespace varn {
namespace {

TEST(Startup, NeedsSettingsAndTables) {
    const std::pair<Files, std::string> cases[] = {
        {{}, "error:  varn.ini cannot be found.\n"},
        {{{"varn.ini", "hash 31"}}, "Cannot allocate enough memory for transposition hash tables.\n"},
        {{{"varn.ini", "qhash -1"}}, "error: out of memory.\n"},
        {{{"varn.ini", "phash -1"}}, "error:  cannot allocate -1 bytes for pawn hash tables.\n"},
    };
    for (const auto& [files, message] : cases) {
        const Outcome outcome = run_console("show\n", files);
        EXPECT_EQ(outcome.output, message);
        EXPECT_EQ(outcome.status, 1) << message;
    }
}

TEST(Startup, SizesTheTableAsSet) {
    const std::pair<std::string, std::string> cases[] = {{"", "83886040"}, {"hash 10\n", "40920"}};
    for (const auto& [settings, bytes] : cases) {
        EXPECT_EQ(run_console("tstats\n", {{"varn.ini", settings}}).output,
                  "Varn> Transposition table usage: 0%\nTransposition table size (bytes): " + bytes + "\n\nVarn> ");
    }
}

TEST(Startup, ReadsKeysAtTheStartOfALine) {
    using Settings = Table<std::int32_t, 4>;
    constexpr Settings standard = {{21, 16777216, 1048576, 1}};
    const std::pair<std::string, Settings> cases[] = {
        {"hash 0\nqhash 0\nphash 0\n", standard},
        {"hash x\nqhash -\nphash\npondering \n", standard},
        {"hash21\n hash 19\nHASH 19\n# hash 19\nhash\t19\n", standard},
        {"hash 12\nqhash 34\nphash 56\npondering 0\n", {{12, 34, 56, 0}}},
        {"hash   +12abc\nphash -7", {{12, 16777216, -7, 1}}},
        {"hash 4294967297\nqhash -99999999999\n", {{INT32_MAX, INT32_MIN, 1048576, 1}}},
        {std::string(99, 'x') + "hash 12\n", {{12, 16777216, 1048576, 1}}},  // the rest counts as a line of its own
        {std::string("ha\0sh 12\nphash 56\n", 18), {{21, 16777216, 56, 1}}},
    };
    const auto set = [](const Settings& s) {
        hash_bits = s[0], qhash_bytes = s[1], phash_bytes = s[2], pondering_enabled = s[3];
    };
    const WorkingFolder folder;
    for (const auto& [text, expected] : cases) {
        folder.write("varn.ini", text);
        set(standard);
        read_configuration();
        EXPECT_EQ((Settings{{hash_bits, qhash_bytes, phash_bytes, pondering_enabled}}), expected) << text;
    }
    set(standard);
}

}  // namespace
}  // namespace varn
