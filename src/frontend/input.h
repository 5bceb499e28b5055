// Standard input, line by line.
#pragma once

#include <optional>
#include <string>

namespace varn {

/// The next line with its newline, or of a line longer than 255 characters the next piece of that length; none at the
/// end of the input. A last line without a newline comes as it is.
std::optional<std::string> read_line();

}  // namespace varn
