// Console commands that check the engine: move counts and test suites.
#pragma once

#include "console/console.h"

namespace varn {

void count_moves(Console& console, const CommandLine& line);
void count_picked_moves(Console& console, const CommandLine& line);

/// The line is a command word, the suite's name and the log's name.
void run_test_suite(Console& console, const CommandLine& line);

}  // namespace varn
