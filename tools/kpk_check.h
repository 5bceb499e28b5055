// Reading the boxes of a pattern file back, and holding them against the positions that they were made from.
#pragma once

#include <span>

#include "patterns/pattern.h"

namespace varn {

/// Whether the lines of the file can be read as boxes that hold each of the positions exactly once, and nothing else.
/// Says what it found, or the first thing that is wrong.
bool covers_exactly(const char* file_name, std::span<const Pattern> positions);

}  // namespace varn
