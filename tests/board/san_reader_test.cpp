// Reading moves in algebraic notation as written by other programs.
#include <gtest/gtest.h>

#include "board/san_reader.h"
#include "positions.h"
#include "tables.h"

namespace varn {
namespace {

/// A move with its full from-square, all its signs, and one optional sign.
std::string long_text(const Game& game, Move move) {
    const char piece = piece_letter(type_of(game.cells[move.from]));
    const bool captures = game.cells[move.to] != no_piece || move.kind == kind_en_passant;
    std::string text = square_text(move.from) + (captures ? 'x' : '-') + square_text(move.to);
    if (piece != 'P') text = piece + text;
    if (is_promotion(move.kind)) text += std::string("=") + piece_letter(type_of(move.kind));
    return text + (move.kind == kind_en_passant ? " e.p." : "") + "+!?";
}

TEST(SanReader, ReadsEachMoveOfRandomGamesInEverySpelling) {
    visit_random_games(41, 60, [](const Game& game) {
        for (const Move move : every_legal_move(game)) {
            std::string san = san_text(game, move);
            if (san.ends_with('+') || san.ends_with('#')) san.pop_back();
            for (const std::string& text : {san, san + '#', move_text(move), long_text(game, move)}) {
                EXPECT_EQ(read_san(game, text), move) << text;
            }
        }
        ASSERT_FALSE(::testing::Test::HasFailure()) << position_text(game);
    });
}

TEST(SanReader, AcceptsUnambiguousText) {
    for (const auto& row : table_rows("san_read.txt")) {
        const std::vector<char> exact(row.at(1).begin(), row.at(1).end());  // exact size for sanitizers
        const auto move = read_san(*game_from(row.at(0)), {exact.data(), exact.size()});
        EXPECT_EQ(move ? move_text(*move) : "-", row.at(2)) << row.at(0) << ' ' << row.at(1);
    }
    auto game = game_from("2r1k3/1P6/8/2pP4/4B3/8/8/4K3 w - -");
    game->enpassant = bit_mask(square_from_text("c6"));
    game->ep_side = Side::white;
    for (const char* text : {"dxc6", "dc6", "dxc6 e.p.", "dxc6ep", "d5xc6e.p.!"}) {
        const auto move = read_san(*game, text);
        EXPECT_TRUE(move && move->kind == kind_en_passant) << text;
    }
    EXPECT_FALSE(read_san(*game, "c6"));  // a pawn capture needs its file
}

}  // namespace
}  // namespace varn
