// Game status at the console.
#include <gtest/gtest.h>

#include <map>

#include "frontend/game_report.h"
#include "positions.h"
#include "tables.h"

namespace varn {
namespace {

TEST(GameReport, PrintsTheGameStatus) {
    const std::map<std::string, std::string_view> lines = {{"1", "Game is in progress.\n"},
                                                           {"0", "Stalemate.\n"},
                                                           {"9999", "Black is Checkmated. White wins.\n"},
                                                           {"-9999", "White is Checkmated. Black wins.\n"}};
    for (const auto& row : table_rows("status.txt")) {
        const auto game = game_of_row(row);
        EXPECT_EQ(status_text(console_status(*game), game->turn), lines.at(row.at(3))) << row.at(0) << row.at(1);
    }
}

TEST(GameReport, RefusesUnplayablePositions) {
    const auto game = game_from("8/8/8/8/8/8/8/4K3 w - -");
    EXPECT_EQ(printed([&] { EXPECT_TRUE(refuse_unplayable(*game)); }), unplayable_text);
    EXPECT_EQ(printed([] { EXPECT_FALSE(refuse_unplayable(*new_game())); }), "");
}

}  // namespace
}  // namespace varn
