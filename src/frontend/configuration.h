// The settings file, `varn.ini` in the working directory.
#pragma once

#include <cstdint>
#include <optional>

#include "search/record.h"

namespace varn {

struct Configuration {
    TableSizes tables;
    std::int32_t pondering_enabled = 1;  // nonzero: pondering is allowed
};

/// Values that are missing or size 0 keep their defaults. Sizes aren't checked here: the allocation reports its
/// failure. None if there is no file.
std::optional<Configuration> read_configuration();

}  // namespace varn
