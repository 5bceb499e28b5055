// The settings file, `varn.ini` in the working directory.
#pragma once

#include <cstdint>
#include <optional>

#include "search/record.h"

namespace varn {

/// What the file sets.
struct Configuration {
    TableSizes tables;
    std::int32_t pondering_enabled = 1;  // other than 0: the engine may think on the opponent's time
};

/// What the file doesn't hold keeps its default, and so does a size of 0. Sizes have no range here: the table that
/// can't be allocated says so. None where there is no file.
std::optional<Configuration> read_configuration();

}  // namespace varn
