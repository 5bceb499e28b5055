// Random numbers: fast, seeded once, uniform over any range.
#pragma once

#include <cstdint>

namespace varn {

/// A splitmix64 generator (Steele, Lea and Flood, 2014): equal seeds give equal sequences.
class RandomSource {
public:
    explicit constexpr RandomSource(std::uint64_t seed) : state_(seed) {}

    constexpr std::uint64_t next() {
        state_ += 0x9E3779B97F4A7C15ULL;
        std::uint64_t mixed = state_;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9ULL;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBULL;
        return mixed ^ (mixed >> 31);
    }

    /// A uniform number from 0 to `range` - 1; `range` must not be 0.
    constexpr std::uint64_t below(std::uint64_t range) {
        // Rejects the lowest draws, which would favour small remainders.
        const std::uint64_t uneven = (0 - range) % range;
        std::uint64_t drawn = next();
        while (drawn < uneven) drawn = next();
        return drawn % range;
    }

private:
    std::uint64_t state_;
};

}  // namespace varn
