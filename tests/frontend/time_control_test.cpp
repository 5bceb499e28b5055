// How the clock of a game is dealt out.
#include <gtest/gtest.h>

#include "frontend/time_control.h"
#include "tables.h"

namespace varn {
namespace {

TEST(TimeControl, SharesItsTimeAmongTheMoves) {
    TimeControl control;  // the controls of all rows follow one another
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

}  // namespace
}  // namespace varn
