#include "console/console.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <limits>
#include <string>

#include "base/output.h"
#include "console/check_commands.h"
#include "console/game_commands.h"
#include "console/pattern_commands.h"
#include "console/setting_commands.h"
#include "console/show_commands.h"
#include "console/think_commands.h"
#include "frontend/command_line.h"
#include "frontend/input.h"
#include "frontend/search_table.h"
#include "xboard/xboard.h"

namespace varn {

namespace {

// Kept: docs/compatibility.md#commands-that-do-nothing
void do_nothing(Console&, const CommandLine&) {}

[[noreturn]] void quit(Console& console, const CommandLine&) { std::exit(settle_patterns(console.patterns) ? 0 : 1); }

[[noreturn]] void speak_xboard(Console& console, const CommandLine&) {
    // Clients may send SIGINT to get attention; input is read anyway. It may arrive at once, so this comes first.
    static_cast<void>(std::signal(SIGINT, SIG_IGN));
    settle_patterns(console.patterns);  // doesn't return to the console
    say_text("\n");
    xboard_loop(console.engine);
}

void list_commands(Console& console, const CommandLine& line);
void list_debug_commands(Console& console, const CommandLine& line);

// --- The table of commands ------------------------------------------------------------------------------------------

enum class Listing : std::uint8_t { none, help, debug };
using enum Match;
using enum Listing;

/// A command: how it is recognised, where it is listed, its handler and its help lines. The order matters only for the
/// listings. The row without text is a typed move, recognised by its shape.
struct Command {
    std::string_view text;
    Match match;
    Listing listing;
    void (*run)(Console& console, const CommandLine& line);
    std::string_view lines = {};
};

constexpr Command commands[] = {
    {"new\n", whole_line, help, start_new_game, "new                   resets game\n"},
    {"show\n", whole_line, help, show_game, "show                  shows the board in ascii\n"},
    // Kept: docs/compatibility.md#spelling-of-texts
    {"moves\n", whole_line, help, list_moves, "moves                 lists all pseudo-legal moves\n"},
    {"go\n", whole_line, help, do_nothing, "go                    force AI to play this color and make a move\n"},
    {"sides\n", whole_line, help, switch_sides, "sides                 switches whose go it is\n"},
    {"pvp\n", whole_line, help, make_both_human, "pvp                   makes the game human vs human\n"},
    {"", whole_line, help, type_move, "e2e4                  makes a move in that format (use e7e8q for promotions)\n"},
    {"tstats\n", whole_line, help, show_hash_stats, "tstats                shows transposition table information\n"},
    {"history\n", whole_line, help, list_history, "history               displays the game history\n"},
    {"back", beginning, help, take_back,
     "back                  moves the position back one.\n"
     "back n                moves the position back n positions.\n"},
    {"captures\n", whole_line, help, list_captures, "captures              lists all the pseudo-legal captures.\n"},
    {"flags\n", whole_line, help, show_flags, "flags                 shows the status of all the game flags.\n"},
    {"valid\n", whole_line, help, toggle_validation,
     "valid                 toggles human move validation on and off.\n"},
    {"debug\n", whole_line, help, list_debug_commands, "debug                 displays the debugging commands.\n"},
    {"reps\n", whole_line, help, do_nothing,
     "reps                  displays how many times this position has\n"
     // Kept: docs/compatibility.md#spelling-of-texts
     "                          occured in the game.\n"},
    {"ply ", beginning, help, set_ply_limit, "ply n                 sets how far the ai will scan ahead.\n"},
    {"cvc\n", whole_line, help, play_itself, "cvc                   makes the engine play itself.\n"},

    {"w_pieces\n", whole_line, debug, show_bitboard<&Game::w_pieces>,
     "w_pieces              show the white pieces bitboard.\n"},
    {"b_pieces\n", whole_line, debug, show_bitboard<&Game::b_pieces>,
     "b_pieces              show the black pieces bitboard.\n"},
    {"w_king\n", whole_line, debug, show_bitboard<&Game::w_king>,
     "w_king                show the white king bitboard.\n"},
    {"b_king\n", whole_line, debug, show_bitboard<&Game::b_king>,
     "b_king                show the black king bitboard.\n"},
    {"w_queens\n", whole_line, debug, show_bitboard<&Game::w_queens>,
     "w_queens              show the white queens bitboard.\n"},
    {"b_queens\n", whole_line, debug, show_bitboard<&Game::b_queens>,
     "b_queens              show the black queens bitboard.\n"},
    {"w_rooks\n", whole_line, debug, show_bitboard<&Game::w_rooks>,
     "w_rooks               show the white rooks bitboard.\n"},
    {"b_rooks\n", whole_line, debug, show_bitboard<&Game::b_rooks>,
     "b_rooks               show the black rooks bitboard.\n"},
    {"w_bishops\n", whole_line, debug, show_bitboard<&Game::w_bishops>,
     "w_bishops             show the white bishops bitboard.\n"},
    {"b_bishops\n", whole_line, debug, show_bitboard<&Game::b_bishops>,
     "b_bishops             show the black bishops bitboard.\n"},
    {"w_knights\n", whole_line, debug, show_bitboard<&Game::w_knights>,
     "w_knights             show the white knights bitboard.\n"},
    {"b_knights\n", whole_line, debug, show_bitboard<&Game::b_knights>,
     "b_knights             show the black knights bitboard.\n"},
    {"w_pawns\n", whole_line, debug, show_bitboard<&Game::w_pawns>,
     "w_pawns               show the white pawns bitboard.\n"},
    {"b_pawns\n", whole_line, debug, show_bitboard<&Game::b_pawns>,
     "b_pawns               show the black pawns bitboard.\n"},
    {"enpassant\n", whole_line, debug, show_bitboard<&Game::enpassant>,
     "enpassant             show the enpassant bitboard.\n"},
    {"cells\n", whole_line, debug, show_cells, "cells                 displays the board using the 2d array.\n"},
    {"showhash\n", whole_line, debug, show_draw_hash,
     "showhash              shows the information in the draw hash.\n"},
    {"bking_sqr\n", whole_line, debug, show_black_king_square, "bking_sqr             shows the black king square.\n"},
    {"wking_sqr\n", whole_line, debug, show_white_king_square, "wking_sqr             shows the white king square.\n"},

    {"help\n", whole_line, none, list_commands},
    {"quit\n", whole_line, none, quit},
    {"exit\n", whole_line, none, quit},
    {"time ", beginning, none, set_time_limit},
    {"hint\n", whole_line, none, give_hint},
    {"setboard ", beginning, none, set_board},
    {"epd\n", whole_line, none, show_position_text},
    {"eval\n", whole_line, none, show_evaluation},
    {"evalpawns\n", whole_line, none, show_pawn_evaluation},
    {"keval\n", whole_line, none, show_king_safety},
    // Kept: docs/compatibility.md#abbreviated-commands
    {"ksaf", beginning, none, show_attack_evaluation},
    {"control", beginning, none, show_square_control},
    {"attacks", beginning, none, show_attackers},
    {"testsee\n", whole_line, none, show_exchanges},
    {"w_material\n", whole_line, none, show_white_material},
    {"b_material\n", whole_line, none, show_black_material},
    {"perft ", beginning, none, count_moves},
    {"advperft ", beginning, none, count_picked_moves},
    {"runs", beginning, none, run_test_suite},
    {"nm\n", whole_line, none, search_fixed_depth},
    {"kpk\n", whole_line, none, print_placements},
    {"kpkbb\n", whole_line, none, anneal_placements},
    {"xboard\n", whole_line, none, speak_xboard},
};

/// Whether a line could match two rows: one would hide the other.
constexpr bool rows_overlap() {
    for (const Command& command : commands) {
        for (const Command& other : commands) {
            const bool covers = command.match == beginning ? other.text.starts_with(command.text)
                                                           : other.match == whole_line && other.text == command.text;
            if (&command != &other && covers) return true;
        }
    }
    return false;
}
static_assert(!rows_overlap());

bool fits(const Command& command, std::string_view line) {
    return command.text.empty() ? is_move_shaped(line) : fits(line, command.text, command.match);
}

std::string help_lines(Listing listing) {
    std::string text = "Command:              Action:\n";
    for (const Command& command : commands) {
        if (command.listing == listing) text += command.lines;
    }
    return text;
}

void list_commands(Console&, const CommandLine&) {
    const std::string rule = "----------------------------------------------------\n";
    say_text(rule + help_lines(help) + rule + '\n');
}

void list_debug_commands(Console&, const CommandLine&) { say_text(help_lines(debug) + '\n'); }

}  // namespace

void ignore_line(const CommandLine& line) { say_text("ignoring line:\t" + std::string(line.whole)); }

Console start_console(Engine& engine) {
    SearchListener listener;
    listener.search_started = [] {
        say_text("\n ply   score    time      nodes     quiescent nodes     principal variation\n\n");
    };
    listener.line_improved = [](const SearchReport& report) { print_search_line(report, QuiescentColumn::shown); };
    listener.iteration_finished = listener.line_improved;
    listener.search_finished = [](double nodes_per_second) {
        constexpr double highest = std::numeric_limits<std::int32_t>::max();
        say("\nNPS: %d\n\n", static_cast<std::int32_t>(std::min(nodes_per_second, highest)));
    };
    return {engine, listener};
}

void console_step(Console& console) {
    say_text("Varn> ");
    const auto line = read_line();
    if (!line) quit(console, {});
    for (const Command& command : commands) {
        if (!fits(command, *line)) continue;
        command.run(console, {*line, std::string_view(*line).substr(command.text.size())});
        return;
    }
    ignore_line({*line, {}});
}

void console_loop(Engine& engine) {
    Console console = start_console(engine);
    for (;;) console_step(console);
}

}  // namespace varn
