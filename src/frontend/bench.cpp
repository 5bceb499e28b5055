#include "frontend/bench.h"

#include <chrono>

#include "board/position.h"
#include "board/zobrist.h"
#include "search/think.h"

namespace varn {

namespace {

// Kept: docs/compatibility.md#signature-of-the-search
constexpr std::uint64_t hash_seed = 20080519;

}  // namespace

BenchTotal run_bench(int depth, const BenchListener& listener) {
    draw_hash_numbers(hash_seed);
    const auto search = new_search();
    if (allocate_tables(*search, {}) != TableFault::none) return {0, 0};
    const auto game = new_game();
    const auto started = std::chrono::steady_clock::now();
    std::uint64_t total = 0;
    for (const char* text : bench_positions) {
        set_position(*game, text);
        complete_record(*game);  // keys independent of earlier searches
        clear_for_position(*search);
        think(*search, *game, {.depth = depth}, {});
        listener(text, search->search_nodes);
        total += search->search_nodes;
    }
    return {total, std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count()};
}

}  // namespace varn
