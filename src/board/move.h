// Moves and lists of moves. Nothing here knows a position.
#pragma once

#include "board/types.h"

namespace varn {

/// One move. The absence of a move is an empty `std::optional`, never a value of the record. Aligned, so that it is
/// loaded and stored as one word.
struct alignas(4) Move {
    std::uint8_t from;
    std::uint8_t to;
    std::uint8_t kind;

    friend constexpr bool operator==(const Move&, const Move&) = default;
};
static_assert(sizeof(Move) == 4);

// Kinds of a move. A promotion's kind is the code of the new piece, also where it captures.
inline constexpr std::uint8_t kind_quiet = 0;
inline constexpr std::uint8_t kind_double_step = 0x11;
inline constexpr std::uint8_t kind_en_passant = 0x12;
inline constexpr std::uint8_t kind_capture = 0x20;
inline constexpr std::uint8_t kind_kingside_castling = 0x41;
inline constexpr std::uint8_t kind_queenside_castling = 0x42;
/// Fits no move that a generator makes.
inline constexpr std::uint8_t kind_invalid = 0xFF;

constexpr bool is_castling(int kind) { return kind > 0x40; }
constexpr bool is_promotion(int kind) {
    const int man = kind & 7;
    return kind <= 14 && (man == queen || man == bishop || man == knight || man == plain_rook);
}

/// Fixed-capacity list that all generators fill. `scores` belongs to whoever orders the moves.
struct MoveList {
    static constexpr int capacity = 1000;
    std::int32_t count;
    Table<Move, capacity> moves;  // beside the count: a short list takes few lines of the cache
    Table<std::int32_t, capacity> scores;

    const Move* begin() const { return moves.begin(); }
    const Move* end() const { return moves.begin() + count; }
};

}  // namespace varn
