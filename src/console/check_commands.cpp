#include "console/check_commands.h"

#include <optional>
#include <string>

#include "base/output.h"
#include "frontend/command_line.h"
#include "frontend/game_report.h"
#include "frontend/numbers.h"
#include "frontend/perft.h"
#include "frontend/suite.h"

namespace varn {

namespace {

/// The depth given on the line. None if it is missing or out of range (the line is ignored) or the position can't be
/// played (with a message).
std::optional<int> depth_to_count(const Console& console, const CommandLine& line) {
    std::string_view rest = line.rest;
    const auto depth = take_number(rest);
    if (!depth || *depth < 0 || *depth > last_ply) {
        ignore_line(line);
        return std::nullopt;
    }
    return refuse_unplayable(*console.engine.game) ? std::nullopt : depth;
}

}  // namespace

void count_moves(Console& console, const CommandLine& line) {
    if (const auto depth = depth_to_count(console, line)) perft(*console.engine.game, *depth);
}

void count_picked_moves(Console& console, const CommandLine& line) {
    const auto depth = depth_to_count(console, line);
    if (depth) advperft(*console.engine.search, *console.engine.game, *depth);
}

void run_test_suite(Console& console, const CommandLine& line) {
    std::string_view rest = line.whole;
    take_word(rest);
    const std::string suite_name(take_word(rest));
    const std::string log_name(take_word(rest));
    if (log_name.empty() || !take_word(rest).empty()) {
        ignore_line(line);
        return;
    }
    say("running test suite: %s\n", suite_name.c_str());
    run_suite(console.engine, suite_name, log_name, console.listener);
}

}  // namespace varn
