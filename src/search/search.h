// The search node: recursive principal-variation alpha-beta, through which every interior position of the tree passes.
#pragma once

#include <optional>

#include "search/record.h"

namespace varn {

/// Passed by value from node to node, so that a child's counters need no undo.
struct SearchFrame {
    std::int32_t ply;       // depth of the stack of nodes: indexes every per-ply array
    std::uint8_t line_ply;  // real moves from the root, null moves not counted: mate distance, killers, main line
    std::uint8_t pawn_extensions;
    std::uint8_t total_extensions;
};
static_assert(sizeof(SearchFrame) == 8);  // travels in one register

/// The frame of the root.
inline constexpr SearchFrame root_frame = {0, 0, 0, 0};

/// The score of the position for the side to move, or `abort_score` when the clock stopped the search; fills `pv` with
/// the line it rests on. The game is the same on return. Needs allocated tables.
int search(Search& s, Game& game, int alpha, int beta, int depth, SearchFrame frame, PvLine& pv);

/// The first move to try at a node, before any is generated: that of the transposition table, asked one ply less deep
/// than the node itself asks, or else the best of a shallower search of the node, where the node is deep enough and its
/// window open.
std::optional<Move> first_move(Search& s, Game& game, int ply, int alpha, int beta, int depth);

}  // namespace varn
