// A box of king-and-pawn positions: three sets of squares, standing for every combination of one square from each.
#pragma once

#include "board/bits.h"

namespace varn {

/// The pieces of a position.
enum Field : std::uint8_t { white_king_field, white_pawn_field, black_king_field };
inline constexpr int field_count = 3;

struct Pattern {
    Table<Bitboard, field_count> squares;  // by field
    friend constexpr bool operator==(const Pattern&, const Pattern&) = default;
};

}  // namespace varn
