// The remainder of a 64-bit number by one that is known long before: a multiplication instead of a division.
#pragma once

#include <cstdint>
#include <limits>

namespace varn {

/// A divisor of 1 or more, with its reciprocal as a fraction of 2^64, rounded down.
struct Divisor {
    std::uint64_t value;
    std::uint64_t reciprocal;
};

constexpr Divisor divisor(std::uint64_t value) { return {value, std::numeric_limits<std::uint64_t>::max() / value}; }

/// number % divisor.value. The reciprocal is too small by less than 1 in 2^64, so the quotient is by 1 at most.
constexpr std::uint64_t remainder(std::uint64_t number, const Divisor& divisor) {
    __extension__ using Wide = unsigned __int128;
    // cppcheck-suppress shiftTooManyBits ; it takes the wide number for one of 64 bits
    const auto quotient = static_cast<std::uint64_t>(Wide{number} * divisor.reciprocal >> 64);
    const std::uint64_t rest = number - quotient * divisor.value;
    return rest < divisor.value ? rest : rest - divisor.value;
}

}  // namespace varn
