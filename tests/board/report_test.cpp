// Board diagrams. Full reports are tested by the console transcripts.
#include <gtest/gtest.h>

#include "board/report.h"
#include "positions.h"

namespace varn {
namespace {

TEST(Report, DrawsTheBitboardsOrTheMailbox) {
    const auto game = new_game();
    game->zobrist_key = 0x1234567880000000;
    game->zobrist_lock = 42;
    game->cells[a8] = no_piece;
    EXPECT_TRUE(diagram_text(*game).starts_with("rnbqkbnr\npppppppp\n"));
    EXPECT_TRUE(cells_text(*game).starts_with("\n.nbqkbnr\npppppppp\n"));
    EXPECT_NE(board_text(*game).find("key: -2147483648\nZobrist lock: 42\n"), std::string::npos);
    EXPECT_EQ(bitboard_text(bit_mask(b8) | bit_mask(h1)).find("01000000\n0"), 0U);
    EXPECT_TRUE(bitboard_text(bit_mask(h1)).ends_with("00000001\n"));
}

}  // namespace
}  // namespace varn
