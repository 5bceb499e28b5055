// Fixed-depth searches of a dozen positions: prints the nodes of each, the total and the speed.
//
// Hash numbers come from a fixed seed, so the total is a signature: pure speed-ups keep it, and any change of it means
// that search or evaluation behave differently.
#include <cstdio>
#include <optional>
#include <string_view>

#include "base/number.h"
#include "frontend/bench.h"
#include "search/think.h"

namespace {

constexpr const char* usage =
    "usage: search_bench [DEPTH]\n"
    "Searches a dozen positions to this depth (9; 1 to 50) and prints nodes, seconds and speed.\n";

void run(int depth) {
    const varn::BenchTotal total = varn::run_bench(depth, [](const char* position, std::uint64_t nodes) {
        std::printf("%12llu  %s\n", static_cast<unsigned long long>(nodes), position);
    });
    std::printf("depth: %d\nnodes: %llu\nseconds: %.2f\nnodes per second: %.0f\n", depth,
                static_cast<unsigned long long>(total.nodes), total.seconds,
                static_cast<double>(total.nodes) / total.seconds);
}

}  // namespace

int main(int argument_count, char** arguments) {
    const std::string_view argument = argument_count > 1 ? arguments[1] : "";
    if (argument_count == 2 && argument == "--help") return std::fputs(usage, stdout) >= 0 ? 0 : 1;
    const auto depth = argument_count == 1   ? std::optional(varn::bench_depth)
                       : argument_count == 2 ? varn::read_number(argument, 1, varn::deepest_iteration)
                                             : std::nullopt;
    if (!depth) {
        static_cast<void>(std::fputs("search_bench: expects a depth from 1 to 50; see --help\n", stderr));
        return 2;
    }
    run(*depth);
    return 0;
}
