// Searches of fixed depth over a dozen positions with fixed hash numbers: their total of nodes is the signature of the
// search.
#pragma once

#include <cstdint>
#include <functional>

namespace varn {

inline constexpr int bench_depth = 9;

struct BenchTotal {
    std::uint64_t nodes;
    double seconds;
};

/// Told of each position and the nodes of its search, all iterations together.
using BenchListener = std::function<void(const char* position, std::uint64_t nodes)>;

/// Draws the hash numbers anew, from a fixed seed: no game may exist. Nothing is searched, and the total is 0, where
/// there isn't memory enough.
BenchTotal run_bench(int depth, const BenchListener& listener);

}  // namespace varn
