// Principal variation search: recursive alpha-beta, the node of every ply above quiescence.
#pragma once

#include <optional>

#include "search/record.h"

namespace varn {

/// Passed by value, so that the counters need no undo.
struct SearchFrame {
    std::int32_t ply;       // index of all per-ply arrays
    std::uint8_t line_ply;  // real moves from the root: for mate scores, killers and the PV
    std::uint8_t pawn_extensions;
    std::uint8_t total_extensions;
};
static_assert(sizeof(SearchFrame) == 8);  // fits one register

inline constexpr SearchFrame root_frame = {0, 0, 0, 0};

/// The score for the side to move, or `abort_score` if the clock stopped the search. Fills `pv` with the principal
/// variation. The game is unchanged on return. The tables must be allocated.
int search(Search& s, Game& game, int alpha, int beta, int depth, SearchFrame frame, PvLine& pv);

/// The first move to try at a node: the transposition table's move from an entry at most one ply too shallow, or else
/// internal iterative deepening at sufficient depth with an open window.
std::optional<Move> first_move(Search& s, Game& game, int ply, int alpha, int beta, int depth);

}  // namespace varn
