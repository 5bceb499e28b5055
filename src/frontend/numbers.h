// Whole numbers out of a line of text, as a person or a program types them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace varn {

/// Takes a number off the front of the text: blanks before it, a sign, digits. A number that a signed 32-bit word can't
/// hold becomes the nearest that it can. Where there is none the text stays as it is.
std::optional<std::int32_t> take_number(std::string_view& text);

}  // namespace varn
