// The status of games: each reason for their end, and what the search, the console and the protocol make of it.
#include <map>

#include "dialogue.h"
#include "frontend/game_report.h"
#include "positions.h"
#include "search/quiesce.h"

namespace varn {
namespace {

using enum GameStatus;

std::string reasons_in(const Game& game) {
    static const std::pair<GameStatus, const char*> reasons[] = {
        {mate, " mate"},         {stalemate, " stalemate"},
        {fifty_moves, " fifty"}, {insufficient_material, " material"},
        {repetition, " second"}, {third_repetition, " third"},
        {full_record, " full"},  {goes_on, " none"}};
    std::string found;
    for (const auto& [reason, name] : reasons) found += is_over_by(game, reason) ? name : "";
    return found.empty() ? "-" : found.substr(1);
}

TEST(Status, FollowsItsTable) {
    const std::map<std::string, std::string_view> reports = {{"1", "Game is in progress.\n"},
                                                             {"0", "Stalemate.\n"},
                                                             {"9999", "Black is Checkmated. White wins.\n"},
                                                             {"-9999", "White is Checkmated. Black wins.\n"}};
    for (const auto& row : table_rows("status.txt")) {
        const auto game = game_of_row(row);
        SCOPED_TRACE(row.at(0) + ' ' + row.at(1));
        EXPECT_EQ(reasons_in(*game), row.at(2));
        EXPECT_EQ(node_status(*game, 5), row.at(3) == "-" ? game_goes_on : std::stoi(row.at(3)));
        EXPECT_EQ(status_text(console_status(*game), game->turn), reports.at(row.at(4)));
        EXPECT_EQ(result_text(*game), row.at(5) == "-" ? "" : row.at(5) + '\n');
    }
    const auto game = new_game();
    for (const char* found : {"-", "second", "second third"}) {
        EXPECT_EQ(reasons_in(*game), found);
        for (const char* move : {"g1f3", "g8f6", "f3g1", "f6g8"}) play_move(*game, parse_move(*game, move));
    }
    game->move_counter = max_game_moves;
    EXPECT_EQ(reasons_in(*game), "second third full");
}

TEST(Status, PlayablePositions) {
    for (const char* board : {"4k3/8/8/8/8/8/8/8", "8/8/8/8/8/8/8/4K3", "4kk2/8/8/8/8/8/8/4K3", "4k3/8/8/8/8/8/8/3KK3",
                              "p3k3/8/8/8/8/8/8/4K3", "4k3/8/8/8/8/8/8/P3K3"}) {
        const auto game = game_from(board + std::string(" w - -"));
        EXPECT_EQ(printed([&] { EXPECT_TRUE(refuse_unplayable(*game)); }), unplayable_text) << board;
    }
    EXPECT_FALSE(refuse_unplayable(*game_from("4k3/pppppppp/8/8/8/8/PPPPPPPP/4K3 w - -")));
}

}  // namespace
}  // namespace varn
