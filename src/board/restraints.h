// What restrains the men of a side: checks that must be answered, and sliders that pin men to their king. Worked out
// once for a position, it tells of nearly every pseudo-legal move whether it is legal without making it.
#pragma once

#include "board/game.h"

namespace varn {

/// Valid for the position and the side it was taken of.
struct Restraints {
    Bitboard checkers;  // enemy men that attack the king, the enemy king included
    Bitboard pinned;    // men that alone stand between the king and a slider: they must stay on that line
    Bitboard free;      // men that may make each of their moves but en passant: none in check, and never the king
    Bitboard answers;   // where a man that isn't pinned may go: in check the squares that end it, else all
    Bitboard shadows;   // squares behind the king, seen from a slider that checks it: no way out for the king
    std::int32_t king_square;
};

template <Side S> Restraints restraints_of(const Game& game);
/// The side to move's.
Restraints restraints_of(const Game* game);

/// Whether a pseudo-legal move of side S leaves its own king unattacked. Makes and takes back en passant, which opens
/// lines that nothing else does, and castling; decides all other moves from the restraints.
template <Side S> bool is_legal_under(const Restraints& restraints, Game& game, Move move);
/// The same for the side to move.
bool is_legal_under(const Restraints& restraints, Game* game, Move move);

}  // namespace varn
