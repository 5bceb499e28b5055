// Moves and move lists.
#pragma once

#include "board/types.h"

namespace varn {

/// A move. "No move" is an empty `std::optional`, never a special value.
struct alignas(4) Move {
    std::uint8_t from;
    std::uint8_t to;
    std::uint8_t kind;

    friend constexpr bool operator==(const Move&, const Move&) = default;
};
static_assert(sizeof(Move) == 4);

// Move kinds. The kind of a promotion is the code of the new piece, also for captures.
inline constexpr std::uint8_t kind_quiet = 0;
inline constexpr std::uint8_t kind_double_step = 0x11;
inline constexpr std::uint8_t kind_en_passant = 0x12;
inline constexpr std::uint8_t kind_capture = 0x20;
inline constexpr std::uint8_t kind_kingside_castling = 0x41;
inline constexpr std::uint8_t kind_queenside_castling = 0x42;
/// Never generated.
inline constexpr std::uint8_t kind_invalid = 0xFF;

constexpr bool is_castling(int kind) { return kind > 0x40; }
constexpr bool is_promotion(int kind) {
    const int type = kind & 7;
    return kind <= 14 && (type == queen || type == bishop || type == knight || type == plain_rook);
}

/// Fixed-capacity move list, filled by the generators. `scores` is set by move ordering.
struct MoveList {
    static constexpr int capacity = 1000;
    std::int32_t count;
    Table<Move, capacity> moves;  // beside the count: a short list takes few lines of the cache
    Table<std::int32_t, capacity> scores;

    const Move* begin() const { return moves.begin(); }
    const Move* end() const { return moves.begin() + count; }
};

}  // namespace varn
