// Start-up with various settings.
#include <gtest/gtest.h>

#include "frontend/startup.h"
#include "process.h"

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

TEST(Startup, UsesTheConfiguredTableSize) {
    const std::pair<std::string, std::string> cases[] = {{"", "83886040"}, {"hash 10\n", "40920"}};
    for (const auto& [settings, bytes] : cases) {
        EXPECT_EQ(run_console("tstats\n", {{"varn.ini", settings}}).output,
                  "Varn> Transposition table usage: 0%\nTransposition table size (bytes): " + bytes + "\n\nVarn> ");
    }
}

}  // namespace
}  // namespace varn
