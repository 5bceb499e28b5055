// UCI input of arbitrary bytes, sent without pauses while searches run on the second thread.
#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>

#include "frame.h"
#include "frontend/command_line.h"
#include "uci/uci.h"

namespace {

using varn::Uci;

/// Kept between inputs, because allocating tables is slow.
Uci& front_end() {
    static Uci uci;
    static const bool started =
        varn::allocate_tables(*uci.search, {.hash_bits = 10, .qhash_bytes = 40000, .phash_bytes = 16000}) ==
        varn::TableFault::none;
    if (!started) std::abort();
    return uci;
}

/// The part of the line after a word; none if the word is missing.
std::optional<std::string_view> behind(std::string_view line, std::string_view wanted) {
    for (std::string_view word = varn::take_word(line); !word.empty(); word = varn::take_word(line)) {
        if (word == wanted) return line;
    }
    return std::nullopt;
}

bool has_word(std::string_view line, std::string_view wanted) { return behind(line, wanted).has_value(); }

/// Perft deeper than two plies, books outside the folder, and tables that are slow to clear.
bool is_left_out(std::string_view line) {
    std::string lower(line);
    std::ranges::transform(lower, lower.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; });
    if (const auto depth = behind(line, "perft")) return depth != " 1" && depth != " 2";
    if (!has_word(line, "setoption")) return false;
    if (lower.find("book file") != std::string::npos) {
        return line.find_first_of("/.") != std::string_view::npos;
    }
    return lower.find("hash") != std::string::npos && lower.find("value") != std::string::npos &&
           !lower.ends_with(" 1") && !lower.ends_with(" 2");
}

void carry_out(std::string_view lines) {
    Uci& uci = front_end();
    while (!lines.empty()) {
        const std::string_view line = lines.substr(0, lines.find('\n'));
        if (!is_left_out(line) && !varn::uci_step(uci, line)) break;
        // The next command meets a search that has just started or was stopped, depending on the line's length.
        if (has_word(line, "go") && line.size() % 2 == 0) varn::stop(uci);
        lines.remove_prefix(std::min(lines.size(), line.size() + 1));
    }
}

}  // namespace

void run_input(std::string_view input) {
    Uci& uci = front_end();
    uci.options = varn::standard_options();
    uci.debug = false;
    varn::write_file("book", "e2e4e7e5\nd2d4d7d5c2c4\n");
    varn::run_to_exit(
        [](std::string_view lines) {
            carry_out("ucinewgame\nposition startpos");
            carry_out(lines);
        },
        input);
    varn::finish_search(uci);
}
