// The opening book: the shipped file, and move choice in small books.
#include <gtest/gtest.h>

#include <map>

#include "folder.h"
#include "frontend/book.h"
#include "positions.h"

namespace varn {
namespace {

constexpr int draws = 2000;
constexpr int tolerance = 150;  // more than six standard deviations
const std::string off = "off";  // no book move

std::string moves_of(const std::string& row) { return row.substr(0, row.find(',')); }

/// Plays the moves, four characters each, up to the first illegal one and returns its number.
std::string first_illegal_move(std::string_view moves, Game& game) {
    for (std::size_t i = 0; i < moves.size(); i += 4) {
        const Move move = parse_move(game, moves.substr(i, 4));
        if (!is_valid_move(game, move)) return std::string(moves.substr(i, 4));
        play_move(game, move);
    }
    return "";
}

class BookTest : public ::testing::Test {
protected:
    BookFault load(const std::string& text) {
        folder_.write("book.dat", text);
        return load_book(book, folder_.path_to("book.dat"), 22);
    }

    /// How often each answer is given to the moves, in as many tries.
    std::map<std::string, int> answers(std::string_view moves, int questions) {
        const auto game = new_game();
        EXPECT_EQ(first_illegal_move(moves, *game), "");
        std::map<std::string, int> counts;
        for (int i = 0; i < questions; ++i) {
            const auto move = book_move(book, *game);
            ++counts[move ? move_text(*move) : off];
        }
        return counts;
    }
    std::string answer(std::string_view moves) { return answers(moves, 1).begin()->first; }

    Book book;

private:
    Folder folder_;
};

TEST_F(BookTest, ShippedBookIsLegalSortedAndLarge) {
    EXPECT_EQ(load_book(book, VARN_DATA_FOLDER "/book.dat", 1), BookFault::none);
    ASSERT_GE(book.rows.size(), 500U);
    std::string before;
    for (const std::string& row : book.rows) {
        const std::string moves = moves_of(row);
        const auto game = new_game();
        EXPECT_LT(moves.size(), row.size()) << "no name: " << moves;
        EXPECT_EQ(moves.size() % 4, 0U) << moves;
        EXPECT_EQ(first_illegal_move(moves, *game), "") << moves;
        // In a sorted file a prefix of another row is directly before it.
        EXPECT_LT(before, moves);
        EXPECT_FALSE(!before.empty() && moves.starts_with(before)) << moves;
        before = moves;
    }
}

TEST_F(BookTest, ChoosesMovesByTheNumberOfMatchingRows) {
    // Rows, moves of the game, and the expected shares.
    const std::tuple<std::string, std::string, std::map<std::string, double>> cases[] = {
        {"d2d4d7d5\nd2d4g8f6\ne2e4c7c5\ne2e4e7e5\ne2e4e7e6\n", "", {{"d2d4", 0.4}, {"e2e4", 0.6}}},
        {"e2e4c7c5\nd2d4d7d5\ne2e4e7e5\n", "e2e4", {{"c7c5", 0.5}, {"d7d5", 0.5}}},  // not adjacent
        {"e2e4c7c5\nd2\ne2e4e7e5\n", "e2e4", {{"c7c5", 0.5}, {off, 0.5}}},
        {"e2e4c7c5\nd2d4b7\nd2d4b2b4\ne2e4e7e5\ne2e4e7e5\n", "e2e4", {{"c7c5", 1 / 3.0}, {off, 2 / 3.0}}},
        {"e2e4\ne2e4e7e5\n", "e2e4", {{off, 0.5}, {"e7e5", 0.5}}},
        {"e2e4,any text\ne2e4e7e5,any text", "e2e4", {{"e7e5", 1}}},
        {"e2e4,e7e5\n", "e2e4", {{off, 1}}},
        {"e2e4e7e5\r\n", "e2e4", {{"e7e5", 1}}},
        {"e2e4e7e5\r\n", "e2e4e7e5", {{off, 1}}},
        {"d2d4d7d5c2c4e7e6c2c4\n", "c2c4e7e6", {{off, 1}}},            // the moves occur later in the row
        {"e2e4e7e\ne2e4x9x9\ne2e4 \ne2e4e2e4\n", "e2e4", {{off, 1}}},  // no moves, or illegal ones
        {"\n\n", "", {{off, 1}}},
    };
    for (const auto& [rows, moves, expected] : cases) {
        EXPECT_EQ(load(rows), BookFault::none);
        auto counts = answers(moves, draws);
        for (const auto& [move, share] : expected) EXPECT_NEAR(counts[move], draws * share, tolerance) << rows << move;
        EXPECT_EQ(counts.size(), expected.size()) << rows;
    }
}

TEST_F(BookTest, EndsAfterTheTwentySecondMove) {
    constexpr std::size_t last_answered = std::size_t{21} * 4;
    std::string row;
    while (row.size() <= last_answered + 8) row += "g1f3g8f6f3g1f6g8";
    load(row + '\n');
    for (std::size_t length = 0; length < row.size(); length += 4) {
        EXPECT_EQ(answer(row.substr(0, length)), length <= last_answered ? row.substr(length, 4) : off) << length / 4;
    }
}

TEST_F(BookTest, SplitsLongLinesAndNeedsItsFile) {
    for (const std::size_t length : {98U, 99U, 120U}) {
        const std::string line = "e2e4e7e5," + std::string(length - 9, 'x'), next = "d2d4d7d5";
        const bool fits = length < book_row_length;
        EXPECT_EQ(load(line + '\n' + next), BookFault::none);
        ASSERT_EQ(book.rows.size(), fits ? 2U : 3U);
        EXPECT_EQ(book.rows[1], fits ? next : line.substr(book_row_length));
    }
    EXPECT_EQ(load_book(book, "no such book", 1), BookFault::no_file);
    EXPECT_EQ(answer(""), off);
}

TEST_F(BookTest, IgnoresRowsBeyondItsCapacity) {
    std::string rows = "c2c4e7e5\n";
    for (int row = 1; row < book_capacity; ++row) rows += "e2e4e7e5\n";
    EXPECT_EQ(load(rows), BookFault::none);
    EXPECT_EQ(load(rows + "d2d4d7d5\nd2d4d7d5\n"), BookFault::too_long);
    EXPECT_EQ(book.rows.size(), std::size_t{book_capacity});
    EXPECT_EQ(answer("c2c4"), "e7e5");
    EXPECT_EQ(answer("d2d4"), off);
}

}  // namespace
}  // namespace varn
