// The search node: recursive principal-variation alpha-beta, through which every interior position of the tree passes.
// All state between nodes is process-wide and valid only while one search runs; what a node owns stands in its frame.
#pragma once

#include "board/make.h"
#include "search/score.h"

namespace varn {

/// Passed by value from node to node, so that a child's counters need no undo.
struct SearchFrame {
    std::uint8_t line_ply;  // real moves from the root, null moves not counted: mate distance, killers, main line
    std::int32_t ply;       // depth of the stack of nodes: indexes every per-ply array
    std::uint8_t pawn_extensions;
    std::uint8_t total_extensions;
    std::uint8_t check_extensions;
    std::uint8_t recapture_extensions;
};

/// The frame of the root.
inline constexpr SearchFrame root_frame = {0, 0, 0, 0, 0, 0};

/// A line of moves with the keys of the position before each. Behind a tail that a child left there, moves may not
/// follow.
struct PvLine {
    std::int32_t length;
    Table<Move, ply_slots> moves;
    Table<std::uint64_t, ply_slots> keys;
    Table<std::uint64_t, ply_slots> locks;
};

/// The line of the root: the best found so far, also in an unfinished iteration.
extern PvLine main_pv;
/// Depth of the current iteration; written by the root.
extern std::int32_t iteration_depth;

/// The score of the position for the side to move, or `abort_score` when the clock stopped the search; fills `pv` with
/// the line it rests on. The game is the same on return.
int search(Game* game, int alpha, int beta, int depth, SearchFrame frame, PvLine* pv);

/// The best move of a shallower search of the same node, for a picker without a hash move; null where the node is too
/// shallow or its window closed, or where nothing came of it. Valid while the node runs.
const Move* iterative_deepening_move(Game* game, int ply, int alpha, int beta, int depth);

}  // namespace varn
