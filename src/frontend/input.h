// Standard input, line by line.
#pragma once

#include <optional>
#include <string>

namespace varn {

/// The next line with its newline, or of a line longer than 255 characters the next piece of that length; none at the
/// end of the input. A last line without a newline comes as it is.
std::optional<std::string> read_line();

/// A whole line without its newline. One longer than `longest_line` is read to its end and dropped.
struct WholeLine {
    std::string text;
    bool is_too_long = false;
};
inline constexpr std::size_t longest_line = std::size_t{1} << 20;

/// None at the end of the input.
std::optional<WholeLine> read_whole_line();

}  // namespace varn
