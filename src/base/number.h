// Numbers in text that people write: arguments and options.
#pragma once

#include <charconv>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>

namespace varn {

/// The number from `least` to `most` that is the whole text, or nothing.
template <class Number>
std::optional<Number> read_number(std::string_view text, Number least = std::numeric_limits<Number>::min(),
                                  Number most = std::numeric_limits<Number>::max()) {
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool is_whole = error == std::errc() && end == text.data() + text.size();
    return is_whole && number >= least && number <= most ? std::optional(number) : std::nullopt;
}

}  // namespace varn
