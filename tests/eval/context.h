// What the tests of the evaluation share: a context before any search.
#pragma once

#include <gtest/gtest.h>

#include "eval/evaluate.h"

namespace varn {

/// With a pawn hash table that knows no pawns yet.
struct FreshContext : EvalContext {
    FreshContext() { EXPECT_TRUE(pawn_hash_allocate(pawns, 1 << 16)); }
};

}  // namespace varn
