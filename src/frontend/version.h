// What the programs call themselves.
#pragma once

#include <string_view>

namespace varn {

/// Name and version; the version is that of the build.
inline constexpr std::string_view program_name = "Varn " VARN_VERSION;

}  // namespace varn
