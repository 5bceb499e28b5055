// The settings file, `varn.ini` in the working directory.
#pragma once

#include <cstdint>

namespace varn {

/// 1: the engine may think on the opponent's time.
extern std::int32_t pondering_enabled;

/// Reads the sizes of the tables and `pondering_enabled`; what the file doesn't hold keeps its default, and so does a
/// size of 0. Sizes have no range here: the table that can't be allocated says so. Without the file the process ends
/// with a message and status 1.
void read_configuration();

}  // namespace varn
