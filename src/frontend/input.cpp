#include "frontend/input.h"

#include <cstdio>

namespace varn {

std::optional<std::string> read_line() {
    constexpr std::size_t longest_piece = 255;
    std::string line;
    while (line.size() < longest_piece && !line.ends_with('\n')) {
        const int c = std::getchar();
        if (c == EOF) break;
        line += static_cast<char>(c);
    }
    return line.empty() ? std::nullopt : std::optional(line);
}

}  // namespace varn
