// The first front end: a prompt on standard output, one command a line on standard input. Everything is synchronous: no
// input is read while a command runs, a search included.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "board/game.h"

namespace varn {

// Written by commands.
extern std::int32_t is_white_human;         // 1: white's moves are typed; 0: the engine replies for white
extern std::int32_t is_black_human;         // the same for black
extern std::int32_t human_move_validation;  // 1: typed moves must be legal

/// What the console keeps from one line to the next.
struct Console {
    std::unique_ptr<Game> game;
};

/// A line as a command sees it.
struct CommandLine {
    std::string_view whole;  // with its newline
    std::string_view rest;   // behind the text that told the command
};

/// What an unknown line gets, and a command whose argument can't be read.
void ignore_line(const CommandLine& line);

/// Says so where the position can't be played; returns whether it said it. Whatever generates moves asks first.
bool refuse_unplayable(const Game* game);

/// Prompts, reads a line and carries it out. At the end of the input the process ends with status 0.
void console_step(Console& console);

/// Steps for ever.
[[noreturn]] void console_loop(std::unique_ptr<Game> game);

}  // namespace varn
