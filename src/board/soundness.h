// What a move must not do to a record, where the rules are not checked.
#pragma once

#include "board/game.h"

namespace varn {

/// Whether `make_move` can play the move and leave a sound record of a playable position, whatever the rules say and
/// whoever's turn it is: a piece goes to a square that holds neither a piece of its own side nor a king, and what else
/// the move's kind does to the board can be done. The move may be any three bytes; the position must be playable.
bool keeps_record_sound(const Game& game, Move move);

}  // namespace varn
