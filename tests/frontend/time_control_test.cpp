// Time management.
#include <gtest/gtest.h>

#include "base/random.h"
#include "frontend/time_control.h"
#include "tables.h"

namespace varn {
namespace {

TEST(TimeControl, DividesTheTimeAmongTheMoves) {
    TimeControl control;  // carried over from row to row
    for (const auto& row : table_rows("clock.txt")) {
        for (const std::string& level : split(row.at(0), ",")) set_level(control, level);
        for (int answers = std::stoi(row.at(1)); answers > 0; --answers) count_turn(control);
        const Allocation allocation = allocate_time(control, std::stoi(row.at(2)));
        EXPECT_EQ(std::to_string(allocation.remaining_ms), row.at(3)) << row.at(0) << ' ' << row.at(2);
        EXPECT_EQ(std::to_string(control.turns_left), row.at(4)) << row.at(0) << ' ' << row.at(2);
        EXPECT_EQ(std::to_string(allocation.planned_ms), row.at(5)) << row.at(0) << ' ' << row.at(2);
        EXPECT_EQ(std::to_string(allocation.limit_ms), row.at(6)) << row.at(0) << ' ' << row.at(2);
    }
}

TEST(TimeControl, ShortClocksLastForManyMoves) {
    for (const char* level : {"40 5 0", "2 5 0", "0 5 0", "0 5 1", "0 5 60"}) {
        TimeControl control;
        set_level(control, level);
        for (int centiseconds = -1; centiseconds <= 101; ++centiseconds) {
            const Allocation allocation = allocate_time(control, centiseconds);
            const std::int64_t remaining_ms = std::max<std::int64_t>(0, 10 * centiseconds - 20);
            EXPECT_LE(allocation.limit_ms, remaining_ms / 20) << level << ' ' << centiseconds;
            EXPECT_GE(allocation.planned_ms, 10);
        }
        EXPECT_EQ(allocate_time(control, 102).limit_ms, std::min(allocate_time(control, 102).planned_ms, 900)) << level;
    }
}

// --- Clocks as sent before each move --------------------------------------------------------------------------------

TEST(GameClock, NeverExceedsTheClock) {
    RandomSource random(31);
    const auto any = [&random] {
        return static_cast<std::int64_t>(random.next() % (std::uint64_t{1} << random.next() % 40));
    };
    for (int round = 0; round < 100000; ++round) {
        const GameClock clock = {any() - 20, any() - 20, any() % 100 - 5};
        const std::int64_t overhead_ms = any() % 5001;
        const std::int32_t budget_ms = allocate_time(clock, overhead_ms);
        SCOPED_TRACE(testing::Message() << clock.time_ms << ' ' << clock.increment_ms << ' ' << clock.moves_to_go << ' '
                                        << overhead_ms << ": " << budget_ms);
        ASSERT_GE(budget_ms, 1);
        ASSERT_LE(budget_ms, std::max<std::int64_t>(1, clock.time_ms - overhead_ms));
        // More time, a nearer time control or less overhead never shortens a move.
        ASSERT_LE(budget_ms,
                  allocate_time({clock.time_ms + any(), clock.increment_ms, clock.moves_to_go}, overhead_ms));
        ASSERT_LE(budget_ms,
                  allocate_time({clock.time_ms, clock.increment_ms + any(), clock.moves_to_go}, overhead_ms));
        ASSERT_LE(budget_ms, allocate_time(clock, overhead_ms - std::min(overhead_ms, any())));
        if (clock.moves_to_go > 1) {
            const std::int64_t sooner = clock.moves_to_go - any() % clock.moves_to_go;
            ASSERT_LE(budget_ms, allocate_time({clock.time_ms, clock.increment_ms, sooner}, overhead_ms));
        }
    }
}

TEST(GameClock, LastsTheGameAndIsUsed) {
    for (const std::int64_t moves : {1, 2, 10, 40, 100}) {
        for (const std::int64_t increment_ms : {0, 100, 3000}) {
            constexpr std::int64_t overhead_ms = 30;
            const std::int64_t start_ms = 1000 * moves;
            std::int64_t time_ms = start_ms;
            for (std::int64_t left = moves; left > 0; --left) {
                time_ms -= allocate_time({time_ms, increment_ms, left}, overhead_ms) + overhead_ms;
                ASSERT_GE(time_ms, 0) << moves << ' ' << increment_ms << ' ' << left;
                time_ms += increment_ms;
            }
            EXPECT_LE(time_ms - increment_ms, start_ms / 2) << moves << ' ' << increment_ms;
        }
    }
    // In sudden death only the increment is left in the end.
    std::int64_t time_ms = 60000;
    for (int move = 0; move < 500; ++move) {
        time_ms -= allocate_time({time_ms, 1000, 0}, 30) + 30;
        ASSERT_GE(time_ms, 0) << move;
        time_ms += 1000;
    }
    EXPECT_LE(time_ms, 10000);
}

}  // namespace
}  // namespace varn
