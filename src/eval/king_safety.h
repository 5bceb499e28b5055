// King safety. The first two measures are evaluation terms. The others consider control of the squares around the
// kings; they are too slow for the search and only displayed.
//
// Scores are in centipawns from white's point of view, except `square_control`, which has its own scale.
#pragma once

#include "board/game.h"

namespace varn {

/// Pawn shields of castled kings. A king elsewhere scores 0, and so does one whose enemy has little material left.
int king_shelter(const Game& game);
/// For side S, from its own point of view.
template <Side S> int king_shelter_of(const Game& game);

/// Pieces near the enemy king, whatever squares they attack.
int king_attack(const Game& game);
/// For side S, from its own point of view.
template <Side S> int king_attack_of(const Game& game);

/// Control of a square: all attackers of both sides, x-ray attackers included, weighted so that cheaper pieces count
/// more. Positive for white.
int square_control(const Game& game, int square);

/// Enemy control of the squares around both kings.
int attack_eval(const Game& game);

}  // namespace varn
