// Generators of pseudo-legal moves: a move may leave the own king in check. Castling is generated only if legal, and
// the enemy king is never captured. The order of the moves is fixed and breaks ties in move ordering: pieces and
// targets go from the lowest square up, for both colours.
//
// Generators append to the list and don't touch `scores`.
#pragma once

#include "board/game.h"

namespace varn {

// Generators for the stages of the move picker. Sliders are generated line by line: all pieces of a type along one
// line, then along the next.

/// Pawns (promotions to queen, rook, bishop, knight), en passant, knights, bishops, rooks, queens, king.
void add_white_captures(const Game& game, MoveList& list);
void add_black_captures(const Game& game, MoveList& list);
/// Pawn steps to the last rank, four promotions each.
void add_white_promotions(const Game& game, MoveList& list);
void add_black_promotions(const Game& game, MoveList& list);
/// Castling, kingside first; quiet moves of knights, bishops, rooks, queens, king; double steps; single steps.
void add_quiets_white(const Game& game, MoveList& list);
void add_quiets_black(const Game& game, MoveList& list);
/// All moves, in this order.
void add_all_white(const Game& game, MoveList& list);
void add_all_black(const Game& game, MoveList& list);

// The same for the side to move.
void add_captures(const Game& game, MoveList& list);
void add_promotions(const Game& game, MoveList& list);
void add_quiets(const Game& game, MoveList& list);
void add_all(const Game& game, MoveList& list);

// These clear the list first.
void generate_captures(const Game& game, MoveList& list);
/// Captures and promotions.
void generate_noisy(const Game& game, MoveList& list);
void generate_all(const Game& game, MoveList& list);

}  // namespace varn
