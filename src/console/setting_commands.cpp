#include "console/setting_commands.h"

#include "base/output.h"
#include "frontend/numbers.h"

namespace varn {

void set_ply_limit(Console& console, const CommandLine& line) {
    std::string_view rest = line.rest;
    if (const auto plies = take_number(rest)) console.engine.ply_limit = *plies;
}

void set_time_limit(Console& console, const CommandLine& line) {
    std::string_view rest = line.rest;
    if (const auto milliseconds = take_number(rest)) console.engine.search->clock.time_limit_ms = *milliseconds;
}

void make_both_human(Console& console, const CommandLine&) { console.is_white_human = console.is_black_human = true; }

void toggle_validation(Console& console, const CommandLine&) {
    console.human_move_validation = !console.human_move_validation;
}

void show_flags(Console& console, const CommandLine&) {
    say("is_white_human: %d\nis_black_human: %d\nhuman_move_validation: %d\nside to move: %s\n\n",
        static_cast<int>(console.is_white_human), static_cast<int>(console.is_black_human),
        static_cast<int>(console.human_move_validation), console.engine.game->turn == Side::white ? "white" : "black");
}

}  // namespace varn
