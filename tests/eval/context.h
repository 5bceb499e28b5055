// An evaluation context for tests.
#pragma once

#include <gtest/gtest.h>

#include "eval/evaluate.h"

namespace varn {

/// With an empty pawn hash table.
struct FreshContext : EvalContext {
    FreshContext() { EXPECT_TRUE(pawn_hash_allocate(pawns, 1 << 16)); }
};

}  // namespace varn
