// Name of the programs.
#pragma once

#include <string_view>

namespace varn {

inline constexpr std::string_view program_name = "Varn " VARN_VERSION;

}  // namespace varn
