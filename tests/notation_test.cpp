// Moves, positions and boards as text: round trips, tables of short algebraic form, bad input of every kind, and what
// is printed, byte for byte.
#include <gtest/gtest.h>
#include <unistd.h>

#include <map>
#include <set>
#include <tuple>

#include "board/attacks.h"
#include "board/notation.h"
#include "board/report.h"
#include "positions.h"
#include "tables.h"

namespace varn {
namespace {

/// The text in a block of just its size, so that a sanitizer sees a read past its end.
struct ExactText {
    explicit ExactText(std::string_view text) : bytes(text.begin(), text.end()) { bytes.shrink_to_fit(); }
    operator std::string_view() const { return {bytes.data(), bytes.size()}; }
    std::vector<char> bytes;
};

TEST(SquareText, NamesRoundTripAndNothingElseIsASquare) {
    for (int square = 0; square < square_count; ++square) EXPECT_EQ(square_from_text(square_text(square)), square);
    EXPECT_EQ(square_text(h1) + square_text(a1) + square_text(h8) + square_text(a8), "h1a1h8a8");
    EXPECT_EQ(square_from_text("B7x"), 54);
    for (const int square : {-1, 64, 255, -1000}) EXPECT_EQ(square_text(square), "??");
    for (const char* text : {"", "a", "a0", "a9", "i1", "i2", "`1", "11", "aa", "1a", "\n"}) {
        EXPECT_EQ(square_from_text(ExactText(text)), -1) << text;
    }
}

TEST(MoveText, RoundTripsAndSanNamesEachMoveOnceInRandomGames) {
    visit_random_games(8, 100, [](Game& game) {
        const auto before = std::make_unique<Game>(game);
        std::set<std::string> names;
        for (const Move move : legal_moves(game)) {
            const std::string text = move_text(move), name = san_text(move, &game);
            EXPECT_EQ(parse_move(text, &game), move) << text;
            EXPECT_EQ(parse_move(text + "\n", &game), move) << text;
            EXPECT_TRUE(names.insert(name).second) << name;
            EXPECT_LE(name.size(), 7U) << name;
            const auto next = std::make_unique<Game>(game);
            make_move(next.get(), move);
            const bool mates = in_check(next.get()) && legal_moves(*next).empty() && next->fifty < 100;
            const char sign = is_castling(move.kind) ? '-' : mates ? '#' : in_check(next.get()) ? '+' : '-';
            EXPECT_EQ(name.back() == '#' || name.back() == '+' ? name.back() : '-', sign) << name;
        }
        EXPECT_TRUE(game == *before);
        ASSERT_FALSE(::testing::Test::HasFailure()) << position_text(&game);
    });
}

TEST(San, LastMoveOfALine) {
    for (const auto& row : table_rows("san_written.txt")) {
        auto game = game_from(row.at(0));
        std::string last;
        for (const std::string& typed : split(row.at(1), " ")) {
            const Move move = parse_move(typed, game.get());
            last = san_text(move, game.get());
            play_move(move, game.get());
        }
        EXPECT_EQ(last, row.at(2)) << row.at(0);
    }
    auto game = game_from("6k1/5ppp/8/8/8/8/8/R3K3 w Q -");
    game->fifty = 99;  // a draw comes before mate
    const Move mate = parse_move("a1a8", game.get());
    EXPECT_EQ(printed([&] { print_san(mate, game.get()); }), " Ra8+");
}

TEST(MoveText, KindsOfWhatIsTypedAndNothingPastItsEnd) {
    constexpr std::tuple<std::string_view, std::string_view, int> cases[] = {
        {"3rk3/4P3/8/8/8/8/8/4K3 w - -", "e7d8q", 1},  // not a capture: the promotion overrides it
        {"3rk3/4P3/8/8/8/8/8/4K3 w - -", "e7d8", 0x20}, {"3rk3/4P3/8/8/8/8/8/4K3 w - -", "e7d8x", 0xFF},
        {"4k3/8/8/8/8/8/8/4R1K1 w - -", "e1g1", 0x20},  // no king, no castling
        {"4k3/8/8/8/8/8/8/4R2K w - -", "e1g1", 0},      {"4k3/8/8/8/8/8/8/R3K2R w KQ -", "E1C1\n", 0x42},
        {"4k3/8/8/8/8/8/4p3/K7 b - -", "e2e1N", 11},
    };
    for (const auto& [text, typed, kind] : cases) {
        EXPECT_EQ(parse_move(typed, game_from(text).get()).kind, kind) << text << ' ' << typed;
    }
    EXPECT_EQ(printed([] { print_move({12, 64, 14}); }), "d2??r");
    auto game = game_from("3rk3/4P3/8/8/8/8/8/R3K2R w KQ -");
    for (const char* text : {"", "e", "e7", "e7d", "e7d8", "e9e8", "e7z8", "i7i8", "@1@2", "e1\xFF\xFF", "quit\n",
                             "e7d8k", "e7d8 ", "e1e1"}) {
        EXPECT_FALSE(is_valid_move(game.get(), parse_move(ExactText(text), game.get()))) << text;
    }
}

TEST(PositionText, RoundTrips) {
    visit_random_games(9, 100, [](Game& game) {
        const std::string text = position_text(&game);
        const auto read = std::make_unique<Game>();
        EXPECT_EQ(printed([&] { set_position(read.get(), text, KeepTables::no); }),
                  game.enpassant == 0 ? "" : "enpassant not supported in EPD format yet.\n");
        read->enpassant = game.enpassant;
        EXPECT_EQ(position_text(read.get()), text);
        EXPECT_TRUE(is_consistent(read.get()));
        EXPECT_EQ(read->fifty + read->move_counter, 0);
        EXPECT_EQ(read->draw_hash_count, 1U);
        EXPECT_EQ(read->draw_hash[0], keys_of(*read));
    });
}

TEST(PositionText, WhatIsMadeOfOddTexts) {
    constexpr std::string_view no_side = "error: unrecognised character in side to move field.\n";
    constexpr std::string_view no_enpassant = "enpassant not supported in EPD format yet.\n";
    constexpr std::string_view all = "r3k2r/8/8/8/8/8/8/R3K2R ", few = "4k3/8/8/8/8/8/8/4K2R ";
    constexpr std::tuple<std::string_view, std::string_view, std::string_view, std::string_view> cases[] = {
        // board, what follows, what is written again, what is said
        {all, "b qQkK - 12 34 bm Kd2;", "b KQkq -", ""},
        {all, "w KQ-k -", "w k -", ""},
        {all, "white HAx!KK -", "w K -", ""},
        {few, "w KQkq -", "w K -", ""},                       // no rook, no right
        {"4k2R/8/8/8/8/8/8/r3K3 ", "w KQkq -", "w - -", ""},  // nor with the enemy's rook
        {few, "x K -", "b K -", no_side},                     // the turn stays as it was
        {few, " -K -", "b - -", no_side},  // an empty side field leaves its blank to an empty castling field
        {few, "w K e3", "w K -", no_enpassant},
        {few, "", "b - -", no_side},
        {few, "w\nK -", "w - -", ""},
    };
    for (const auto& [board, rest, expected, said] : cases) {
        const std::string text = std::string(board) + std::string(rest);
        auto game = game_from("4k3/8/8/8/8/8/8/4K3 b - -");
        EXPECT_EQ(printed([&] { set_position(game.get(), ExactText(text), KeepTables::yes); }), said) << text;
        EXPECT_EQ(position_text(game.get()), std::string(board) + std::string(expected)) << text;
        EXPECT_TRUE(is_consistent(game.get())) << text;
    }
    EXPECT_EQ(position_text(game_from("4k384K2R99999 w - -").get()), "4k3/8/4K2R/8/8/8/8/8 w - -");
    for (const char* text :
         {"rnbqkbnX/8/8/8/8/8/8/8 w - -", "8/8/8 w - -", "8/8/8/8/8/8/8/7", "8/8\n8/8", "", "\xFF"}) {
        const auto read = [&] {
            dup2(STDERR_FILENO, STDOUT_FILENO);
            game_from(ExactText(text));
        };
        EXPECT_EXIT(read(), ::testing::ExitedWithCode(1), "^error: unrecognised character in EPD string\\.\n$");
    }
}

TEST(Soundness, AnyBitOrCellAstrayIsFound) {
    const auto sound = game_from(known_positions[3].text), game = std::make_unique<Game>(*sound);
    for (int square = 0; square < square_count; ++square) {
        for (const auto board : {&Game::w_pieces, &Game::w_king, &Game::w_queens, &Game::w_rooks, &Game::w_bishops,
                                 &Game::w_knights, &Game::w_pawns, &Game::b_pieces, &Game::b_queens, &Game::b_pawns}) {
            (*game).*board ^= bit_mask(square);
            EXPECT_FALSE(is_consistent(game.get())) << square;
            (*game).*board ^= bit_mask(square);
        }
        for (int code = no_piece; code < piece_code_count; ++code) {
            game->cells[square] = static_cast<PieceCode>(code);
            EXPECT_EQ(is_consistent(game.get()), same_mover(code, sound->cells[square])) << square << ' ' << code;
        }
        game->cells[square] = sound->cells[square];
    }
    ++game->wking_sqr;
    EXPECT_EQ(printed([&] { print_position_text(game.get()); }),
              "error: cannot generate EPD string since game is corrupt.\n");
}

TEST(Soundness, PlayablePositions) {
    for (const char* board : {"4k3/8/8/8/8/8/8/8", "8/8/8/8/8/8/8/4K3", "4kk2/8/8/8/8/8/8/4K3", "4k3/8/8/8/8/8/8/3KK3",
                              "p3k3/8/8/8/8/8/8/4K3", "4k3/8/8/8/8/8/8/P3K3"}) {
        EXPECT_FALSE(is_playable(game_from(board + std::string(" w - -")).get())) << board;
    }
    EXPECT_TRUE(is_playable(game_from("4k3/pppppppp/8/8/8/8/PPPPPPPP/4K3 w - -").get()));
}

TEST(Report, TellsHowTheGameStands) {
    const std::map<std::string, const char*> lines = {{"1", "Game is in progress.\n"},
                                                      {"0", "Stalemate.\n"},
                                                      {"9999", "Black is Checkmated. White wins.\n"},
                                                      {"-9999", "White is Checkmated. Black wins.\n"}};
    for (const auto& row : table_rows("status.txt")) {
        const auto game = game_of_row(row);
        EXPECT_EQ(game_status_score(game.get()), std::stoi(row.at(3))) << row.at(0) << row.at(1);
        EXPECT_STREQ(game_status_text(game.get()), lines.at(row.at(3))) << row.at(0);
    }
    auto game = new_game(false);
    game->zobrist_key = 0x1234567880000000;
    game->zobrist_lock = 42;
    game->cells[a8] = no_piece;
    EXPECT_EQ(printed([&] { print_board(game.get()); }).find("rnbqkbnr\n"), 0U);
    EXPECT_EQ(printed([&] { print_cells(game.get()); }).find("\n.nbqkbnr\n"), 0U);
    EXPECT_NE(printed([&] { print_board(game.get()); }).find("key: -2147483648\nZobrist lock: 42\n"),
              std::string::npos);
}

}  // namespace
}  // namespace varn
