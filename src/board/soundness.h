// The minimum that a move must satisfy when the rules are not checked.
#pragma once

#include "board/game.h"

namespace varn {

/// Whether `make_move` can play the move and leave a consistent, playable position, whatever the rules and the side to
/// move: the target holds neither an own piece nor a king, and the special effects of the move's kind are possible. The
/// move may be any three bytes; the position must be playable.
bool keeps_record_sound(const Game& game, Move move);

}  // namespace varn
