// Console sessions. Searches are limited to one ply. Slow commands are skipped, and so are test suites outside the
// fuzzer's folder.
#include <algorithm>
#include <cstdio>
#include <string>

#include "console/console.h"
#include "frame.h"

namespace {

/// Perft deeper than two plies, fixed-depth searches, and the pattern tool.
bool takes_long(std::string_view line) {
    for (const std::string_view text : {"perft ", "advperft "}) {
        if (line.starts_with(text)) return line != std::string(text) + "1\n" && line != std::string(text) + "2\n";
    }
    return line == "kpk\n" || line == "kpkbb\n" || line == "xboard\n" || line == "nm\n";
}

/// The console's next line: up to a newline, but no longer than it reads at once.
std::string_view next_line(std::string_view input) {
    constexpr std::size_t longest_piece = 255;
    const std::string_view piece = input.substr(0, longest_piece);
    return piece.substr(0, std::min(piece.find('\n'), piece.size() - 1) + 1);
}

/// Suite and log names with a path.
bool leaves_folder(std::string_view line) {
    return line.starts_with("runs") && line.find('/') != std::string_view::npos;
}

/// Skipped lines leave their newline, so that other lines aren't joined.
std::string bounded(std::string_view input) {
    std::string lines;
    while (!input.empty()) {
        const std::string_view line = next_line(input);
        if (takes_long(line) || leaves_folder(line)) {
            lines += '\n';
        } else {
            lines += line;
        }
        input.remove_prefix(line.size());
    }
    return lines;
}

}  // namespace

void run_input(std::string_view input) {
    std::string lines = bounded(input);
    if (lines.empty()) return;
    std::FILE* terminal = stdin;
    stdin = fmemopen(lines.data(), lines.size(), "r");
    varn::run_to_exit(
        [](std::string_view) {
            varn::Engine& engine = varn::fresh_engine();
            varn::Console console = varn::start_console(engine);
            for (;;) {
                engine.ply_limit = 1;
                engine.search->clock.time_limit_ms = 1;
                varn::console_step(console);
            }
        },
        {});
    static_cast<void>(std::fclose(stdin));
    stdin = terminal;
}
