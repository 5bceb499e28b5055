// Mapping from a side to its codes, ranks, squares and directions, for rules written as templates on the side. The
// fields of a game by side are in game_sides.h.
#pragma once

#include "board/types.h"

namespace varn {

template <Side S, typename White, typename Black> constexpr auto& choose(White& white, Black& black) {
    if constexpr (S == Side::white) {
        return white;
    } else {
        return black;
    }
}

/// +1 for white, -1 for black.
template <Side S> inline constexpr int sign_of = S == Side::white ? 1 : -1;
/// One step forward, as a difference of square numbers.
template <Side S> inline constexpr int up = S == Side::white ? 8 : -8;
/// A rank as the side counts it: 1 is its own first rank.
template <Side S> constexpr int own_rank(int rank) { return S == Side::white ? rank : 9 - rank; }
/// A square named from white's point of view, mirrored for black.
template <Side S> constexpr int own_square(int square) { return S == Side::white ? square : mirrored(square); }
template <Side S> constexpr Bitboard ahead(Bitboard board) { return S == Side::white ? board << 8 : board >> 8; }
template <Side S> constexpr Bitboard behind(Bitboard board) { return ahead<other(S)>(board); }

}  // namespace varn
