#include "frontend/setting_commands.h"

#include "board/output.h"
#include "frontend/numbers.h"
#include "search/clock.h"
#include "search/settings.h"

namespace varn {

std::int32_t is_white_human = 1;
std::int32_t is_black_human = 0;
std::int32_t human_move_validation = 1;

void set_ply_limit(Console&, const CommandLine& line) {
    std::string_view rest = line.rest;
    if (const auto plies = take_number(rest)) ply_limit.store(*plies, std::memory_order_relaxed);
}

void set_time_limit(Console&, const CommandLine& line) {
    std::string_view rest = line.rest;
    if (const auto milliseconds = take_number(rest)) time_limit_ms.store(*milliseconds, std::memory_order_relaxed);
}

void make_both_human(Console&, const CommandLine&) { is_white_human = is_black_human = 1; }

void toggle_validation(Console&, const CommandLine&) { human_move_validation ^= 1; }

void show_flags(Console& console, const CommandLine&) {
    say("is_white_human: %d\nis_black_human: %d\nhuman_move_validation: %d\nside to move: %s\n\n", is_white_human,
        is_black_human, human_move_validation, console.game->turn == 0 ? "white" : "black");
}

}  // namespace varn
