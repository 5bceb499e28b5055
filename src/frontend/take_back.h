// Taking moves back by playing the game again without them.
#pragma once

#include <memory>

#include "board/game.h"

namespace varn {

/// The game's moves start from this position: a fresh game, or one set from text. Whoever starts a game or sets a
/// position says so here.
void set_base_position(const Game& game);

/// The other side is to move, with no move made. It changes `zobrist_key` and not the lock. The moves don't show it, so
/// it is noted for the replays of the game.
void pass_turn(Game* game);

/// The game again from its base position, less its last `taken_back` moves and what was done after those that are left;
/// less all of them where it has no more. What a search remembers is cleared as for a new game.
std::unique_ptr<Game> replay_game(const Game& game, int taken_back);

}  // namespace varn
