// Parsing of integers.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace varn {

/// Removes a number from the front of the text: blanks, sign, digits. Numbers outside 32 bits are clamped. If there is
/// none the text is unchanged.
std::optional<std::int32_t> take_number(std::string_view& text);

}  // namespace varn
