// Attacks, compared with a board walk that uses none of the engine's tables.
#include <gtest/gtest.h>

#include "board/attacks.h"
#include "positions.h"

namespace varn {
namespace {

/// Squares attacked by the piece on `from`, without tables.
Bitboard attacked_from(const Game& game, int from) {
    const int type = game.cells[from] & 7, forwards = game.cells[from] < 8 ? 1 : -1;
    Bitboard attacked = 0;
    for (int ranks = -2; ranks <= 2; ++ranks) {
        for (int files = -2; files <= 2; ++files) {
            const int distance = ranks * ranks + files * files;  // squared: 1 straight, 2 diagonal, 5 knight
            const bool slides = (type == queen && (distance == 1 || distance == 2)) ||
                                (type == bishop && distance == 2) || (type >= 4 && type <= 6 && distance == 1);
            const bool steps = (type == king && (distance == 1 || distance == 2)) ||
                               (type == knight && distance == 5) ||
                               (type == pawn && distance == 2 && ranks == forwards);
            if (slides) attacked |= walk(from, ranks, files, occupied(game));
            if (steps) attacked |= walk(from, ranks, files, ~Bitboard{0});
        }
    }
    return attacked;
}

TEST(Attacks, MatchABoardWalkFromEveryPiece) {
    RandomSource random(6);
    for (unsigned round = 0; round < 2000; ++round) {
        const auto game = game_from(random_position_text(random, round % 25));
        Table<Bitboard, square_count> attackers{};
        for (int from = 0; from < square_count; ++from) {
            Bitboard attacked = game->cells[from] == no_piece ? 0 : attacked_from(*game, from);
            while (attacked != 0) attackers[pop_first(attacked)] |= bit_mask(from);
        }
        for (int square = 0; square < square_count; ++square) {
            ASSERT_EQ(attackers_of(*game, square), attackers[square]) << position_text(*game) << square;
            ASSERT_EQ(attacked_by_white(*game, square), (attackers[square] & game->w_pieces) != 0) << square;
            ASSERT_EQ(attacked_by_black(*game, square), (attackers[square] & game->b_pieces) != 0) << square;
        }
        const bool white = game->turn == Side::white;
        const Bitboard checkers =
            white ? attackers[game->wking_sqr] & game->b_pieces : attackers[game->bking_sqr] & game->w_pieces;
        EXPECT_EQ(in_check(*game), checkers != 0);
    }
}

}  // namespace
}  // namespace varn
