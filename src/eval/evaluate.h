// The static score of a position: a plain sum of terms, each with one weight set by hand. Nothing depends on whose turn
// it is, no position is scored as a draw, and the only memory is the pawn hash table.
//
// All scores are in centipawns; from white's point of view, unless said otherwise.
#pragma once

#include "board/game.h"

namespace varn {

// Written by the search: at its start, and between its iterations.
extern std::int32_t root_material;  // of both sides together, at the root
extern std::int32_t w_trade_flag;   // 1: white, to move at the root, stood clearly ahead in the last finished iteration
extern std::int32_t b_trade_flag;   // 1: the same for black

/// The score of the position. Needs the pawn hash table. It doesn't depend on the ply or the window, which a search
/// tells it nevertheless.
int evaluate(const Game* game, int ply, int alpha, int beta);

/// The part of it that comes from where the men stand: square tables, mobility, closeness to the enemy king.
int piece_placement(const Game* game);

// For a man of either colour on the square, the better the greater.
int rook_mobility(int square, const Game* game);
int bishop_mobility(int square, const Game* game);
int knight_mobility(int square, const Game* game);

/// For being close to the enemy king, from the man's own point of view.
int king_tropism(int code, int square, int king_square);

}  // namespace varn
