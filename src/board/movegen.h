// Generators of pseudo-legal moves: each man moves by its rules, the enemy king is never captured and castling is fully
// legal, but a move may leave the mover's own king attacked. The order of the moves is fixed, and it is the engine's
// tie-break: men and their targets go from the lowest square number up, for both colours alike.
//
// Generators append: they write moves behind `count` and leave `scores` alone.
#pragma once

#include "board/game.h"

namespace varn {

/// One list a ply, and slot 500 for work outside the tree. Owned by whichever thread searches.
extern Table<MoveList, ply_slots + 1> move_lists;

// The stages that the move picker asks for one by one. Sliders are walked line by line: all men of a kind along one
// line, then along the next.

/// Pawns (a promotion gives queen, rook, bishop, knight), en passant, knights, bishops, rooks, queens, king.
void add_white_captures(const Game* game, MoveList* list);
void add_black_captures(const Game* game, MoveList* list);
/// Steps to the last rank, four moves each as above.
void add_white_promotions(const Game* game, MoveList* list);
void add_black_promotions(const Game* game, MoveList* list);
/// Castling, kingside first; quiet moves of knights, bishops, rooks, queens, king; double steps; single steps.
void add_quiets_white(const Game* game, MoveList* list);
void add_quiets_black(const Game* game, MoveList* list);
/// All of these, in this order.
void add_all_white(const Game* game, MoveList* list);
void add_all_black(const Game* game, MoveList* list);

// The same for the side to move.
void add_captures(const Game* game, MoveList* list);
void add_promotions(const Game* game, MoveList* list);
void add_quiets(const Game* game, MoveList* list);
void add_all(const Game* game, MoveList* list);

// A fresh list in `move_lists[slot]`, for the side to move.
MoveList* generate_captures(const Game* game, int slot);
/// Captures and step promotions.
MoveList* generate_noisy(const Game* game, int slot);
MoveList* generate_all(const Game* game, int slot);

}  // namespace varn
