// The second front end: the engine as the partner of a chess program that speaks the xboard protocol. One line is read
// and carried out at a time; a line that is no command is taken for a move, and the engine's answer is found inside the
// handling of that line.
#pragma once

#include <memory>

#include "board/game.h"

namespace varn {

/// Speaks the protocol until `quit` or the end of the input ends the process; never returns.
[[noreturn]] void xboard_loop(std::unique_ptr<Game> game);

/// How a game stands, as the protocol announces it.
enum class GameResult {
    none,
    black_mates,
    white_mates,
    repetition,  // the position stood twice before
    stalemate,
    fifty_moves,
    insufficient_material,
    full_record,
};

/// A game is mate before it is anything else.
GameResult game_result(Game* game);

}  // namespace varn
