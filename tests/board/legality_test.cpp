// Legality tests, compared with making the move and looking at the kings.
#include <gtest/gtest.h>

#include <iterator>
#include <set>

#include "board/attacks.h"
#include "board/legality.h"
#include "positions.h"

namespace varn {
namespace {

/// Whether a move is legal, found by making it.
bool is_safe(const Game& game, Move move) {
    const auto next = after(game, move);
    return game.turn == Side::white ? !white_in_check(*next) : !black_in_check(*next);
}

/// Every function that tests a pseudo-legal move for legality.
void expect_legality(const Game& game, Move move, bool is_legal_move) {
    const bool white = game.turn == Side::white;
    EXPECT_EQ(is_legal(game, move), is_legal_move) << move_text(move);
    EXPECT_EQ(is_legal_under(game, pins_of(game), move), is_legal_move) << move_text(move);
    EXPECT_EQ(white ? leaves_white_in_check(game, move) : leaves_black_in_check(game, move), !is_legal_move)
        << move_text(move);
}

TEST(Legality, ValidMovesAreExactlyTheGeneratedLegalOnes) {
    RandomSource random(4);
    visit_random_games(4, 60, [&](const Game& game) {
        const auto number_of = [](Move move) { return move.from << 16 | move.to << 8 | move.kind; };
        std::set<int> generated, valid;
        std::vector<Move> candidates, safe;
        constexpr std::uint8_t kinds[] = {0, 1, 2, 3, 4, 6, 7, 9, 10, 11, 14, 15, 0x11, 0x12, 0x20, 0x41, 0x42, 0xFF};
        for (const Move move : pseudo_legal_moves(game)) {
            EXPECT_TRUE(generated.insert(number_of(move)).second) << "twice: " << move_text(move);
            EXPECT_NE(game.cells[move.to] & 7, king) << move_text(move);
            expect_legality(game, move, is_safe(game, move));
            if (is_safe(game, move)) {
                valid.insert(number_of(move));
                safe.push_back(move);
            }
            for (const std::uint8_t kind : kinds) candidates.push_back({move.from, move.to, kind});
        }
        EXPECT_EQ(every_legal_move(game), safe);
        const auto byte = [&random] { return static_cast<std::uint8_t>(random.next()); };
        for (int i = 0; i < 50; ++i) candidates.push_back({byte(), byte(), kinds[byte() % std::size(kinds)]});
        for (const Move move : candidates) {
            EXPECT_EQ(is_valid_move(game, move), valid.contains(number_of(move))) << move_text(move) << +move.kind;
        }
        ASSERT_FALSE(::testing::Test::HasFailure()) << position_text(game);
    });
}

/// A random position in which white's pawn on the file can make a double step that allows en passant; empty if a king
/// is in the way.
std::string before_a_double_step(RandomSource& random) {
    std::string text = random_position_text(random, static_cast<unsigned>(random.below(16)));
    const std::size_t file = random.below(8);
    const std::size_t beside = file == 0 || (file < 7 && random.below(2) == 0) ? file + 1 : file - 1;
    for (const auto& [square, piece] :
         {std::pair{48 + file, 'P'}, {40 + file, '1'}, {32 + file, '1'}, {32 + beside, 'p'}}) {
        if (text[square] == 'K' || text[square] == 'k') return "";
        text[square] = piece;
    }
    text[square_count + 1] = 'w';
    return text;
}

/// Kings on any square, also with the side not to move in check.
TEST(Legality, HoldsInUnreachablePositions) {
    RandomSource random(5);
    int en_passant = 0, en_passant_illegal = 0;
    const auto expect_all = [&](const Game& game) {
        bool any = false;
        for (const Move move : pseudo_legal_moves(game)) {
            const bool safe = is_safe(game, move);
            expect_legality(game, move, safe);
            any = any || safe;
            if (move.kind != kind_en_passant) continue;
            ++en_passant;
            en_passant_illegal += safe ? 0 : 1;
        }
        EXPECT_EQ(has_legal_move(game), any);
        ASSERT_FALSE(::testing::Test::HasFailure()) << position_text(game);
    };
    for (unsigned round = 0; round < 3000; ++round) {
        expect_all(*game_from(random_position_text(random, 3 + round % 20)));
        const std::string text = before_a_double_step(random);
        if (text.empty()) continue;
        for (const auto& game : {game_from(text), game_from(mirrored_text(text))}) {
            for (const Move move : pseudo_legal_moves(*game)) {
                if (move.kind == kind_double_step) expect_all(*after(*game, move));
            }
        }
    }
    EXPECT_GT(en_passant, 2000);
    EXPECT_GT(en_passant_illegal, 400);
}

}  // namespace
}  // namespace varn
