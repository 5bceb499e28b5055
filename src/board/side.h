// All mapping from a side to its fields, codes, ranks and directions. A rule is written once, as a template on the
// side, and reads its fields through the names here.
#pragma once

#include "board/game.h"

namespace varn {

template <Side S, typename White, typename Black> constexpr auto& choose(White& white, Black& black) {
    if constexpr (S == Side::white) {
        return white;
    } else {
        return black;
    }
}

// Fields of a game by side; references, const where the game is.
template <Side S> constexpr auto& pieces_of(auto& g) { return choose<S>(g.w_pieces, g.b_pieces); }
template <Side S> constexpr auto& pawns_of(auto& g) { return choose<S>(g.w_pawns, g.b_pawns); }
template <Side S> constexpr auto& knights_of(auto& g) { return choose<S>(g.w_knights, g.b_knights); }
template <Side S> constexpr auto& bishops_of(auto& g) { return choose<S>(g.w_bishops, g.b_bishops); }
template <Side S> constexpr auto& rooks_of(auto& g) { return choose<S>(g.w_rooks, g.b_rooks); }
template <Side S> constexpr auto& queens_of(auto& g) { return choose<S>(g.w_queens, g.b_queens); }
template <Side S> constexpr auto& king_of(auto& g) { return choose<S>(g.w_king, g.b_king); }
template <Side S> constexpr auto& king_square_of(auto& g) { return choose<S>(g.wking_sqr, g.bking_sqr); }
template <Side S> constexpr auto& castle_of(auto& g) { return choose<S>(g.w_castle, g.b_castle); }
template <Side S> constexpr auto& material_of(auto& g) { return choose<S>(g.w_material, g.b_material); }

template <Side S>
inline constexpr Table<Bitboard Game::*, 8> boards_by_man =
    S == Side::white ? Table<Bitboard Game::*, 8>{{&Game::w_king, &Game::w_queens, &Game::w_bishops, &Game::w_knights,
                                                   &Game::w_rooks, &Game::w_rooks, &Game::w_rooks, &Game::w_pawns}}
                     : Table<Bitboard Game::*, 8>{{&Game::b_king, &Game::b_queens, &Game::b_bishops, &Game::b_knights,
                                                   &Game::b_rooks, &Game::b_rooks, &Game::b_rooks, &Game::b_pawns}};

/// The board of one kind of man; all three kinds of rook share one.
template <Side S> constexpr auto& board_of(auto& g, Man man) {
    const auto board = boards_by_man<S>[man];
    return g.*board;
}

template <Side S> inline constexpr std::uint8_t turn_of = S == Side::white ? 0 : 1;
/// +1 for white, -1 for black: turns a side's own gain into white's point of view.
template <Side S> inline constexpr int sign_of = S == Side::white ? 1 : -1;
/// One step towards the enemy, as a difference of square numbers.
template <Side S> inline constexpr int up = S == Side::white ? 8 : -8;
/// A rank of the board by its number as the side counts it: 1 is its own first rank.
template <Side S> constexpr int own_rank(int rank) { return S == Side::white ? rank : 9 - rank; }
/// A square named from white's point of view, at the same place for the side.
template <Side S> constexpr int own_square(int square) { return S == Side::white ? square : mirrored(square); }
template <Side S> constexpr Bitboard ahead(Bitboard board) { return S == Side::white ? board << 8 : board >> 8; }
template <Side S> constexpr Bitboard behind(Bitboard board) { return ahead<other(S)>(board); }

}  // namespace varn
