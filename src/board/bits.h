// Helpers on a 64-bit board. They are the innermost operation of the engine: one instruction each, no table.
// Every bit loop has the form: copy the board, and while the copy isn't empty take `pop_first` of it.
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

/// The lowest square of a board that must not be empty.
constexpr int first_one(Bitboard board) {
    assert(board != 0);
    return std::countr_zero(board);
}

/// The lowest square of a board that must not be empty; it is cleared in the board given.
constexpr int pop_first(Bitboard& board) {
    const int square = first_one(board);
    board &= board - 1;
    return square;
}

/// The highest square of a board, -1 where it is empty.
constexpr int last_one(Bitboard board) { return 63 - std::countl_zero(board); }

constexpr int popcount(Bitboard board) { return std::popcount(board); }

/// Whether the board has at least `n` squares, for an `n` of 1 or more; false for any other `n`.
constexpr bool has_at_least(Bitboard board, int n) { return n >= 1 && popcount(board) >= n; }

}  // namespace varn
