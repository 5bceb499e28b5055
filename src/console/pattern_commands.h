// Console commands for king-and-pawn patterns.
#pragma once

#include "console/console.h"

namespace varn {

// Both load positions into the console's game, which then starts from the last position read.
void print_placements(Console& console, const CommandLine& line);
void anneal_placements(Console& console, const CommandLine& line);

}  // namespace varn
