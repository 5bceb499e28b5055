#include "frontend/input.h"

#include <unistd.h>

#include <cstdio>

#include "base/file.h"

namespace varn {

namespace {

int next_character() {
    for (;;) {
        const int c = std::getchar();
        if (c != EOF || std::ferror(stdin) == 0 || !wait_until_ready(STDIN_FILENO, POLLIN)) return c;
        std::clearerr(stdin);
    }
}

}  // namespace

std::optional<std::string> read_line() {
    constexpr std::size_t longest_piece = 255;
    std::string line;
    while (line.size() < longest_piece && !line.ends_with('\n')) {
        const int c = next_character();
        if (c == EOF) break;
        line += static_cast<char>(c);
    }
    return line.empty() ? std::nullopt : std::optional(line);
}

}  // namespace varn
