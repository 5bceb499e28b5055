// The xboard front end. A line that is no command is taken as a move, and the reply is computed while handling that
// line: no input is read while a search runs on the main thread.
#pragma once

#include <atomic>
#include <string_view>

#include "board/status.h"
#include "frontend/time_control.h"
#include "xboard/pondering.h"

namespace varn {

/// State of the front end.
struct Protocol {
    Engine& engine;
    bool force_mode = false;  // moves are played without a reply
    bool pondering_enabled;
    std::atomic<bool> post_thinking = false;  // print search output; read by the search thread too
    TimeControl time_control = {};
    Pondering pondering = {};
    SearchListener listener = {};

    explicit Protocol(Engine& its_engine);
};

/// Executes a line, which ends with its newline if it has one. `quit` ends the process.
void xboard_step(Protocol& protocol, std::string_view line);

/// Runs the protocol until `quit` or the end of input ends the process.
[[noreturn]] void xboard_loop(Engine& engine);

/// Status in the protocol's order: mate comes first.
GameStatus protocol_status(const Game& game);

}  // namespace varn
