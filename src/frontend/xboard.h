// The second front end: the engine as the partner of a chess program that speaks the xboard protocol. One line is read
// and carried out at a time; a line that is no command is taken for a move, and the engine's answer is found inside the
// handling of that line.
#pragma once

#include <memory>
#include <string_view>

#include "board/game.h"

namespace varn {

/// What the protocol keeps between lines, beside the settings.
struct Protocol {
    std::unique_ptr<Game> game;
    bool force_mode;  // moves are played on the board only
    bool pondering_enabled;
};

/// The protocol begins, with this game.
Protocol start_protocol(std::unique_ptr<Game> game);

/// Carries out a line, which ends with its newline where it has one. `quit` ends the process.
void xboard_step(Protocol& protocol, std::string_view line);

/// Speaks the protocol on standard input until `quit` or the end of the input ends the process; never returns.
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
