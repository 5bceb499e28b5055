// The tables of an engine before its first search. What it does between searches is compared with a plain search: see
// search_sequence_test.cpp.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

#include "frontend/engine.h"
#include "positions.h"
#include "small_engine.h"

namespace varn {
namespace {

TEST(Engine, TouchesItsTablesBeforeTheFirstSearch) {
    SmallEngine engine;
    engine.ply_limit = 1;
    ASSERT_EQ(allocate_tables(*engine.search, {.hash_bits = 21}), TableFault::none);  // always fresh memory, so large
    const TranspositionTable& table = engine.search->tables.transposition_table;
    const auto page = static_cast<std::uint64_t>(sysconf(_SC_PAGE_SIZE));
    auto* const slots = reinterpret_cast<unsigned char*>(table.slots.get());
    unsigned char* const first = slots + (page - reinterpret_cast<std::uintptr_t>(slots) % page) % page;
    std::vector<unsigned char> pages(table.entries.value * sizeof(HashEntry) / page - 1);
    const auto resident = [&] {
        EXPECT_EQ(mincore(first, pages.size() * page, pages.data()), 0);
        return std::ranges::count_if(pages, [](unsigned char state) { return (state & 1) != 0; });
    };
    EXPECT_LT(resident(), std::ssize(pages) / 2);
    ASSERT_TRUE(choose_move(engine, *engine.game, {}));
    EXPECT_GE(resident(), std::ssize(pages) - 1);
}

}  // namespace
}  // namespace varn
