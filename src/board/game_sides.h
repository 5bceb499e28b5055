// Access to a game's fields by side.
#pragma once

#include "board/game.h"
#include "board/side.h"

namespace varn {

// References, const if the game is.
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
inline constexpr Table<Bitboard Game::*, 8> boards_by_type =
    S == Side::white ? Table<Bitboard Game::*, 8>{{&Game::w_king, &Game::w_queens, &Game::w_bishops, &Game::w_knights,
                                                   &Game::w_rooks, &Game::w_rooks, &Game::w_rooks, &Game::w_pawns}}
                     : Table<Bitboard Game::*, 8>{{&Game::b_king, &Game::b_queens, &Game::b_bishops, &Game::b_knights,
                                                   &Game::b_rooks, &Game::b_rooks, &Game::b_rooks, &Game::b_pawns}};

/// The board of one piece type; the three rook types share one.
template <Side S> constexpr auto& board_of(auto& g, PieceType type) {
    const auto board = boards_by_type<S>[type];
    return g.*board;
}

/// Material balance for the side to move.
constexpr std::int32_t balance_for_side_to_move(const Game& g) {
    return g.turn == Side::white ? g.material : -g.material;
}

}  // namespace varn
