// Fixed-depth searches of a dozen positions: prints the nodes of each, the total and the speed.
//
// Hash numbers come from a fixed seed, so the total is a signature: pure speed-ups keep it, and any change of it means
// that search or evaluation behave differently.
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
