// Whole searches at a fixed depth over a dozen positions: prints the nodes of each, their total and the speed.
//
// The hash numbers come from a fixed seed, so the total is a signature: a change that only makes the engine faster
// leaves it as it is, and one that alters it has changed what the search or the evaluation does.
//
// Usage: search_bench [depth]
#include <cstdio>
#include <cstdlib>

#include "frontend/bench.h"

int main(int argument_count, char** arguments) {
    const int depth = argument_count > 1 ? static_cast<int>(std::strtol(arguments[1], nullptr, 10)) : varn::bench_depth;
    const varn::BenchTotal total = varn::run_bench(depth, [](const char* position, std::uint64_t nodes) {
        std::printf("%12llu  %s\n", static_cast<unsigned long long>(nodes), position);
    });
    std::printf("depth: %d\nnodes: %llu\nseconds: %.2f\nnodes per second: %.0f\n", depth,
                static_cast<unsigned long long>(total.nodes), total.seconds,
                static_cast<double>(total.nodes) / total.seconds);
    return 0;
}
