// The search clock and how often it is read.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "search/clock.h"
#include "search/node.h"
#include "search_fixture.h"

namespace varn {
namespace {

using ClockTest = SearchTest;

TEST_F(ClockTest, IsReadEvery16384Nodes) {
    s.clock.time_limit_ms = 0;
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
    for (const std::uint32_t seen : {1U, 16383U, 16385U, 24576U}) {
        s.nodes = seen;
        EXPECT_TRUE(clock_ok(s)) << seen;
    }
    s.nodes = 3 * 16384;
    s.clock.time_limit_ms = -1;  // unsigned: 49 days
    EXPECT_TRUE(clock_ok(s));
    s.clock.time_limit_ms = 0;
    EXPECT_FALSE(clock_ok(s));
    s.nodes = 1;
    EXPECT_FALSE(clock_ok(s));  // stays stopped
}

TEST_F(ClockTest, RestartCountsFromNowButDoesNotStart) {
    s.clock.clock_start_ms = clock_ms() - 1000;
    s.clock.time_limit_ms = 10;
    restart_clock(s.clock, 600000);
    EXPECT_TRUE(clock_ok_now(s.clock));
    stop_clock(s.clock);
    restart_clock(s.clock, 600000);
    EXPECT_FALSE(is_running(s.clock)) << "a search that has begun to end must not go on";
    start_clock(s.clock);
    EXPECT_TRUE(is_running(s.clock));
}

}  // namespace
}  // namespace varn
