// Moves and squares as text: round trips, algebraic notation, and bad input.
#include <gtest/gtest.h>

#include <set>
#include <tuple>

#include "board/attacks.h"
#include "board/notation.h"
#include "positions.h"
#include "tables.h"

namespace varn {
namespace {

/// The text in a buffer of exactly its size, so that sanitizers catch reads past the end.
struct ExactText {
    explicit ExactText(std::string_view text) : bytes(text.begin(), text.end()) { bytes.shrink_to_fit(); }
    operator std::string_view() const { return {bytes.data(), bytes.size()}; }
    std::vector<char> bytes;
};

TEST(SquareText, RoundTripsAndRejectsOtherText) {
    for (int square = 0; square < square_count; ++square) EXPECT_EQ(square_from_text(square_text(square)), square);
    EXPECT_EQ(square_text(h1) + square_text(a1) + square_text(h8) + square_text(a8), "h1a1h8a8");
    EXPECT_EQ(square_from_text("B7x"), 54);
    for (const int square : {-1, 64, 255, -1000}) EXPECT_EQ(square_text(square), "??");
    for (const char* text : {"", "a", "a0", "a9", "i1", "i2", "`1", "11", "aa", "1a", "\n"}) {
        EXPECT_EQ(square_from_text(ExactText(text)), -1) << text;
    }
}

TEST(MoveText, RoundTripsAndSanIsUniqueInRandomGames) {
    visit_random_games(8, 100, [](const Game& game) {
        std::set<std::string> names;
        for (const Move move : every_legal_move(game)) {
            const std::string text = move_text(move), name = san_text(game, move);
            EXPECT_EQ(parse_move(game, text), move) << text;
            EXPECT_EQ(parse_move(game, text + "\n"), move) << text;
            EXPECT_TRUE(names.insert(name).second) << name;
            EXPECT_LE(name.size(), 7U) << name;
            const auto next = after(game, move);
            const bool mates = in_check(*next) && !has_legal_move(*next) && next->fifty < 100;
            const char sign = is_castling(move.kind) ? '-' : mates ? '#' : in_check(*next) ? '+' : '-';
            EXPECT_EQ(name.back() == '#' || name.back() == '+' ? name.back() : '-', sign) << name;
        }
        ASSERT_FALSE(::testing::Test::HasFailure()) << position_text(game);
    });
}

TEST(San, NotationOfSpecialMoves) {
    for (const auto& row : table_rows("san_written.txt")) {
        auto game = game_from(row.at(0));
        std::string last;
        for (const std::string& typed : split(row.at(1), " ")) {
            const Move move = parse_move(*game, typed);
            last = san_text(*game, move);
            play_move(*game, move);
        }
        EXPECT_EQ(last, row.at(2)) << row.at(0);
    }
    auto game = game_from("6k1/5ppp/8/8/8/8/8/R3K3 w Q -");
    game->fifty = 99;  // the draw takes precedence over mate
    const Move mate = parse_move(*game, "a1a8");
    EXPECT_EQ(san_column(*game, mate), " Ra8+");
}

TEST(MoveText, ParsesKindsWithoutReadingPastTheEnd) {
    constexpr std::tuple<std::string_view, std::string_view, int> cases[] = {
        {"3rk3/4P3/8/8/8/8/8/4K3 w - -", "e7d8q", 1},  // the promotion overrides the capture
        {"3rk3/4P3/8/8/8/8/8/4K3 w - -", "e7d8", 0x20}, {"3rk3/4P3/8/8/8/8/8/4K3 w - -", "e7d8x", 0xFF},
        {"4k3/8/8/8/8/8/8/4R1K1 w - -", "e1g1", 0x20},  // not a king, so not castling
        {"4k3/8/8/8/8/8/8/4R2K w - -", "e1g1", 0},      {"4k3/8/8/8/8/8/8/R3K2R w KQ -", "E1C1\n", 0x42},
        {"4k3/8/8/8/8/8/4p3/K7 b - -", "e2e1N", 11},
    };
    for (const auto& [text, typed, kind] : cases) {
        EXPECT_EQ(parse_move(*game_from(text), typed).kind, kind) << text << ' ' << typed;
    }
    EXPECT_EQ(move_text({12, 64, 14}), "d2??r");
    auto game = game_from("3rk3/4P3/8/8/8/8/8/R3K2R w KQ -");
    for (const char* text : {"", "e", "e7", "e7d", "e7d8", "e9e8", "e7z8", "i7i8", "@1@2", "e1\xFF\xFF", "quit\n",
                             "e7d8k", "e7d8 ", "e1e1"}) {
        EXPECT_FALSE(is_valid_move(*game, parse_move(*game, ExactText(text)))) << text;
    }
}

}  // namespace
}  // namespace varn
