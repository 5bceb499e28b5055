// Static evaluation: a sum of terms with hand-set weights. It doesn't depend on the side to move and recognises no
// draws. Only pawn structure is cached, in the pawn hash table.
//
// Scores are in centipawns from white's point of view, unless noted otherwise.
#pragma once

#include <string_view>
#include <vector>

#include "board/game.h"
#include "eval/pawns.h"

namespace varn {

/// Context of the evaluation. The search owns it and updates everything but the table at its start and between
/// iterations.
struct EvalContext {
    PawnTable pawns;                 // must be allocated
    std::int32_t root_material = 0;  // of both sides, at the root
    bool w_trade_flag = false;       // white is to move at the root and clearly ahead in the last finished iteration
    bool b_trade_flag = false;       // the same for black
};

int evaluate(const Game& game, EvalContext& context);

/// One term for both sides, in centipawns from each side's own point of view.
struct EvalTerm {
    std::string_view name;
    int white;
    int black;
};

/// The terms of the score, computed without the pawn hash table. Terms that the game phase switches off are left out.
std::vector<EvalTerm> evaluation_terms(const Game& game, const EvalContext& context);

/// The placement terms: piece-square values, mobility and king tropism.
int piece_placement(const Game& game);

// For a piece of either colour on the square.
int rook_mobility(const Game& game, int square);
int bishop_mobility(const Game& game, int square);
int knight_mobility(const Game& game, int square);

/// Bonus for closeness to the enemy king, from the piece's own point of view.
int king_tropism(int code, int square, int king_square);

}  // namespace varn
