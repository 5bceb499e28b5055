// Search speed in nodes per second on positions from opening to ending, each searched for the same time, repeatedly if
// the maximum depth is reached. All iterations count, the unfinished one included. The rate is by CPU time, which is
// less affected by other load than wall time.
//
// Usage: speed_bench [milliseconds [hash bits [last depth [position]]]]
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "board/position.h"
#include "board/zobrist.h"
#include "frontend/bench.h"
#include "search/think.h"

namespace {

constexpr std::uint64_t hash_seed = 20080519;

/// Indices of benchmark positions: the start, "everything hangs", a quiet middlegame and a rook ending.
constexpr int positions[] = {0, 1, 2, 8};

double processor_seconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

void search_position(varn::Search& s, const char* text, int last_depth, int milliseconds) {
    const auto game = varn::new_game();
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    double nodes = 0;
    double seconds = 0;
    for (auto now = Clock::now(); now < end; now = Clock::now()) {
        s.clock.time_limit_ms = static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(end - now).count());
        varn::set_position(*game, text);
        varn::clear_for_position(s);
        const double started = processor_seconds();
        varn::think(s, *game, {.depth = last_depth}, {});
        seconds += processor_seconds() - started;
        nodes += static_cast<double>(s.search_nodes);
    }
    std::printf("%12.0f nodes  %6.2f s  %8.0f nodes/s  %s\n", nodes, seconds, nodes / seconds, text);
}

}  // namespace

int main(int argument_count, char** arguments) {
    const auto number = [&](int index, int otherwise) {
        return argument_count > index ? static_cast<int>(std::strtol(arguments[index], nullptr, 10)) : otherwise;
    };
    const int milliseconds = number(1, 5000);
    varn::TableSizes sizes;
    sizes.hash_bits = number(2, sizes.hash_bits);
    const int last_depth = number(3, varn::deepest_iteration);
    varn::draw_hash_numbers(hash_seed);
    const auto search = varn::new_search();
    if (varn::allocate_tables(*search, sizes) != varn::TableFault::none) return 1;
    if (argument_count > 4) {
        search_position(*search, arguments[4], last_depth, milliseconds);
    } else {
        for (const int i : positions) search_position(*search, varn::bench_positions[i], last_depth, milliseconds);
    }
    return 0;
}
