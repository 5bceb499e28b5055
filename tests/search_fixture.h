// A search with small tables for tests.
#pragma once

#include <gtest/gtest.h>

#include "positions.h"
#include "search/think.h"

namespace varn {

/// 65535 transposition entries and 26214 quiescence entries; the clock runs and never expires.
inline std::unique_ptr<Search> small_search() {
    auto s = new_search();
    EXPECT_EQ(allocate_tables(*s, {.hash_bits = 16, .qhash_bytes = 1 << 20, .phash_bytes = 1 << 20}), TableFault::none);
    s->clock.time_limit_ms = 1 << 30;
    s->iteration_depth = 1;
    start_clock(s->clock);
    return s;
}

inline const std::string& start_text = known_positions[0].text;
inline const std::string& middle_text = known_positions[1].text;

class SearchTest : public testing::Test {
protected:
    std::unique_ptr<Search> owner = small_search();
    Search& s = *owner;
    TranspositionTable& table = s.tables.transposition_table;
    QuiescenceTable& qtable = s.tables.quiescence_table;
};

}  // namespace varn
