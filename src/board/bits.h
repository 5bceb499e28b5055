// Bitboard helpers, one instruction each. Loops over a bitboard copy it and call `pop_first` until the copy is empty.
#pragma once

#include <bit>
#include <cassert>

#include "board/types.h"

namespace varn {

constexpr Bitboard bit_mask(int square) {
    assert(square >= 0 && square < square_count);
    return Bitboard{1} << square;
}
constexpr Bitboard not_bit(int square) { return ~bit_mask(square); }

/// The lowest set square; the board must not be empty.
constexpr int first_one(Bitboard board) {
    assert(board != 0);
    return std::countr_zero(board);
}

/// Removes and returns the lowest set square; the board must not be empty.
constexpr int pop_first(Bitboard& board) {
    const int square = first_one(board);
    board &= board - 1;
    return square;
}

/// The highest set square, or -1 if the board is empty.
constexpr int last_one(Bitboard board) { return 63 - std::countl_zero(board); }

constexpr int popcount(Bitboard board) { return std::popcount(board); }

/// Whether at least `n` bits are set; false if `n` is less than 1.
constexpr bool has_at_least(Bitboard board, int n) { return n >= 1 && popcount(board) >= n; }

}  // namespace varn
