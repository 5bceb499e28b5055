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

std::optional<WholeLine> read_whole_line() {
    int c = next_character();
    if (c == EOF) return std::nullopt;
    WholeLine line;
    for (; c != EOF && c != '\n'; c = next_character()) {
        line.is_too_long = line.is_too_long || line.text.size() == longest_line;
        if (!line.is_too_long) line.text += static_cast<char>(c);
    }
    return line;
}

}  // namespace varn
