// An engine in this process.
#pragma once

#include <gtest/gtest.h>

#include "frontend/engine.h"

namespace varn {

/// With small tables, at the start of a game.
struct SmallEngine : Engine {
    SmallEngine() {
        configuration.tables = {.hash_bits = 16, .qhash_bytes = 1 << 20, .phash_bytes = 1 << 16};
        allocate_tables(*this);
        start_game(*this);
    }
};

}  // namespace varn
