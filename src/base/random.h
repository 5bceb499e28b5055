// The engine's random source: fast, seeded once, uniform over any range. Nothing drawn from it is stored between runs.
#pragma once

#include <cstdint>

namespace varn {

/// A splitmix64 generator (Steele, Lea and Flood, 2014): equal seeds give equal sequences.
class RandomSource {
public:
    explicit constexpr RandomSource(std::uint64_t seed) : state_(seed) {}

    /// 64 fresh bits.
    constexpr std::uint64_t next() {
        state_ += 0x9E3779B97F4A7C15ULL;
        std::uint64_t mixed = state_;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9ULL;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBULL;
        return mixed ^ (mixed >> 31);
    }

    /// A number from 0 to `range` - 1, each as likely as the others; `range` must not be 0.
    constexpr std::uint64_t below(std::uint64_t range) {
        // The few lowest draws, which would favour small remainders, are drawn again.
        const std::uint64_t uneven = (0 - range) % range;
        std::uint64_t drawn = next();
        while (drawn < uneven) drawn = next();
        return drawn % range;
    }

private:
    std::uint64_t state_;
};

}  // namespace varn
