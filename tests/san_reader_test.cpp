// Moves as others write them, read on a board.
#include <gtest/gtest.h>

#include <tuple>

#include "board/notation.h"
#include "board/san_reader.h"
#include "positions.h"

namespace varn {
namespace {

/// A move with its whole from-square, spelled with all signs that belong to it and one that may not.
std::string long_text(const Game& game, Move move) {
    const char man = piece_letter(man_of(game.cells[move.from]));
    const bool captures = game.cells[move.to] != no_piece || move.kind == kind_en_passant;
    std::string text = square_text(move.from) + (captures ? 'x' : '-') + square_text(move.to);
    if (man != 'P') text = man + text;
    if (is_promotion(move.kind)) text += std::string("=") + piece_letter(man_of(move.kind));
    return text + (move.kind == kind_en_passant ? " e.p." : "") + "+!?";
}

TEST(SanReader, ReadsEachMoveOfRandomGamesHoweverItIsSpelled) {
    visit_random_games(41, 60, [](Game& game) {
        const auto before = std::make_unique<Game>(game);
        for (const Move move : legal_moves(game)) {
            std::string san = san_text(move, &game);
            if (san.ends_with('+') || san.ends_with('#')) san.pop_back();
            for (const std::string& text : {san, san + '#', move_text(move), long_text(game, move)}) {
                EXPECT_EQ(read_san(text, &game), move) << text;
            }
        }
        EXPECT_TRUE(same_game(game, *before));
        ASSERT_FALSE(::testing::Test::HasFailure()) << position_text(&game);
    });
}

TEST(SanReader, TakesWhatLeavesOneMove) {
    constexpr std::string_view knights = "4k3/8/8/8/4r3/2r5/4N3/1N2K3 w - -";  // the one on e2 is pinned
    constexpr std::string_view rooks = "4k3/8/R7/8/8/8/R7/4K2R w K -";
    constexpr std::string_view pawns = "2r1k3/1P6/8/2pP4/4B3/8/8/4K3 w - -";
    constexpr std::string_view both = "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -";
    constexpr std::tuple<std::string_view, std::string_view, std::string_view> cases[] = {
        {knights, "Nc3", "b1c3"},
        {knights, "Nxc3", "b1c3"},
        {knights, "Nbxc3", "b1c3"},
        {knights, "N1:c3", "b1c3"},
        {knights, "Nec3", ""},
        {knights, "nc3", ""},
        {knights, "Nd2", "b1d2"},
        {knights, "Nb1xd2", ""},
        {knights, "Nd4", ""},
        {rooks, "Ra4", ""},
        {rooks, "R2a4", "a2a4"},
        {rooks, "R6a4", "a6a4"},
        {rooks, "Raa4", ""},
        {rooks, "Ra6-a4", "a6a4"},
        {rooks, "a6a4", "a6a4"},
        {rooks, "Rh4", "h1h4"},
        {rooks, "0-0", "e1g1"},
        {rooks, "O-O-O", ""},
        {pawns, "b8Q", "b7b8q"},
        {pawns, "b8=Q+", "b7b8q"},
        {pawns, "b8(N)", "b7b8n"},
        {pawns, "b8/R", "b7b8r"},
        {pawns, "b7b8b", "b7b8b"},
        {pawns, "b8", ""},
        {pawns, "b8=K", ""},
        {pawns, "b8=P", ""},
        {pawns, "b8(Q", ""},
        {pawns, "bxc8=N", "b7c8n"},
        {pawns, "bc8=q#!!", "b7c8q"},
        {pawns, "c8=Q", ""},
        {pawns, "d6", "d5d6"},
        {pawns, "Pd6", "d5d6"},
        {pawns, "dxd6", ""},
        {pawns, "d6=Q", ""},
        {pawns, "Bg6+", "e4g6"},
        {pawns, "bg6", ""},
        {both, "O-O", "e1g1"},
        {both, "0-0-0+", "e1c1"},
        {both, "o-o-o", "e1c1"},
        {both, "e1-g1", "e1g1"},
        {both, "O-O-O-O", ""},
        {both, "O-", ""},
        {both, "Kd2", "e1d2"},
        {both, "Rxa8+", "a1a8"},
        {both, "Rxa7", ""},
        {both, "e1", ""},
        {both, "", ""},
        {both, "+", ""},
        {both, "Q", ""},
        {both, "=Q", ""},
        {both, "i1i2", ""},
        {both, "a0", ""},
        {both, "Ra1a2a3", ""},
        {both, "\xFF\xFF", ""},
    };
    for (const auto& [position, text, expected] : cases) {
        const auto game = game_from(position);
        const std::vector<char> exact(text.begin(), text.end());  // a sanitizer sees a read past its end
        const auto move = read_san({exact.data(), exact.size()}, game.get());
        EXPECT_EQ(move ? move_text(*move) : "", expected) << text;
    }
    auto game = game_from(pawns);
    game->enpassant = bit_mask(square_from_text("c6"));
    game->ep_side = 0;
    for (const char* text : {"dxc6", "dc6", "dxc6 e.p.", "dxc6ep", "d5xc6e.p.!"}) {
        const auto move = read_san(text, game.get());
        EXPECT_TRUE(move && move->kind == kind_en_passant) << text;
    }
    EXPECT_FALSE(read_san("c6", game.get()));  // a capture names the pawn's file
}

}  // namespace
}  // namespace varn
