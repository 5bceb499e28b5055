// Constant tables of the evaluation: piece-square values, passed pawn bonuses and geometric masks.
//
// Square values are in centipawns from the piece's own point of view. They are laid out as white sees the board, rank 8
// on top and the a-file on the left; black's tables are mirrored by rank.
#pragma once

#include "board/geometry.h"

namespace varn {

using SquareValues = PerSquare<std::int8_t>;

/// The table of side S from a board laid out as white sees it.
template <Side S> constexpr SquareValues seen_by(const SquareValues& board) {
    SquareValues values{};
    for (int i = 0; i < square_count; ++i) values[own_square<S>(a8 - i)] = board[i];
    return values;
}

template <Side S>
inline constexpr SquareValues bishop_squares = seen_by<S>({{
    -5,  -10, -10, -10, -10, -10, -10, -5,   //
    -10, 5,   0,   0,   0,   0,   5,   -10,  //
    -10, 0,   5,   5,   5,   5,   0,   -10,  //
    -10, 0,   5,   10,  10,  5,   0,   -10,  //
    -10, 0,   5,   10,  10,  5,   0,   -10,  //
    -10, 0,   5,   5,   5,   5,   0,   -10,  //
    -10, 5,   0,   0,   0,   0,   5,   -10,  //
    -5,  -10, -10, -10, -10, -10, -10, -5,   //
}});

template <Side S>
inline constexpr SquareValues knight_squares = seen_by<S>({{
    -10, -10, -10, -10, -10, -10, -10, -10,  //
    -10, 0,   0,   0,   0,   0,   0,   -10,  //
    -10, 0,   5,   5,   5,   5,   0,   -10,  //
    -10, 0,   5,   10,  10,  5,   0,   -10,  //
    -10, 0,   5,   10,  10,  5,   0,   -10,  //
    -10, 0,   5,   5,   5,   5,   0,   -10,  //
    -10, 0,   0,   0,   0,   0,   0,   -10,  //
    -10, -10, -10, -10, -10, -10, -10, -10,  //
}});

template <Side S>
inline constexpr SquareValues rook_squares = seen_by<S>({{
    0, 0, 4, 6, 6, 4, 0, 0,  //
    0, 0, 4, 6, 6, 4, 0, 0,  //
    0, 0, 4, 6, 6, 4, 0, 0,  //
    0, 0, 4, 6, 6, 4, 0, 0,  //
    0, 0, 4, 6, 6, 4, 0, 0,  //
    0, 0, 4, 6, 6, 4, 0, 0,  //
    0, 0, 4, 6, 6, 4, 0, 0,  //
    0, 0, 4, 6, 6, 4, 0, 0,  //
}});

/// In half centipawns.
template <Side S>
inline constexpr SquareValues pawn_squares = seen_by<S>({{
    0, 0,  0,  0,   0,   0,  0,  0,  //
    5, 10, 15, 20,  20,  15, 10, 5,  //
    4, 8,  12, 16,  16,  12, 8,  4,  //
    3, 6,  9,  12,  12,  9,  6,  3,  //
    2, 4,  6,  8,   8,   6,  4,  2,  //
    1, 2,  3,  -10, -10, 3,  2,  1,  //
    0, 0,  0,  -40, -40, 0,  0,  0,  //
    0, 0,  0,  0,   0,   0,  0,  0,  //
}});

/// Middlegame: behind the pawns, on a wing.
template <Side S>
inline constexpr SquareValues king_squares_game = seen_by<S>({{
    -40, -40, -40, -40, -40, -40, -40, -40,  //
    -40, -40, -40, -40, -40, -40, -40, -40,  //
    -40, -40, -40, -40, -40, -40, -40, -40,  //
    -40, -40, -40, -40, -40, -40, -40, -40,  //
    -40, -40, -40, -40, -40, -40, -40, -40,  //
    -40, -40, -40, -40, -40, -40, -40, -40,  //
    -20, -20, -20, -20, -20, -20, -20, -20,  //
    0,   20,  10,  -20, 0,   -20, 20,  10,   //
}});

/// Endgame: in the centre.
template <Side S>
inline constexpr SquareValues king_squares_end = seen_by<S>({{
    0,  10, 20, 30, 30, 20, 10, 0,   //
    10, 20, 30, 40, 40, 30, 20, 10,  //
    20, 30, 40, 50, 50, 40, 30, 20,  //
    30, 40, 50, 60, 60, 50, 40, 30,  //
    30, 40, 50, 60, 60, 50, 40, 30,  //
    20, 30, 40, 50, 50, 40, 30, 20,  //
    10, 20, 30, 40, 40, 30, 20, 10,  //
    0,  10, 20, 30, 30, 20, 10, 0,   //
}});

/// Bonus by square, in addition to the bonus of every passed pawn.
template <Side S>
inline constexpr SquareValues passed_pawn_bonus = seen_by<S>({{
    0,   0,   0,   0,   0,   0,   0,   0,    //
    120, 126, 126, 126, 126, 126, 126, 120,  //
    46,  60,  60,  60,  60,  60,  60,  46,   //
    16,  24,  24,  24,  24,  24,  24,  16,   //
    8,   10,  10,  10,  10,  10,  10,  8,    //
    6,   8,   8,   8,   8,   8,   8,   6,    //
    3,   6,   6,   6,   6,   6,   6,   3,    //
    0,   0,   0,   0,   0,   0,   0,   0,    //
}});

// --- Geometry -----------------------------------------------------------------------------------------------------

/// Squares named from white's point of view, mirrored for black.
template <Side S> constexpr Bitboard own_squares(auto... squares) { return (bit_mask(own_square<S>(squares)) | ...); }

/// Number of king moves between two squares on an empty board.
inline constexpr auto square_distance = [] {
    PerSquare<PerSquare<std::uint8_t>> distance{};
    for (int a = 0; a < square_count; ++a) {
        for (int b = 0; b < square_count; ++b) {
            const int ranks = rank_of(a) > rank_of(b) ? rank_of(a) - rank_of(b) : rank_of(b) - rank_of(a);
            const int files = file_of(a) > file_of(b) ? file_of(a) - file_of(b) : file_of(b) - file_of(a);
            distance[a][b] = static_cast<std::uint8_t>(ranks > files ? ranks : files);
        }
    }
    return distance;
}();

/// All squares on the ranks below and above a square.
inline constexpr auto ranks_below =
    per_square<Bitboard>([](int sq) { return bit_mask(square_of(rank_of(sq), 1)) - 1; });
inline constexpr auto ranks_above =
    per_square<Bitboard>([](int sq) { return ~(ranks_below[sq] | rank_masks[rank_of(sq)]); });
template <Side S> constexpr Bitboard ranks_ahead(int square) { return choose<S>(ranks_above, ranks_below)[square]; }
template <Side S> constexpr Bitboard ranks_behind(int square) { return ranks_ahead<other(S)>(square); }

/// Adjacent files by file number 1 to 8; slot 0 is empty.
inline constexpr auto adjacent_files = [] {
    Table<Bitboard, 9> files{};
    for (int file = 1; file <= 8; ++file) files[file] = file_masks[file - 1] | (file < 8 ? file_masks[file + 1] : 0);
    return files;
}();

/// The files with at least one bit set, as a byte: bit n is file n + 1.
constexpr std::uint8_t files_of(Bitboard board) {
    board |= board >> 32;
    board |= board >> 16;
    board |= board >> 8;
    return static_cast<std::uint8_t>(board);
}
/// All squares of these files.
constexpr Bitboard whole_files(std::uint8_t files) { return files * file_masks[1]; }

/// The 5 by 5 block around a king, without its own square.
inline constexpr auto king_zone = per_square<Bitboard>([](int sq) {
    Bitboard zone = 0;
    for (int target = 0; target < square_count; ++target) {
        if (target != sq && square_distance[sq][target] <= 2) zone |= bit_mask(target);
    }
    return zone;
});

/// The squares around a king of side S, and the three squares two ranks ahead of it.
template <Side S> constexpr Bitboard king_region(int square) {
    const int two_ahead = 2 * sign_of<S>;
    return king_moves[square] | step(square, two_ahead, -1) | step(square, two_ahead, 0) | step(square, two_ahead, 1);
}
inline constexpr auto w_king_region = per_square<Bitboard>(king_region<Side::white>);
inline constexpr auto b_king_region = per_square<Bitboard>(king_region<Side::black>);

}  // namespace varn
