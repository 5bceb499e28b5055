// FEN: what is refused and why, and that positions survive writing and reading.
#include <gtest/gtest.h>

#include <tuple>

#include "board/attacks.h"
#include "board/draws.h"
#include "board/fen.h"
#include "positions.h"
#include "tables.h"

namespace varn {
namespace {

TEST(Fen, IsReadCompletelyOrRefusedWithAReason) {
    for (const auto& row : table_rows("fen.txt")) {
        const FenReading reading = read_fen(row.at(0));
        EXPECT_EQ(reading.fault, row.at(1)) << row.at(0);
        const std::string again = reading.game == nullptr ? "" : fen_text(*reading.game, reading.move_number);
        EXPECT_EQ(again, row.at(2)) << row.at(0);
    }
}

TEST(Fen, AnyWhitespaceSeparatesFields) {
    const FenReading reading = read_fen("\t 8/8/8/8/8/8/k7/7K\r\f w\v-\n- \t7  9\r\n");
    ASSERT_NE(reading.game, nullptr) << reading.fault;
    EXPECT_EQ(fen_text(*reading.game, reading.move_number), "8/8/8/8/8/8/k7/7K w - - 7 9");
    EXPECT_EQ(read_fen(std::string_view("8/8/8/8/8/8/k7/7K w -\0 - 7 9", 28)).game, nullptr);
}

TEST(Fen, StartingPositionEqualsNewGame) {
    const FenReading reading = read_fen(start_fen);
    ASSERT_NE(reading.game, nullptr) << reading.fault;
    EXPECT_TRUE(same_game(*reading.game, *new_game()));
    EXPECT_EQ(fen_text(*new_game(), 1), start_fen);
}

TEST(Fen, RoundTripsInRandomGames) {
    int number = 0;
    visit_random_games(5, 120, [&number](const Game& game) {
        const FenReading reading = read_fen(fen_text(game, ++number));
        ASSERT_NE(reading.game, nullptr) << reading.fault << ": " << fen_text(game, number);
        EXPECT_EQ(reading.move_number, number);
        const Game& read = *reading.game;
        EXPECT_EQ(fen_text(read, number), fen_text(game, number));
        EXPECT_EQ(std::tie(read.turn, read.fifty, read.enpassant, read.w_castle, read.b_castle),
                  std::tie(game.turn, game.fifty, game.enpassant, game.w_castle, game.b_castle));
        EXPECT_TRUE(game.enpassant == 0 || read.ep_side == game.ep_side);
        EXPECT_EQ(every_legal_move(read), every_legal_move(game));
        EXPECT_EQ(read.move_counter, 0);
        EXPECT_EQ(read.draw_hash_count, 1U);
        expect_sound(read);
    });
    EXPECT_GT(number, 1000);
}

TEST(Fen, EveryAcceptedPositionIsPlayable) {
    RandomSource random(99);
    constexpr std::string_view letters = "KQRBNPkqrbnp12345678/ w-eacfh0 9";
    std::vector<std::string> texts;
    visit_random_games(6, 60, [&texts](const Game& game) { texts.push_back(fen_text(game, 7)); });
    int accepted = 0;
    for (int i = 0; i < 40000; ++i) {
        std::string text = texts[random.next() % texts.size()];
        for (std::uint64_t changes = random.next() % 3 + 1; changes > 0 && !text.empty(); --changes) {
            const std::size_t place = random.next() % text.size();
            const char letter = letters[random.next() % letters.size()];
            switch (random.next() % 8) {
                case 0: text.erase(place, 1); break;
                case 1: text.insert(place, 1, letter); break;
                case 2: text[place] = static_cast<char>(random.next()); break;
                case 3: text.resize(place); break;
                default: text[place] = letter; break;
            }
        }
        const FenReading reading = read_fen(text);
        ASSERT_EQ(reading.game == nullptr, !reading.fault.empty()) << text;
        if (reading.game == nullptr) continue;
        ++accepted;
        const Game& game = *reading.game;
        expect_sound(game);
        const bool is_open = game.turn == Side::white ? black_in_check(game) : white_in_check(game);
        EXPECT_FALSE(is_open) << text;
        const std::string written = fen_text(game, reading.move_number);
        const FenReading again = read_fen(written);
        ASSERT_NE(again.game, nullptr) << text << ": " << written << ": " << again.fault;
        EXPECT_TRUE(same_game(*again.game, game)) << text;
        for (const Move move : every_legal_move(game)) expect_sound(*after(game, move));
    }
    EXPECT_GT(accepted, 1000);
}

// --- Keys of a long game --------------------------------------------------------------------------------------------

/// Repetition status of the position now and after each move.
std::vector<bool> repetitions(const Game& game) {
    std::vector<bool> found = {is_repetition(game), is_third_repetition(game)};
    for (const Move move : every_legal_move(game)) found.push_back(draw_after_move(game, move));
    return found;
}

TEST(Fen, DroppingOldKeysKeepsRepetitions) {
    RandomSource random(17);
    int repeated = 0;
    for (const KnownPosition& known : known_positions) {
        auto game = game_from(known.text);
        for (int ply = 0; ply < 150; ++ply) {
            std::vector<Move> moves = every_legal_move(*game);
            if (moves.empty()) break;
            // Games that shuffle, with irreversible moves in between.
            if (random.next() % 16 != 0) {
                const auto is_final = [&](Move move) { return after(*game, move)->fifty == 0; };
                if (!std::ranges::all_of(moves, is_final)) std::erase_if(moves, is_final);
                moves.resize(std::min<std::size_t>(moves.size(), 2));
            }
            play_move(*game, moves[random.next() % moves.size()]);
            Game dropped = *game;
            drop_old_keys(dropped);
            EXPECT_LE(dropped.draw_hash_count, 256U);
            EXPECT_EQ(repetitions(dropped), repetitions(*game)) << position_text(*game);
            repeated += is_third_repetition(*game) ? 1 : 0;
        }
    }
    EXPECT_GT(repeated, 50);
}

}  // namespace
}  // namespace varn
