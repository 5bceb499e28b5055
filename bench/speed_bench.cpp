// Search speed in nodes per second on positions from opening to ending, each searched for the same time, repeatedly if
// the maximum depth is reached. All iterations count, the unfinished one included. The rate is by CPU time, which is
// less affected by other load than wall time.
#include <chrono>
#include <cstdio>
#include <ctime>
#include <optional>
#include <span>
#include <string_view>

#include "base/number.h"
#include "board/fen.h"
#include "board/position.h"
#include "board/zobrist.h"
#include "frontend/bench.h"
#include "search/think.h"

namespace {

constexpr const char* usage =
    "usage: speed_bench [MILLISECONDS [HASH-BITS [DEPTH [POSITION]]]]\n"
    "Searches four positions, or the one given as FEN, each for so many milliseconds (5000; up to an hour) and to at\n"
    "most this depth (50; 1 to 50), with a table of 2 to this power entries (21; 1 to 30), and prints nodes a "
    "second.\n";

constexpr std::uint64_t hash_seed = 20080519;

constexpr int most_milliseconds = 3600000;
constexpr int most_hash_bits = 30;

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

int complain(const char* text) {
    static_cast<void>(std::fprintf(stderr, "speed_bench: %s\n", text));
    return 2;
}

int run(std::span<const char* const> arguments) {
    const auto number = [&](std::size_t index, int most, int otherwise) {
        return arguments.size() > index ? varn::read_number(arguments[index], 1, most) : std::optional(otherwise);
    };
    varn::TableSizes sizes;
    const auto milliseconds = number(0, most_milliseconds, 5000);
    const auto hash_bits = number(1, most_hash_bits, sizes.hash_bits);
    const auto last_depth = number(2, varn::deepest_iteration, varn::deepest_iteration);
    if (!milliseconds || !hash_bits || !last_depth || arguments.size() > 4) {
        return complain("expects up to three numbers and a position; see --help");
    }
    varn::draw_hash_numbers(hash_seed);
    if (arguments.size() == 4 && !varn::read_fen(arguments[3]).game) return complain("the position can't be played");
    sizes.hash_bits = *hash_bits;
    const auto search = varn::new_search();
    if (varn::allocate_tables(*search, sizes) != varn::TableFault::none) return complain("not enough memory");
    if (arguments.size() == 4) {
        search_position(*search, arguments[3], *last_depth, *milliseconds);
    } else {
        for (const int i : positions) search_position(*search, varn::bench_positions[i], *last_depth, *milliseconds);
    }
    return 0;
}

}  // namespace

int main(int argument_count, char** arguments) {
    if (argument_count == 2 && std::string_view(arguments[1]) == "--help") {
        return std::fputs(usage, stdout) >= 0 ? 0 : 1;
    }
    return run(std::span(arguments + 1, arguments + argument_count));
}
