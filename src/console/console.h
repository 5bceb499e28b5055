// The first front end: a prompt on standard output, one command a line on standard input. Everything is synchronous: no
// input is read while a command runs, a search included.
#pragma once

#include <string_view>

#include "frontend/engine.h"
#include "patterns/anneal.h"

namespace varn {

/// What the console keeps from one line to the next.
struct Console {
    Engine& engine;
    SearchListener listener;            // prints the table of a search
    bool is_white_human = true;         // white's moves are typed; else the engine replies for white
    bool is_black_human = false;        // the same for black
    bool human_move_validation = true;  // typed moves must be legal
    AnnealRun patterns = {};            // the last run of the pattern tool
};

Console start_console(Engine& engine);

/// A line as a command sees it.
struct CommandLine {
    std::string_view whole;  // with its newline
    std::string_view rest;   // behind the text that told the command
};

/// What an unknown line gets, and a command whose argument can't be read.
void ignore_line(const CommandLine& line);

/// Prompts, reads a line and carries it out. At the end of the input the process ends: with status 0, unless the last
/// result of the pattern tool couldn't be written.
void console_step(Console& console);

/// Steps for ever.
[[noreturn]] void console_loop(Engine& engine);

}  // namespace varn
