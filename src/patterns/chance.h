// Random sources of the annealing: choices of boxes and squares, and acceptance of splits.
#pragma once

#include <algorithm>

#include "base/random.h"
#include "board/types.h"

namespace varn {

/// Many small choices from few draws. A 64-bit draw is a fraction between 0 and 1; multiplied by a range, its whole
/// part is the choice and its fraction holds the next ones. There is a new draw before the bias of any combination of
/// choices could exceed 2^-32.
class Choices {
public:
    explicit constexpr Choices(std::uint64_t seed) : source_(seed) { renew(); }

    /// Draws early. Never necessary, but it removes the dependency on earlier choices.
    constexpr void renew() {
        fraction_ = source_.next();
        outcomes_ = 1;
    }

    /// A number from 0 to `range` - 1; `range` must not be 0.
    constexpr std::uint32_t below(std::uint32_t range) {
        outcomes_ *= range;
        if (outcomes_ > most_outcomes) {
            renew();
            outcomes_ = range;
        }
        const Product product = Product{fraction_} * range;
        fraction_ = static_cast<std::uint64_t>(product);
        return static_cast<std::uint32_t>(product >> 64);
    }

private:
    __extension__ using Product = unsigned __int128;
    static constexpr std::uint64_t most_outcomes = std::uint64_t{1} << 32;

    RandomSource source_;
    std::uint64_t fraction_ = 0;
    std::uint64_t outcomes_ = 1;  // combinations of choices taken from the current draw
};

/// State of `uniform_random`. Initially only `value`, the seed, is set.
struct UniformState {
    std::int32_t value;
    std::int32_t last = 0;  // 0: not started
    Table<std::int32_t, 32> shuffle = {};
};

/// A real number in 0..1, both exclusive: the minimal standard generator of Park and Miller with the Bays-Durham
/// shuffle. A seed of 0 or less starts the generator from its absolute value, at least 1; a positive one starts it from
/// 1, so that every run has the same sequence.
inline double uniform_random(UniformState& state) {
    constexpr std::int32_t modulus = 2147483647;
    constexpr double largest = 0.99999988;
    const auto advance = [&] { state.value = static_cast<std::int32_t>(std::int64_t{state.value} * 16807 % modulus); };
    if (state.last == 0) {
        constexpr int warm_up = 8;
        state.value = state.value < 0 && state.value > -modulus ? -state.value : 1;
        for (int i = 0; i < warm_up; ++i) advance();
        for (int slot = state.shuffle.size() - 1; slot >= 0; --slot) {
            advance();
            state.shuffle[slot] = state.value;
        }
        state.last = state.shuffle[0];
    }
    advance();
    constexpr std::int32_t values_per_slot = 1 + (modulus - 1) / Table<std::int32_t, 32>::size();
    std::int32_t& slot = state.shuffle[state.last / values_per_slot];
    state.last = slot;
    slot = state.value;
    return std::min(state.last * (1.0 / modulus), largest);
}

}  // namespace varn
