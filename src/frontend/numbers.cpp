#include "frontend/numbers.h"

#include <algorithm>
#include <limits>

#include "frontend/command_line.h"

namespace varn {

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

std::optional<std::int32_t> take_number(std::string_view& text) {
    constexpr std::int64_t lowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t highest = std::numeric_limits<std::int32_t>::max();
    std::string_view rest = without_leading_blanks(text);
    const bool negative = rest.starts_with('-');
    if (negative || rest.starts_with('+')) rest.remove_prefix(1);
    if (rest.empty() || !is_digit(rest.front())) return std::nullopt;

    std::int64_t number = 0;
    for (; !rest.empty() && is_digit(rest.front()); rest.remove_prefix(1)) {
        number = std::min(number * 10 + (rest.front() - '0'), highest + 1);
    }
    text = rest;
    return static_cast<std::int32_t>(std::clamp(negative ? -number : number, lowest, highest));
}

}  // namespace varn
