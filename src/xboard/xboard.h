// The second front end: the engine as the partner of a graphical chess program that speaks the xboard protocol. A line
// that is no command is taken for a move, and the engine's answer is worked out inside the handling of that line; no
// input is read while a search runs on the main thread.
#pragma once

#include <atomic>
#include <string_view>

#include "board/status.h"
#include "frontend/time_control.h"
#include "xboard/pondering.h"

namespace varn {

/// What the protocol keeps between lines.
struct Protocol {
    Engine& engine;
    bool force_mode = false;  // moves are played on the board only
    bool pondering_enabled;
    std::atomic<bool> post_thinking = false;  // a search tells its lines; it may be one on the other thread
    TimeControl time_control = {};
    Pondering pondering = {};
    SearchListener listener = {};

    explicit Protocol(Engine& its_engine);
};

/// Carries out a line, which ends with its newline where it has one. `quit` ends the process.
void xboard_step(Protocol& protocol, std::string_view line);

/// Speaks the protocol on standard input until `quit` or the end of the input ends the process; never returns.
[[noreturn]] void xboard_loop(Engine& engine);

/// How a game stands, in the order in which the protocol claims it: a game is mate before it is anything else.
GameStatus protocol_status(const Game& game);

}  // namespace varn
