// The static score of a position: a plain sum of terms, each with one weight set by hand. Nothing depends on whose turn
// it is, no position is scored as a draw, and the only memory is the pawn hash table.
//
// All scores are in centipawns; from white's point of view, unless said otherwise.
#pragma once

#include "board/game.h"
#include "eval/pawns.h"

namespace varn {

/// What the evaluation knows beside the position. The search owns one, and writes all but the table at its start and
/// between its iterations.
struct EvalContext {
    PawnTable pawns;                 // must be allocated
    std::int32_t root_material = 0;  // of both sides together, at the root
    bool w_trade_flag = false;       // white, to move at the root, stood clearly ahead in the last finished iteration
    bool b_trade_flag = false;       // the same for black
};

/// The score of the position.
int evaluate(const Game& game, EvalContext& context);

/// The part of it that comes from where the pieces stand: square tables, mobility, closeness to the enemy king.
int piece_placement(const Game& game);

// For a piece of either colour on the square, the better the greater.
int rook_mobility(const Game& game, int square);
int bishop_mobility(const Game& game, int square);
int knight_mobility(const Game& game, int square);

/// For being close to the enemy king, from the piece's own point of view.
int king_tropism(int code, int square, int king_square);

}  // namespace varn
