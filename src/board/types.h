// The vocabulary of the whole engine: squares, bitboards, sides, piece codes and what the pieces are worth.
// Everything here is a plain value; nothing here knows a position.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>

namespace varn {

/// A fixed array, indexed by whatever integer or enumeration the engine counts with. Plain data: copied and compared as
/// a whole.
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

/// Bit n stands for square n. Squares run along each rank from the h-file to the a-file: h1 = 0, a1 = 7, h8 = 56,
/// a8 = 63. One step up the board is +8, one step towards the a-file is +1.
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

/// Number of a square from rank and file, both counted from 1; file 1 is the h-file.
constexpr int square_of(int rank, int file) { return file + rank * 8 - 9; }
constexpr bool on_board(int rank, int file) { return rank >= 1 && rank <= 8 && file >= 1 && file <= 8; }
/// The same square seen from the other side of the board: the file stays, rank n becomes 9 - n.
constexpr int mirrored(int square) { return square ^ 56; }

enum class Side : std::uint8_t { white, black };
constexpr Side other(Side side) { return side == Side::white ? Side::black : Side::white; }

/// A piece or pawn as its own side sees it. A rook that can still castle carries its wing in its kind, and keeps that
/// kind for life: moving or capturing it costs the right, if the right still stands.
enum Man : std::int8_t { king, queen, bishop, knight, kingside_rook, queenside_rook, plain_rook, pawn };

/// What stands on a square: -1 for nothing, a `Man` for white, the same plus 8 for black.
using PieceCode = std::int8_t;
inline constexpr PieceCode no_piece = -1;
inline constexpr int piece_code_count = 16;

constexpr PieceCode code_of(Side side, Man man) { return static_cast<PieceCode>(man + (side == Side::black ? 8 : 0)); }
constexpr Man man_of(int code) { return static_cast<Man>(code & 7); }
/// The owner of the piece that the code names, which must not be `no_piece`.
constexpr Side side_of(int code) { return code < 8 ? Side::white : Side::black; }
/// Whether the code names a piece of this side; an empty square's doesn't.
constexpr bool is_code_of(Side side, int code) { return code != no_piece && side_of(code) == side; }
constexpr bool is_rook(Man man) { return man == kingside_rook || man == queenside_rook || man == plain_rook; }
constexpr bool is_white_rook(int code) { return code >= 4 && code <= 6; }
constexpr bool is_black_rook(int code) { return code >= 12 && code <= 14; }
/// Equal codes, or two rooks of one colour whatever their castling past.
constexpr bool same_mover(int a, int b) {
    return a == b || (is_white_rook(a) && is_white_rook(b)) || (is_black_rook(a) && is_black_rook(b));
}

// Values of the pieces in centipawns, shared by the material counts, the exchange evaluator and the move ordering. They
// are independent of the evaluation's weights.
inline constexpr int pawn_value = 100;
inline constexpr int knight_value = 300;
inline constexpr int bishop_value = 310;
inline constexpr int rook_value = 500;
inline constexpr int queen_value = 950;

/// By piece code, positive for both colours.
inline constexpr auto piece_values = [] {
    constexpr Table<std::int32_t, 8> by_man = {
        {0, queen_value, bishop_value, knight_value, rook_value, rook_value, rook_value, pawn_value}};
    Table<std::int32_t, piece_code_count> values{};
    for (int code = 0; code < piece_code_count; ++code) values[code] = by_man[man_of(code)];
    return values;
}();

/// By piece code, positive for white pieces and negative for black ones.
inline constexpr auto signed_piece_values = [] {
    auto values = piece_values;
    for (int code = 8; code < piece_code_count; ++code) values[code] = -values[code];
    return values;
}();

}  // namespace varn
