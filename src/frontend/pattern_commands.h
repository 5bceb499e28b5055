// The console's commands for king-and-pawn patterns.
#pragma once

#include "frontend/console.h"

namespace varn {

// Both use the console's game to read positions into. Where they read any, it starts afresh from the last of them.
void print_placements(Console& console, const CommandLine& line);
void anneal_placements(Console& console, const CommandLine& line);

}  // namespace varn
