// The console's commands that check the engine: move counts and test suites.
#pragma once

#include "console/console.h"

namespace varn {

void count_moves(Console& console, const CommandLine& line);
void count_picked_moves(Console& console, const CommandLine& line);

/// Its first word, whichever it is, then the names of the suite and of the log.
void run_test_suite(Console& console, const CommandLine& line);

}  // namespace varn
