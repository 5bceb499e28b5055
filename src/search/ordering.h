// The tables that let the move picker guess well: history and killers, and the scoring of captures by exchange.
// One search at a time writes them.
#pragma once

#include "board/geometry.h"

namespace varn {

/// A quiet move that caused a cut-off at a ply, and how often since the iteration began.
struct KillerSlot {
    Move move;
    std::int32_t count;
};

inline constexpr int killer_slots = 2 * ply_slots;

// By side to move and distance from the root: see `killer_index`. The moves outlive a search, only the counts don't;
// each killer remembers the code of the man that made it.
extern Table<KillerSlot, killer_slots> killer_one;
extern Table<KillerSlot, killer_slots> killer_two;
extern Table<std::int32_t, killer_slots> killer_one_piece;
extern Table<std::int32_t, killer_slots> killer_two_piece;

constexpr int killer_index(const Game* game, int line_ply) { return game->turn + 2 * line_ply; }

/// By side to move, from and to: how much weight of depth a quiet move has gathered in this search; never negative.
extern Table<PerSquare<PerSquare<std::int32_t>>, 2> history;

/// Credits a quiet move or castling that raised alpha, once it is taken back.
void history_update(const Game* game, Move move, int depth);
void clear_history();

/// Remembers a quiet move or double step that caused a cut-off; `piece` is the code of the man that made it.
void killer_update(Move move, int line_ply, int piece, const Game* game);
void clear_killer_counts();

/// Sets every score to the move's history.
void score_quiets(const Game* game, MoveList* list);
/// Sets every score to what the exchange gains for the side to move; en passant counts 0.
void score_captures(const Game* game, MoveList* list);

}  // namespace varn
