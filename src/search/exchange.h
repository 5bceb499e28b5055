// Static exchange evaluation: the outcome of a sequence of captures on one square, each side capturing with its least
// valuable attacker. No move is made.
#pragma once

#include "board/game.h"

namespace varn {

/// Below every gain: a capture loses a queen at most.
inline constexpr int any_gain = -queen_value;

/// The material gained by the exchange that `move` starts, in centipawns for the side to move. The first capture is
/// forced; after it either side may stop. En passant counts 0. Promotions within the exchange count as pawn captures.
/// A gain below `least` need not be exact.
int exchange_gain(const Game& game, Move move, int least = any_gain);

/// The same from white's point of view.
inline int exchange_value(const Game& game, Move move) {
    const int gain = exchange_gain(game, move);
    return game.turn == Side::white ? gain : -gain;
}

}  // namespace varn
