// How safe the kings are. The first two measures are terms of the evaluation; the others look closer, at who controls
// the squares round the kings, and are for people to look at: they cost too much for the search.
//
// All scores are in centipawns from white's point of view, save that of `square_control`, which has a scale of its own.
#pragma once

#include "board/game.h"

namespace varn {

/// The pawns before a king on its castled square; a king elsewhere has no shelter to judge, and neither has one whose
/// enemy has few pieces left.
int king_shelter(const Game& game);
/// The part of side S, from its own point of view.
template <Side S> int king_shelter_of(const Game& game);

/// The pieces standing near the enemy king, whatever they attack there.
int king_attack(const Game& game);
/// The attack of side S on the enemy king, from its own point of view.
template <Side S> int king_attack_of(const Game& game);

/// Who controls a square of the board: the attackers of both sides, those behind others included, each by its weight:
/// the cheaper the piece, the more its control counts. Positive for white.
int square_control(const Game& game, int square);

/// The balance of the squares round both kings that the enemy controls.
int attack_eval(const Game& game);

}  // namespace varn
