// The console's commands for king-and-pawn patterns.
#pragma once

#include "console/console.h"

namespace varn {

// Both read positions into the console's game: it starts afresh from the last one read, and `back` comes to that.
void print_placements(Console& console, const CommandLine& line);
void anneal_placements(Console& console, const CommandLine& line);

}  // namespace varn
