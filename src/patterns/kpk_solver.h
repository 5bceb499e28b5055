// Solver for king and pawn against king; used by the offline tools only.
#pragma once

#include <bitset>
#include <memory>

#include "patterns/kpk_placements.h"

namespace varn {

/// Positions won by white, by `kpk_index`, for either side to move. Impossible placements count as not won.
struct KpkWins {
    static constexpr int size = square_count * square_count * square_count;
    std::bitset<size> white_to_move;
    std::bitset<size> black_to_move;
};

constexpr std::size_t kpk_index(Placement placement) {
    constexpr std::size_t squares = square_count;
    return (placement.white_king * squares + placement.pawn) * squares + placement.black_king;
}

/// All other positions are draws. A promotion wins if the new queen or rook can't be captured at once and black isn't
/// stalemated; losing the pawn and stalemate are draws.
std::unique_ptr<KpkWins> solve_kpk();

}  // namespace varn
