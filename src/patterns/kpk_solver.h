// King and pawn against king, solved: which positions white wins. A matter of the offline tools; play doesn't use it.
#pragma once

#include <bitset>
#include <memory>

#include "patterns/kpk_placements.h"

namespace varn {

/// The positions that white wins, by `kpk_index`, for either side to move. What can't arise counts as not won.
struct KpkWins {
    static constexpr int size = square_count * square_count * square_count;
    std::bitset<size> white_to_move;
    std::bitset<size> black_to_move;
};

constexpr std::size_t kpk_index(Placement placement) {
    constexpr std::size_t squares = square_count;
    return (placement.white_king * squares + placement.pawn) * squares + placement.black_king;
}

/// Every position not won is a draw. A promotion wins if the new queen or rook can't be taken at once and black isn't
/// stalemated; a lost pawn and a stalemate are draws.
std::unique_ptr<KpkWins> solve_kpk();

}  // namespace varn
