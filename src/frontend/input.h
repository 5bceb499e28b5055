// Standard input, line by line.
#pragma once

#include <optional>
#include <string>

namespace varn {

/// The next line with its newline, or the next 255 characters of a longer line; none at the end of input. The last line
/// may lack a newline.
std::optional<std::string> read_line();

/// A whole line without its newline. A line longer than `longest_line` is read to its end and dropped.
struct WholeLine {
    std::string text;
    bool is_too_long = false;
};
inline constexpr std::size_t longest_line = std::size_t{1} << 20;

/// None at the end of input.
std::optional<WholeLine> read_whole_line();

}  // namespace varn
