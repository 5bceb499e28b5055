// Pins and checkers of a side. Computed once per position, they decide the legality of any pseudo-legal move without
// making it.
#pragma once

#include "board/game.h"

namespace varn {

struct Pins {
    Bitboard checkers;     // enemy pieces giving check, the enemy king included
    Bitboard pinned;       // own pieces pinned to the king
    Bitboard free;         // own pieces whose every move but en passant is legal: none in check, never the king
    Bitboard check_mask;   // targets of unpinned pieces: in check the squares that block or capture, else all
    Bitboard behind_king;  // squares behind the king on a checking slider's line: no escape squares
    std::int32_t king_square;
};

template <Side S> Pins pins_of(const Game& game);
/// For the side to move.
Pins pins_of(const Game& game);

/// Whether a pseudo-legal move of side S is legal. Castling is generated only if legal.
template <Side S> bool is_legal_under(const Game& game, const Pins& pins, Move move);
/// The same for the side to move.
bool is_legal_under(const Game& game, const Pins& pins, Move move);

}  // namespace varn
