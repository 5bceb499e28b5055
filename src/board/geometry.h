// Board geometry as compile-time tables: ranks, files and diagonals, rotated bit orders, slider attacks along a line,
// knight, king and pawn attacks, directions and rays.
//
// r and f are rank and file counted from 0 in this file; f grows from the h-file, so west is +1 and north is +8.
#pragma once

#include "board/bits.h"
#include "board/side.h"

namespace varn {

template <typename T> using PerSquare = Table<T, square_count>;

/// Ranks and files are numbered from 1; file 1 is the h-file.
constexpr int rank_of(int square) { return (square >> 3) + 1; }
constexpr int file_of(int square) { return (square & 7) + 1; }

/// By rank number 1 to 8; slot 0 is empty.
inline constexpr auto rank_masks = [] {
    Table<Bitboard, 9> masks{};
    for (int rank = 1; rank <= 8; ++rank) masks[rank] = Bitboard{0xFF} << (8 * (rank - 1));
    return masks;
}();

/// By file number 1 to 8; slot 0 is empty.
inline constexpr auto file_masks = [] {
    Table<Bitboard, 9> masks{};
    for (int file = 1; file <= 8; ++file) masks[file] = Bitboard{0x0101010101010101} << (file - 1);
    return masks;
}();

/// A rank as the side counts it.
template <Side S> constexpr Bitboard own_rank_mask(int rank) { return rank_masks[own_rank<S>(rank)]; }

// --- Rotated bit orders -------------------------------------------------------------------------------------------
// The bit of each square on the three rotated boards. The squares of a line are adjacent bits: files on r90, diagonals
// parallel to a1-h8 on r45f, diagonals parallel to h1-a8 on r45b. No diagonal wraps past bit 63.

template <typename T, typename Builder> constexpr PerSquare<T> per_square(Builder build) {
    PerSquare<T> table{};
    for (int square = 0; square < square_count; ++square) table[square] = static_cast<T>(build(square));
    return table;
}

inline constexpr auto r90_map = per_square<std::uint8_t>([](int sq) { return 8 * (7 - sq % 8) + sq / 8; });
inline constexpr auto r45f_map =
    per_square<std::uint8_t>([](int sq) { return (127 - 8 * (sq / 8) - 9 * (sq % 8)) & 63; });
inline constexpr auto r45b_map =
    per_square<std::uint8_t>([](int sq) { return (63 - 8 * (sq / 8) + 7 * (sq % 8)) & 63; });

/// Converts a plain board to a rotated bit order.
constexpr Bitboard rotate(Bitboard board, const PerSquare<std::uint8_t>& map) {
    Bitboard rotated = 0;
    while (board != 0) rotated |= bit_mask(map[pop_first(board)]);
    return rotated;
}
constexpr Bitboard rotate_90(Bitboard board) { return rotate(board, r90_map); }
constexpr Bitboard rotate_45f(Bitboard board) { return rotate(board, r45f_map); }
constexpr Bitboard rotate_45b(Bitboard board) { return rotate(board, r45b_map); }

/// How to extract a square's line from its board: shift, then mask. Only inner squares are kept, because the end
/// squares don't affect slider attacks. All squares of a line share this.
struct LineIndex {
    std::uint8_t shift;
    std::uint8_t mask;
};
extern const PerSquare<LineIndex> rank_line, file_line, r45f_line, r45b_line;

/// Slider attacks along one line, in both directions, up to and including the first piece: by square and line index.
using LineAttacks = PerSquare<PerSquare<Bitboard>>;
extern const LineAttacks rank_attacks, file_attacks, r45f_attacks, r45b_attacks;

// --- Steps --------------------------------------------------------------------------------------------------------

/// The square at an offset in ranks and files, as a board; empty if off the board.
constexpr Bitboard step(int square, int ranks, int files) {
    const int rank = rank_of(square) + ranks;
    const int file = file_of(square) + files;
    return on_board(rank, file) ? bit_mask(square_of(rank, file)) : 0;
}

inline constexpr auto knight_moves = per_square<Bitboard>([](int sq) {
    return step(sq, 1, 2) | step(sq, 1, -2) | step(sq, -1, 2) | step(sq, -1, -2) | step(sq, 2, 1) | step(sq, 2, -1) |
           step(sq, -2, 1) | step(sq, -2, -1);
});

inline constexpr auto king_moves = per_square<Bitboard>([](int sq) {
    return step(sq, 1, 1) | step(sq, 1, 0) | step(sq, 1, -1) | step(sq, 0, 1) | step(sq, 0, -1) | step(sq, -1, 1) |
           step(sq, -1, 0) | step(sq, -1, -1);
});

/// Squares attacked by a pawn of the side. Equally, `pawn_attacks<S>[sq]` are the squares from which an enemy pawn
/// attacks `sq`.
template <Side S>
inline constexpr auto pawn_attacks = per_square<Bitboard>([](int sq) {
    return step(sq, sign_of<S>, -1) | step(sq, sign_of<S>, 1);
});

/// Squares that must be empty for castling.
template <Side S> inline constexpr Bitboard kingside_path = bit_mask(own_square<S>(g1)) | bit_mask(own_square<S>(f1));
template <Side S>
inline constexpr Bitboard queenside_path = bit_mask(own_square<S>(d1)) | bit_mask(own_square<S>(c1)) |
                                           bit_mask(own_square<S>(b1));

// --- Directions and rays ------------------------------------------------------------------------------------------

enum Direction : std::uint8_t {
    no_direction,
    north,
    south,
    west,
    east,
    north_west,
    north_east,
    south_west,
    south_east
};
inline constexpr int direction_count = 9;

constexpr bool is_diagonal(Direction direction) { return direction >= north_west; }
/// Whether square numbers increase in that direction.
constexpr bool leads_up(Direction direction) {
    return direction == north || direction == west || direction == north_west || direction == north_east;
}

/// The direction from a to b: `direction_table[a][b]`; `no_direction` if they are equal or share no line.
extern const PerSquare<PerSquare<Direction>> direction_table;

/// Squares from a square to the edge in a direction, without itself: `rays[direction][square]`.
extern const Table<PerSquare<Bitboard>, direction_count> rays;

/// The rank and file, or the two diagonals, of a square, without itself.
extern const PerSquare<Bitboard> straight_lines, diagonal_lines;

}  // namespace varn
