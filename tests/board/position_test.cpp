// Positions as text: round trips, malformed input, and the consistency check.
#include <gtest/gtest.h>

#include <tuple>

#include "board/position.h"
#include "positions.h"

namespace varn {
namespace {

/// The remarks on a text, one letter each.
std::string letters(const PositionRemarks& remarks) {
    return std::string(remarks.foreign_piece ? "p" : "") + (remarks.foreign_side ? "s" : "") +
           (remarks.foreign_enpassant ? "e" : "");
}

/// Read from a buffer of exactly its size, so that sanitizers catch reads past the end.
std::string remarks_on(Game& game, std::string_view text) {
    std::vector<char> exact(text.begin(), text.end());
    exact.shrink_to_fit();
    return letters(set_position(game, {exact.data(), exact.size()}));
}

TEST(PositionText, RoundTrips) {
    visit_random_games(9, 100, [](const Game& game) {
        const std::string text = position_text(game);
        const auto read = std::make_unique<Game>();
        EXPECT_EQ(letters(set_position(*read, text)), game.enpassant == 0 ? "" : "e");
        read->enpassant = game.enpassant;
        EXPECT_EQ(position_text(*read), text);
        EXPECT_TRUE(is_consistent(*read));
        EXPECT_EQ(read->fifty + read->move_counter, 0);
        EXPECT_EQ(read->draw_hash_count, 1U);
        EXPECT_EQ(read->draw_hash[0], keys_of(*read));
    });
}

TEST(PositionText, ReadsMalformedText) {
    constexpr std::string_view all = "r3k2r/8/8/8/8/8/8/R3K2R ", few = "4k3/8/8/8/8/8/8/4K2R ";
    constexpr std::tuple<std::string_view, std::string_view, std::string_view, std::string_view> cases[] = {
        // board, rest of the text, text written again, remarks
        {all, "b qQkK - 12 34 bm Kd2;", "b KQkq -", ""},
        {all, "w KQ-k -", "w k -", ""},
        {all, "white HAx!KK -", "w Q -", ""},  // letters are added up as values
        {all, "w KKKkQkqk -", "w Kk -", ""},
        {all, "w QqqQKq -", "w Kq -", ""},
        {all, "w KQkqKQk-kk -", "w q -", ""},
        {few, "w KK -", "w - -", ""},
        {few, "w KKK -", "w K -", ""},
        {few, "w KQkq -", "w K -", ""},                       // no right without a rook
        {"4k2R/8/8/8/8/8/8/r3K3 ", "w KQkq -", "w - -", ""},  // nor with an enemy rook
        {few, "x K -", "b K -", "s"},                         // the turn is unchanged
        {few, " -K -", "b - -", "s"},  // an empty side field makes the castling field empty as well
        {few, "w K e3", "w K -", "e"},
        {few, "", "b - -", "s"},
        {few, "w\nK -", "w - -", ""},
    };
    for (const auto& [board, rest, expected, said] : cases) {
        const std::string text = std::string(board) + std::string(rest);
        auto game = game_from("4k3/8/8/8/8/8/8/4K3 b - -");
        EXPECT_EQ(remarks_on(*game, text), said) << text;
        EXPECT_EQ(position_text(*game), std::string(board) + std::string(expected)) << text;
        EXPECT_TRUE(is_consistent(*game)) << text;
        // Exactly the rooks of existing rights can lose them.
        constexpr std::tuple<int, PieceType, std::uint32_t Game::*, std::uint32_t> corners[] = {
            {h1, kingside_rook, &Game::w_castle, kingside_right},
            {a1, queenside_rook, &Game::w_castle, queenside_right},
            {h8, kingside_rook, &Game::b_castle, kingside_right},
            {a8, queenside_rook, &Game::b_castle, queenside_right},
        };
        for (const auto& [corner, rook, rights, right] : corners) {
            const int code = game->cells[corner];
            if (code == no_piece) continue;
            EXPECT_EQ(type_of(code), ((*game).*rights & right) != 0 ? rook : plain_rook) << text << corner;
        }
    }
    EXPECT_EQ(position_text(*game_from("4k384K2R99999 w - -")), "4k3/8/4K2R/8/8/8/8/8 w - -");
    for (const char* text :
         {"rnbqkbnX/8/8/8/8/8/8/8 w - -", "8/8/8 w - -", "8/8/8/8/8/8/8/7", "8/8\n8/8", "", "\xFF"}) {
        EXPECT_EQ(remarks_on(*new_game(), text), "p") << text;
    }
}

TEST(PositionText, KeysDependOnTheBoardFieldAndThePreviousTurnOnly) {
    visit_random_games(10, 40, [](const Game& game) {
        for (const Side before : {Side::white, Side::black}) {
            const auto read = new_game(), as_read = game_from(position_text(game));
            read->turn = before;
            set_position(*read, position_text(game));
            as_read->turn = before;
            for (auto& cell : as_read->cells) {
                if (cell != no_piece && is_rook(type_of(cell))) cell = code_of(side_of(cell), plain_rook);
            }
            EXPECT_EQ(keys_of(*read), position_keys(*as_read));
            EXPECT_EQ((PositionKeys{read->pawn_key, read->pawn_lock}), pawn_keys(*as_read));
            EXPECT_EQ(read->draw_hash[0], keys_of(*read));
        }
    });
}

TEST(Soundness, DetectsAnyWrongBitOrCell) {
    const auto sound = game_from(known_positions[3].text), game = std::make_unique<Game>(*sound);
    for (int square = 0; square < square_count; ++square) {
        for (const auto board : {&Game::w_pieces, &Game::w_king, &Game::w_queens, &Game::w_rooks, &Game::w_bishops,
                                 &Game::w_knights, &Game::w_pawns, &Game::b_pieces, &Game::b_queens, &Game::b_pawns}) {
            (*game).*board ^= bit_mask(square);
            EXPECT_FALSE(is_consistent(*game)) << square;
            (*game).*board ^= bit_mask(square);
        }
        for (int code = no_piece; code < piece_code_count; ++code) {
            game->cells[square] = static_cast<PieceCode>(code);
            EXPECT_EQ(is_consistent(*game), same_mover(code, sound->cells[square])) << square << ' ' << code;
        }
        game->cells[square] = sound->cells[square];
    }
    ++game->wking_sqr;
    EXPECT_FALSE(is_consistent(*game));
}

}  // namespace
}  // namespace varn
