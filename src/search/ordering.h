// The tables that let the move picker guess well: history and killers, and the scoring of captures by exchange.
#pragma once

#include "board/game.h"
#include "board/geometry.h"

namespace varn {

/// A quiet move that caused a cut-off at a ply, and how often since the iteration began.
struct KillerSlot {
    Move move;
    std::int32_t count;
};

inline constexpr int killer_slots = 2 * ply_slots;

/// By side to move and distance from the root: see `killer_index`. The moves outlive a search, only the counts don't;
/// each killer remembers the code of the piece that made it.
struct Killers {
    Table<KillerSlot, killer_slots> killer_one{};
    Table<KillerSlot, killer_slots> killer_two{};
    Table<std::int32_t, killer_slots> killer_one_piece{};
    Table<std::int32_t, killer_slots> killer_two_piece{};
};

constexpr int killer_index(const Game& game, int line_ply) { return static_cast<int>(game.turn) + 2 * line_ply; }

/// By side to move, from and to: how much weight of depth a quiet move has gathered in this search; never negative.
using History = Table<PerSquare<PerSquare<std::int32_t>>, 2>;

/// Credits a quiet move or castling that raised alpha, once it is taken back.
void history_update(History& history, const Game& game, Move move, int depth);
void clear_history(History& history);

/// Remembers a quiet move or double step that caused a cut-off, once it is taken back.
void killer_update(Killers& killers, const Game& game, Move move, int line_ply);
void clear_killer_counts(Killers& killers);

/// Sets every score to the move's history.
void score_quiets(MoveList& list, const Game& game, const History& history);
/// Sets every score to what the exchange gains for the side to move; en passant counts 0.
void score_captures(MoveList& list, const Game& game);

/// Swaps the entry with the highest score from `index` on to `index`, the first of equals winning. Scores of -9999 or
/// less are passed over.
void pick_best(MoveList& list, int index);

}  // namespace varn
