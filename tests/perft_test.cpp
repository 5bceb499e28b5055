// Counting moves at the prompt, and the comparison of games that ends each count: which difference it finds and how it
// says so.
#include <gtest/gtest.h>
#include <unistd.h>

#include <regex>

#include "frontend/compare_games.h"
#include "frontend/perft.h"
#include "process.h"
#include "search/think.h"
#include "search_helpers.h"

namespace varn {
namespace {

TEST(Perft, CountsMovesEitherWayAndLeavesTheGameAsItWas) {
    constexpr KnownPosition cases[] = {{known_positions[0].text, 0, 1},
                                       {known_positions[0].text, 4, 197281},
                                       {known_positions[1].text, 3, 97862},
                                       {known_positions[2].text, 4, 43238}};
    for (const auto& [text, depth, leaves] : cases) {
        const std::string plies = std::to_string(depth) + '\n';
        std::string lines = "setboard ", count = "running perft=" + plies, expected = "Varn> Varn> ([^V]*)Varn> ";
        lines.append(text).append("\nshow\nperft " + plies).append("advperft " + plies).append("show\n");
        count.append("Counted: " + std::to_string(leaves)).append(" nodes in \\d+ seconds\\.\nVarn> ");
        expected.append(count).append(count).append("\\1Varn> ");
        const std::string output = run_console(lines).output;
        EXPECT_TRUE(std::regex_match(output, std::regex(expected))) << output;
    }
}

class PickedPerft : public SearchTest {
protected:
    /// The text of a count, without the time it took.
    static std::string report(void (*count)(Game*, int), Game& game, int depth) {
        ::testing::internal::CaptureStdout();
        count(&game, depth);
        const std::string text = ::testing::internal::GetCapturedStdout();
        return text.substr(0, text.find(" in "));
    }
};

TEST_F(PickedPerft, CountsWhatThePlainGeneratorCountsWhateverASearchLeft) {
    RandomSource random(61);
    for (const KnownPosition& known : known_positions) {
        const auto game = game_from(known.text);
        const auto before = std::make_unique<Game>(*game);
        const int depth = known.depth - 1;
        const std::string expected = report(perft, *game, depth);
        clock_running = 0;
        hash_clear();  // every hash move comes of an internal search
        EXPECT_EQ(report(advperft, *game, depth), expected) << known.text;
        EXPECT_EQ(clock_running, 0U);

        ply_limit = depth;
        think(game.get());  // leaves killers, history and hash moves; the replies to each move get others by chance
        for (const Move move : legal_moves(*game)) {
            const auto child = after(*game, move);
            const std::vector<Move> replies = legal_moves(*child);
            if (replies.empty()) continue;
            const Move reply = random_move(random, replies);
            hash_store(child.get(), depth, &reply, 0, bound_upper);
        }
        EXPECT_EQ(report(advperft, *game, depth), expected) << known.text;
        EXPECT_TRUE(same_game(*game, *before)) << known.text;
    }
}

/// Holds a game against one that differs, both ways round; the messages are followed by both boards.
void expect_difference(const Game& sound, const Game& spoilt, const std::string& message) {
    const auto compare = [](const Game& a, const Game& b) {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        compare_games(&a, &b);
    };
    const auto expected = [&](const char* name) {
        return '^' + message +
               (is_consistent(&spoilt) ? "" : "cell array doesnt match bitboards: " + std::string(name)) +
               "GAMES NOT EQUAL!!!\n.*\n--------------------------\n.*\n\n$";
    };
    EXPECT_EXIT(compare(spoilt, sound), ::testing::ExitedWithCode(1), expected("g\n"));
    EXPECT_EXIT(compare(sound, spoilt), ::testing::ExitedWithCode(1), expected("h\n"));
}

TEST(CompareGames, NamesEveryDifference) {
    const std::pair<const char*, void (*)(Game&)> cases[] = {
        {"Zobrist keys do not match!\n", [](Game& g) { g.zobrist_key ^= 1; }},
        {"Zobrist locks do not match!\n", [](Game& g) { g.zobrist_lock ^= 1; }},
        {"the move counter does not match!\n", [](Game& g) { ++g.move_counter; }},
        {"the white king squares does not match!\n", [](Game& g) { ++g.wking_sqr; }},
        {"the black king squares does not match!\n", [](Game& g) { ++g.bking_sqr; }},
        {"material does not match!\n", [](Game& g) { ++g.material; }},
        {"the turn does not match!\n", [](Game& g) { g.turn ^= 1; }},
        {"the white castling rights do not match", [](Game& g) { g.w_castle ^= 1; }},
        {"the black castling rights do not match", [](Game& g) { g.b_castle ^= 1; }},
        {"cell array does not match!\n", [](Game& g) { g.cells[20] = 7; }},
        {"fifty move counter doesn't match!\n", [](Game& g) { ++g.fifty; }},
    };
    const auto sound = game_from(known_positions[1].text);
    const auto spoilt = std::make_unique<Game>();
    for (const auto& [message, spoil] : cases) {
        *spoilt = *sound;
        spoil(*spoilt);
        expect_difference(*sound, *spoilt, message);
    }
    constexpr std::pair<const char*, Bitboard Game::*> boards[] = {
        {"r90", &Game::r90},           {"r45f", &Game::r45f},           {"r45b", &Game::r45b},
        {"w_pieces", &Game::w_pieces}, {"b_pieces", &Game::b_pieces},   {"w_queens", &Game::w_queens},
        {"w_rooks", &Game::w_rooks},   {"w_bishops", &Game::w_bishops}, {"w_knights", &Game::w_knights},
        {"w_king", &Game::w_king},     {"w_pawns", &Game::w_pawns},     {"b_queens", &Game::b_queens},
        {"b_rooks", &Game::b_rooks},   {"b_bishops", &Game::b_bishops}, {"b_knights", &Game::b_knights},
        {"b_king", &Game::b_king},     {"b_pawns", &Game::b_pawns},     {"enpassant", &Game::enpassant},
    };
    for (const auto& [name, board] : boards) {
        *spoilt = *sound;
        (*spoilt).*board ^= bit_mask(20);
        expect_difference(*sound, *spoilt, "BitBoard: " + std::string(name) + " does not match!\n");
    }
}

TEST(CompareGames, SaysNothingOfEqualGames) {
    const auto game = game_from(known_positions[1].text);
    const auto other = std::make_unique<Game>(*game);
    ++other->w_material, ++other->b_material, other->pawn_key ^= 1, other->pawn_lock ^= 1, other->ep_side ^= 1;
    other->draw_hash[0].key ^= 1;
    ::testing::internal::CaptureStdout();
    compare_games(game.get(), other.get());
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

}  // namespace
}  // namespace varn
