// Console commands that change or show settings. Settings persist across games.
#pragma once

#include "console/console.h"

namespace varn {

// A missing or unreadable number leaves the setting unchanged.
void set_ply_limit(Console& console, const CommandLine& line);
void set_time_limit(Console& console, const CommandLine& line);

void make_both_human(Console& console, const CommandLine& line);
void toggle_validation(Console& console, const CommandLine& line);
void show_flags(Console& console, const CommandLine& line);

}  // namespace varn
