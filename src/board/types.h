// Basic types: squares, bitboards, sides, piece codes and piece values.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>

namespace varn {

/// A fixed-size array that can be indexed by any integer or enumeration. Bounds are asserted.
template <typename T, int N> struct Table {
    T slots[N];

    constexpr T& operator[](auto index) { return slots[checked(static_cast<std::ptrdiff_t>(index))]; }
    constexpr const T& operator[](auto index) const { return slots[checked(static_cast<std::ptrdiff_t>(index))]; }
    constexpr T* begin() { return slots; }
    constexpr T* end() { return slots + N; }
    constexpr const T* begin() const { return slots; }
    constexpr const T* end() const { return slots + N; }
    static constexpr int size() { return N; }
    friend constexpr bool operator==(const Table&, const Table&) = default;

private:
    static constexpr std::ptrdiff_t checked(std::ptrdiff_t index) {
        assert(index >= 0 && index < N);
        return index;
    }
};

/// Bit n is square n. Squares run along each rank from the h-file to the a-file: h1 = 0, a1 = 7, h8 = 56, a8 = 63. One
/// rank up is +8, one file towards the a-file is +1.
using Bitboard = std::uint64_t;

enum Square : std::int8_t {
    h1 = 0,
    g1 = 1,
    f1 = 2,
    e1 = 3,
    d1 = 4,
    c1 = 5,
    b1 = 6,
    a1 = 7,
    a8 = 63,
    b8 = 62,
    c8 = 61,
    d8 = 60,
    e8 = 59,
    f8 = 58,
    g8 = 57,
    h8 = 56,
};

inline constexpr int square_count = 64;

/// Square from rank and file, both counted from 1; file 1 is the h-file.
constexpr int square_of(int rank, int file) { return file + rank * 8 - 9; }
constexpr bool on_board(int rank, int file) { return rank >= 1 && rank <= 8 && file >= 1 && file <= 8; }
/// The square mirrored by rank: the file stays, rank n becomes 9 - n.
constexpr int mirrored(int square) { return square ^ 56; }

enum class Side : std::uint8_t { white, black };
constexpr Side other(Side side) { return side == Side::white ? Side::black : Side::white; }

/// A piece type, regardless of colour. A rook that can still castle has its wing in its type and keeps that type for
/// the whole game: moving or capturing it removes the right, if it still exists.
enum PieceType : std::int8_t { king, queen, bishop, knight, kingside_rook, queenside_rook, plain_rook, pawn };

/// Content of a square: -1 if empty, a `PieceType` for white, the same plus 8 for black.
using PieceCode = std::int8_t;
inline constexpr PieceCode no_piece = -1;
inline constexpr int piece_code_count = 16;

constexpr PieceCode code_of(Side side, PieceType type) {
    return static_cast<PieceCode>(type + (side == Side::black ? 8 : 0));
}
constexpr PieceType type_of(int code) { return static_cast<PieceType>(code & 7); }
/// The side of a piece; the code must not be `no_piece`.
constexpr Side side_of(int code) { return code < 8 ? Side::white : Side::black; }
/// Whether the code is a piece of this side; false for `no_piece`.
constexpr bool is_code_of(Side side, int code) { return code != no_piece && side_of(code) == side; }
constexpr bool is_rook(PieceType type) { return type == kingside_rook || type == queenside_rook || type == plain_rook; }
constexpr bool is_white_rook(int code) { return code >= 4 && code <= 6; }
constexpr bool is_black_rook(int code) { return code >= 12 && code <= 14; }
/// Whether two pieces are the same for notation and killers: all rook types of a colour are.
constexpr bool same_mover(int a, int b) {
    return a == b || (is_white_rook(a) && is_white_rook(b)) || (is_black_rook(a) && is_black_rook(b));
}

// Piece values in centipawns for material counts, exchange evaluation and move ordering, independent of the
// evaluation's weights.
inline constexpr int pawn_value = 100;
inline constexpr int knight_value = 300;
inline constexpr int bishop_value = 310;
inline constexpr int rook_value = 500;
inline constexpr int queen_value = 950;

/// By piece code, positive for both colours.
inline constexpr auto piece_values = [] {
    constexpr Table<std::int32_t, 8> by_type = {
        {0, queen_value, bishop_value, knight_value, rook_value, rook_value, rook_value, pawn_value}};
    Table<std::int32_t, piece_code_count> values{};
    for (int code = 0; code < piece_code_count; ++code) values[code] = by_type[type_of(code)];
    return values;
}();

/// By piece code, negative for black.
inline constexpr auto signed_piece_values = [] {
    auto values = piece_values;
    for (int code = 8; code < piece_code_count; ++code) values[code] = -values[code];
    return values;
}();

}  // namespace varn
