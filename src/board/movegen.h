// Generators of pseudo-legal moves: each piece moves by its rules, the enemy king is never captured and castling is
// fully legal, but a move may leave the mover's own king attacked. The order of the moves is fixed, and it is the
// engine's tie-break: pieces and their targets go from the lowest square number up, for both colours alike.
//
// Generators append: they write moves behind `count` and leave `scores` alone.
#pragma once

#include "board/game.h"

namespace varn {

// The stages that the move picker asks for one by one. Sliders are walked line by line: all pieces of a kind along one
// line, then along the next.

/// Pawns (a promotion gives queen, rook, bishop, knight), en passant, knights, bishops, rooks, queens, king.
void add_white_captures(const Game& game, MoveList& list);
void add_black_captures(const Game& game, MoveList& list);
/// Steps to the last rank, four moves each as above.
void add_white_promotions(const Game& game, MoveList& list);
void add_black_promotions(const Game& game, MoveList& list);
/// Castling, kingside first; quiet moves of knights, bishops, rooks, queens, king; double steps; single steps.
void add_quiets_white(const Game& game, MoveList& list);
void add_quiets_black(const Game& game, MoveList& list);
/// All of these, in this order.
void add_all_white(const Game& game, MoveList& list);
void add_all_black(const Game& game, MoveList& list);

// The same for the side to move.
void add_captures(const Game& game, MoveList& list);
void add_promotions(const Game& game, MoveList& list);
void add_quiets(const Game& game, MoveList& list);
void add_all(const Game& game, MoveList& list);

// The same into a list that is emptied first.
void generate_captures(const Game& game, MoveList& list);
/// Captures and step promotions.
void generate_noisy(const Game& game, MoveList& list);
void generate_all(const Game& game, MoveList& list);

}  // namespace varn
