// The console front end: a prompt on standard output, one command per line on standard input. Everything is
// synchronous: no input is read while a command or a search runs.
#pragma once

#include <string_view>

#include "frontend/engine.h"
#include "patterns/anneal.h"

namespace varn {

/// State of the console.
struct Console {
    Engine& engine;
    SearchListener listener;            // prints the search table
    bool is_white_human = true;         // white's moves are typed, else the engine plays white
    bool is_black_human = false;        // the same for black
    bool human_move_validation = true;  // typed moves must be legal
    AnnealRun patterns = {};            // the last annealing run
};

Console start_console(Engine& engine);

/// An input line as seen by a command.
struct CommandLine {
    std::string_view whole;  // with its newline
    std::string_view rest;   // after the command's text
};

/// Handles an unknown line, or a command with an unreadable argument.
void ignore_line(const CommandLine& line);

/// Prompts, reads and executes a line. At the end of input the process ends: with status 0, unless the last result of
/// the pattern tool couldn't be written.
void console_step(Console& console);

[[noreturn]] void console_loop(Engine& engine);

}  // namespace varn
