// The tables of the board's geometry against a plain walk over ranks and files, and the helpers on bits and numbers.
#include <gtest/gtest.h>

#include <cstdlib>

#include "board/attacks.h"
#include "board/divisor.h"
#include "board/geometry.h"
#include "positions.h"

namespace varn {
namespace {

TEST(Bits, HelpersOnEmptyAndFullBoards) {
    EXPECT_EQ(last_one(0), -1);
    EXPECT_FALSE(has_at_least(0, 0));
    for (const int n : {-1, 0, 1, 64, 65}) EXPECT_EQ(has_at_least(~Bitboard{0}, n), n == 1 || n == 64) << n;
    Bitboard board = bit_mask(h1) | bit_mask(31) | bit_mask(32) | bit_mask(a8);
    EXPECT_EQ(last_one(board), a8);
    for (const int expected : {0, 31, 32, 63}) EXPECT_EQ(pop_first(board), expected);
    EXPECT_EQ(board, 0U);
}

TEST(Divisor, GivesTheRemainderOfTheDivision) {
    RandomSource random(2);
    for (int round = 0; round < 100000; ++round) {
        const std::uint64_t value = (random.next() >> random.below(64)) | 1U;  // of every length
        const std::uint64_t multiple = random.next() / value * value;
        for (const std::uint64_t d : {value, value == ~std::uint64_t{0} ? value : value + 1}) {
            for (const std::uint64_t number :
                 {random.next(), multiple, multiple - 1, std::uint64_t{0}, ~std::uint64_t{0}}) {
                ASSERT_EQ(remainder(number, divisor(d)), number % d) << number << " by " << d;
            }
        }
    }
}

TEST(Geometry, SlidersReachTheFirstManOnEveryLine) {
    RandomSource random(1);
    auto game = std::make_unique<Game>();
    for (int round = 0; round < 3000; ++round) {
        const Bitboard sparse = random.next() & random.next(), men = round % 2 == 0 ? sparse : sparse & random.next();
        game->w_pieces = men & random.next();
        game->b_pieces = men & ~game->w_pieces;
        game->men = men;
        game->r90 = rotate_90(men);
        game->r45f = rotate_45f(men);
        game->r45b = rotate_45b(men);
        for (int square = 0; square < square_count; ++square) {
            ASSERT_EQ(rank_reach(*game, square), walk(square, 0, 1, men) | walk(square, 0, -1, men)) << square;
            ASSERT_EQ(file_reach(*game, square), walk(square, 1, 0, men) | walk(square, -1, 0, men)) << square;
            ASSERT_EQ(r45f_reach(*game, square), walk(square, 1, -1, men) | walk(square, -1, 1, men)) << square;
            ASSERT_EQ(r45b_reach(*game, square), walk(square, 1, 1, men) | walk(square, -1, -1, men)) << square;
        }
    }
    EXPECT_EQ(rank_attacks[e1][0], rank_masks[1] & not_bit(e1));
    EXPECT_EQ(rank_attacks[e1][5], rank_masks[1] & not_bit(e1) & not_bit(h1));
    for (int n = 0; n <= 8; ++n) EXPECT_EQ(rotate_90(rank_masks[n]), file_masks[n]) << n;
}

TEST(Geometry, DirectionsRaysAndStepsFollowFromTheDifferences) {
    constexpr Direction by_step[3][3] = {
        {south_east, south, south_west}, {east, no_direction, west}, {north_east, north, north_west}};
    const auto sign = [](int difference) { return (difference > 0) - (difference < 0); };
    for (int a = 0; a < square_count; ++a) {
        for (int b = 0; b < square_count; ++b) {
            const int up = b / 8 - a / 8, left = b % 8 - a % 8, ranks = std::abs(up), files = std::abs(left);
            const bool on_a_line = ranks == 0 || files == 0 || ranks == files;
            const Direction expected = on_a_line ? by_step[sign(up) + 1][sign(left) + 1] : no_direction;
            EXPECT_EQ(direction_table[a][b], expected) << a << ' ' << b;
            const auto holds = [b](Bitboard board) { return (board & bit_mask(b)) != 0; };
            for (int way = north; way < direction_count; ++way)
                EXPECT_EQ(holds(rays[way][a]), expected == way) << a << b;
            EXPECT_EQ(holds(knight_moves[a]), ranks * files == 2) << a << ' ' << b;
            EXPECT_EQ(holds(king_moves[a]), std::max(ranks, files) == 1) << a << ' ' << b;
            EXPECT_EQ(holds(pawn_attacks<Side::white>[a]), up == 1 && files == 1) << a << ' ' << b;
            EXPECT_EQ(holds(pawn_attacks<Side::black>[a]), up == -1 && files == 1) << a << ' ' << b;
        }
    }
    EXPECT_EQ(direction_table[h1][g1], 3);
    EXPECT_EQ(direction_table[a1][h8], 6);
    EXPECT_EQ(direction_table[8][a1], 0);  // neighbours by number, but on no common line
}

}  // namespace
}  // namespace varn
