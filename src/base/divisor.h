// Remainder of a 64-bit number by a divisor known in advance: a multiplication instead of a division.
#pragma once

#include <cstdint>
#include <limits>

namespace varn {

/// A divisor of 1 or more and its reciprocal as a fraction of 2^64, rounded down.
struct Divisor {
    std::uint64_t value;
    std::uint64_t reciprocal;
};

constexpr Divisor divisor(std::uint64_t value) { return {value, std::numeric_limits<std::uint64_t>::max() / value}; }

/// number % divisor.value. The reciprocal is too small by less than 2^-64, so the quotient is too small by at most 1.
constexpr std::uint64_t remainder(std::uint64_t number, const Divisor& divisor) {
    __extension__ using Wide = unsigned __int128;
    // cppcheck-suppress shiftTooManyBits ; false positive: Wide has 128 bits
    const auto quotient = static_cast<std::uint64_t>(Wide{number} * divisor.reciprocal >> 64);
    const std::uint64_t rest = number - quotient * divisor.value;
    return rest < divisor.value ? rest : rest - divisor.value;
}

}  // namespace varn
