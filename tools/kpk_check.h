// Reads the boxes of a pattern file back and compares them with the original positions.
#pragma once

#include <span>

#include "patterns/pattern.h"

namespace varn {

/// Whether the file's boxes contain each of the positions exactly once and nothing else. Prints the result or the first
/// error.
bool covers_exactly(const char* file_name, std::span<const Pattern> positions);

}  // namespace varn
