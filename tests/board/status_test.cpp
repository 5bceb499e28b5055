// Game status: each reason for the end of a game, and their order. How front ends report it is tested with them.
#include <gtest/gtest.h>

#include "board/status.h"
#include "positions.h"

namespace varn {
namespace {

using enum GameStatus;

constexpr GameStatus all[] = {mate,       stalemate, fifty_moves, repetition, third_repetition, insufficient_material,
                              full_record};

std::vector<GameStatus> ways_of(const Game& game) {
    std::vector<GameStatus> ways;
    for (const GameStatus way : all) {
        if (is_over_by(game, way)) ways.push_back(way);
    }
    return ways;
}

TEST(Status, EachReasonIsFoundIndependently) {
    using Ways = std::vector<GameStatus>;
    const std::tuple<const char*, int, Ways> cases[] = {
        {"3R2k1/5ppp/8/8/8/8/8/4K3 b - -", 99, {mate}},
        {"3R2k1/5ppp/8/8/8/8/8/4K3 b - -", 100, {mate, fifty_moves}},
        {"4k3/8/8/8/8/8/5PPP/3r2K1 w - -", 255, {mate, fifty_moves}},
        {"6kR/5pp1/8/8/8/8/8/K3R3 b - -", 0, {}},  // check, but no mate
        {"7k/5Q2/8/8/8/8/8/4K3 b - -", 100, {stalemate, fifty_moves}},
        {"7k/5K2/6B1/8/8/8/8/8 b - -", 0, {stalemate, insufficient_material}},
        {"4k3/8/8/8/8/8/8/4K1R1 w - -", 99, {}},
    };
    for (const auto& [text, fifty, ways] : cases) {
        const auto game = game_from(text);
        game->fifty = static_cast<std::uint8_t>(fifty);
        EXPECT_EQ(ways_of(*game), ways) << text << fifty;
    }
    const auto game = game_after(known_positions[0].text, {"g1f3", "g8f6", "f3g1", "f6g8"});
    EXPECT_EQ(ways_of(*game), Ways{repetition});
    for (const char* move : {"g1f3", "g8f6", "f3g1", "f6g8"}) play_move(*game, parse_move(*game, move));
    game->move_counter = max_game_moves;
    EXPECT_EQ(ways_of(*game), (Ways{repetition, third_repetition, full_record}));
    EXPECT_FALSE(is_over_by(*game, goes_on));
}

TEST(Status, TheFirstReasonAskedForWins) {
    const auto game = game_from("3R2k1/5ppp/8/8/8/8/8/4K3 b - -");
    game->fifty = 100;
    EXPECT_EQ(status_of(*game, {stalemate, mate, fifty_moves}), mate);
    EXPECT_EQ(status_of(*game, {stalemate, fifty_moves, mate}), fifty_moves);
    EXPECT_EQ(status_of(*game, {stalemate, repetition}), goes_on);
    EXPECT_EQ(status_of(*game, {}), goes_on);
}

TEST(Status, PlayablePositions) {
    for (const char* board : {"4k3/8/8/8/8/8/8/8", "8/8/8/8/8/8/8/4K3", "4kk2/8/8/8/8/8/8/4K3", "4k3/8/8/8/8/8/8/3KK3",
                              "p3k3/8/8/8/8/8/8/4K3", "4k3/8/8/8/8/8/8/P3K3"}) {
        EXPECT_FALSE(is_playable(*game_from(board + std::string(" w - -")))) << board;
    }
    EXPECT_TRUE(is_playable(*game_from("4k3/pppppppp/8/8/8/8/PPPPPPPP/4K3 w - -")));
}

}  // namespace
}  // namespace varn
