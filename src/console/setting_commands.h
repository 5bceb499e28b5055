// The console's commands that set something, and the one that shows what is set. The settings hold for whatever game is
// played.
#pragma once

#include "console/console.h"

namespace varn {

// A number that is missing or can't be read leaves the setting as it was.
void set_ply_limit(Console& console, const CommandLine& line);
void set_time_limit(Console& console, const CommandLine& line);

void make_both_human(Console& console, const CommandLine& line);
void toggle_validation(Console& console, const CommandLine& line);
void show_flags(Console& console, const CommandLine& line);

}  // namespace varn
