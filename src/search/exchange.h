// Static exchange evaluation: what a capture wins or loses if both sides go on capturing on its square with their
// cheapest pieces, told without making a move.
#pragma once

#include "board/game.h"

namespace varn {

/// What the exchange that `move` starts on its target gains for the side to move, in centipawns. The first capture is
/// not optional; after it either side may stop. En passant counts 0, and promotions on the way count as pawn captures.
int exchange_gain(const Game& game, Move move);

/// The same from white's point of view, whoever moves.
inline int exchange_value(const Game& game, Move move) {
    const int gain = exchange_gain(game, move);
    return game.turn == Side::white ? gain : -gain;
}

}  // namespace varn
