// Move ordering: history, killers, and static exchange scores for captures.
#pragma once

#include "board/game.h"
#include "board/geometry.h"

namespace varn {

/// A quiet move that caused a cutoff, and how often in this iteration.
struct KillerSlot {
    Move move;
    std::int32_t count;
};

inline constexpr int killer_slots = 2 * ply_slots;

/// Two killers by side to move and distance from the root: see `killer_index`. Moves are kept from one search to the
/// next, counts are not. Each killer keeps the code of the piece that moved.
struct Killers {
    Table<KillerSlot, killer_slots> killer_one{};
    Table<KillerSlot, killer_slots> killer_two{};
    Table<std::int32_t, killer_slots> killer_one_piece{};
    Table<std::int32_t, killer_slots> killer_two_piece{};
};

constexpr int killer_index(const Game& game, int line_ply) { return static_cast<int>(game.turn) + 2 * line_ply; }

/// History scores by side to move, from and to square; cleared for every search, never negative.
using History = Table<PerSquare<PerSquare<std::int32_t>>, 2>;

/// Rewards a quiet move that raised alpha. Called with the move unmade.
void history_update(History& history, const Game& game, Move move, int depth);
void clear_history(History& history);

/// Records a quiet move that caused a cutoff. Called with the move unmade.
void killer_update(Killers& killers, const Game& game, Move move, int line_ply);
void clear_killer_counts(Killers& killers);

/// Scores every move by its history.
void score_quiets(MoveList& list, const Game& game, const History& history);
/// Scores every move by static exchange evaluation, for the side to move; en passant counts 0.
void score_captures(MoveList& list, const Game& game);

/// Selection sort step: swaps the best-scored move from `index` on to `index`; the first of equals wins. Scores of
/// -9999 or less are ignored.
void pick_best(MoveList& list, int index);

/// Orders the list as `pick_best` at each index would. Scores must not be negative.
void sort_quiets(MoveList& list);

}  // namespace varn
