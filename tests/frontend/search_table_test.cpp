// The search output lines.
#include <gtest/gtest.h>

#include "frontend/search_table.h"
#include "positions.h"

namespace varn {
namespace {

TEST(SearchTable, PrintsItsColumns) {
    const auto game = new_game();
    PvLine line = {};
    line.length = 3;
    line.moves[0] = parse_move(*game, "e2e4");
    line.moves[1] = {51, 35, kind_double_step};
    line.moves[2] = {51, 35, kind_double_step};  // a stale tail
    const SearchReport report = {*game, line, 7, -42, 1234, 567, 899, 1234, 9, 1, false};
    EXPECT_EQ(printed([&] { print_search_line(report, QuiescentColumn::left_out); }),
              "  7     -42      89       1234       e4    e5 \n");
    EXPECT_EQ(printed([&] { print_search_line(report, QuiescentColumn::shown); }),
              "  7     -42      89       1234                  567       e4    e5 \n");
}

}  // namespace
}  // namespace varn
