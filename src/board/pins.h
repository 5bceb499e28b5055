// Pins and checkers of a side: which pieces are pinned to their king, which enemy pieces give check, and what answers
// it. Worked out once for a position, they tell of every pseudo-legal move whether it is legal without making it.
#pragma once

#include "board/game.h"

namespace varn {

/// Valid for the position and the side it was taken of.
struct Pins {
    Bitboard checkers;  // enemy pieces that attack the king, the enemy king included
    Bitboard pinned;    // pieces that alone stand between the king and a slider: they must stay on that line
    Bitboard free;      // pieces that may make each of their moves but en passant: none in check, and never the king
    Bitboard answers;   // where a piece that isn't pinned may go: in check the squares that end it, else all
    Bitboard shadows;   // squares behind the king, seen from a slider that checks it: no way out for the king
    std::int32_t king_square;
};

template <Side S> Pins pins_of(const Game& game);
/// The side to move's.
Pins pins_of(const Game& game);

/// Whether a pseudo-legal move of side S leaves its own king unattacked. Castling is legal when it is generated.
template <Side S> bool is_legal_under(const Game& game, const Pins& pins, Move move);
/// The same for the side to move.
bool is_legal_under(const Game& game, const Pins& pins, Move move);

}  // namespace varn
