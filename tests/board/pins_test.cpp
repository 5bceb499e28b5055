// Pins and checkers, compared with a walk from the king. Legality is tested in legality_test.cpp.
#include <gtest/gtest.h>

#include "board/attacks.h"
#include "board/pins.h"
#include "positions.h"

namespace varn {
namespace {

template <Side S> Bitboard pinned_by_a_walk(const Game& game) {
    constexpr Side them = other(S);
    const int king_square = king_square_of<S>(game);
    Bitboard pinned = 0;
    for (const auto& [ranks, files] : {std::pair{0, 1}, {0, -1}, {1, 0}, {-1, 0}, {1, 1}, {1, -1}, {-1, 1}, {-1, -1}}) {
        const Bitboard pieces = occupied(game);
        const Bitboard first = walk(king_square, ranks, files, pieces) & pieces;
        const Bitboard second = walk(king_square, ranks, files, pieces & ~first) & pieces & ~first;
        const Bitboard sliders =
            queens_of<them>(game) | (ranks * files == 0 ? rooks_of<them>(game) : bishops_of<them>(game));
        if ((second & sliders) != 0) pinned |= first & pieces_of<S>(game);
    }
    return pinned;
}

template <Side S> void expect_pins(const Game& game) {
    const Pins pins = pins_of<S>(game);
    EXPECT_EQ(pins.pinned, pinned_by_a_walk<S>(game)) << position_text(game);
    EXPECT_EQ(pins.checkers, attackers_of(game, king_square_of<S>(game)) & pieces_of<other(S)>(game));
    EXPECT_EQ(pins.king_square, king_square_of<S>(game));
}

TEST(Pins, MatchAWalkFromTheKing) {
    RandomSource random(7);
    Bitboard seen = 0;
    for (unsigned round = 0; round < 4000; ++round) {
        const auto game = game_from(random_position_text(random, 3 + round % 25));
        expect_pins<Side::white>(*game);
        expect_pins<Side::black>(*game);
        seen |= pins_of(*game).pinned;
        ASSERT_FALSE(HasFailure()) << position_text(*game);
    }
    EXPECT_GT(popcount(seen), 50);  // of 60: no pins in corners
}

}  // namespace
}  // namespace varn
