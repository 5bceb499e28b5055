#include "uci/uci.h"

#include <cstdio>
#include <string>
#include <utility>

#include "base/output.h"
#include "board/fen.h"
#include "board/notation.h"
#include "board/report.h"
#include "frontend/command_line.h"
#include "frontend/input.h"
#include "frontend/version.h"
#include "uci/info.h"

namespace varn {

namespace {

// --- The game -------------------------------------------------------------------------------------------------------

/// Drops positions that can't be repeated, so that games of any length fit.
void play_on(Uci& uci, Move move) {
    Game& game = *uci.game;
    if (game.draw_hash_count > max_game_moves) drop_old_keys(game);
    make_and_push(game, move);
    add_game_move(game, move);
    ++uci.plies_played;
}

/// Plays the moves of a `position` line up to the first illegal one.
void play_moves(Uci& uci, std::string_view moves) {
    for (std::string_view word = take_word(moves); !word.empty(); word = take_word(moves)) {
        const auto move = read_move(*uci.game, word);
        if (!move) return say_info("illegal move: " + std::string(word));
        play_on(uci, *move);
    }
}

void set_position_command(Uci& uci, std::string_view arguments) {
    const std::string_view kind = take_word(arguments);
    const std::string_view text = take_before(arguments, "moves");
    if (kind != "startpos" && kind != "fen") return say_info("a position is startpos or fen");
    FenReading reading = read_fen(kind == "fen" ? text : start_fen);
    if (reading.game == nullptr) return say_info("position refused: " + reading.fault);
    uci.game = std::move(reading.game);
    uci.first_move_number = reading.move_number;
    uci.plies_played = 0;
    uci.from_start = kind == "startpos";
    play_moves(uci, arguments);
}

// --- Other commands -------------------------------------------------------------------------------------------------

void tell_identity(Uci&, std::string_view) {
    say_text("id name " + std::string(program_name) + "\nid author the Varn developers\n\n" + options_text() +
             "uciok\n");
}

void set_debug(Uci& uci, std::string_view arguments) {
    const std::string_view word = take_word(arguments);
    if (word == "on" || word == "off") uci.debug = word == "on";
}

/// Prefaults the tables now, while no clock runs.
void say_ready(Uci& uci, std::string_view) {
    if (!uci.job.thread.is_active) prefault_tables(uci.search->tables);
    say_text("readyok\n");
}

void start_new_game(Uci& uci, std::string_view) {
    finish_search(uci);
    reset_search(*uci.search);
}

void stop_command(Uci& uci, std::string_view) { stop(uci); }
void ponder_hit_command(Uci& uci, std::string_view) { ponder_hit(uci); }

void show_position(Uci& uci, std::string_view) {
    const Game& game = *uci.game;
    // If black moved first the number increases after black's first move.
    const bool black_began = (uci.plies_played % 2 == 0) == (game.turn == Side::black);
    const int number = uci.first_move_number + (uci.plies_played + (black_began ? 1 : 0)) / 2;
    say_text('\n' + diagram_text(game) + "\nFen: " + fen_text(game, number) + '\n');
}

std::string in_pawns(int centipawns) {
    char text[16];
    static_cast<void>(std::snprintf(text, sizeof text, "%+.2f", centipawns / 100.0));
    return text;
}

std::string evaluation_row(std::string_view name, const std::string& white, const std::string& black,
                           const std::string& total) {
    char row[80];
    static_cast<void>(std::snprintf(row, sizeof row, "%-20.*s %9s %9s %9s\n", static_cast<int>(name.size()),
                                    name.data(), white.c_str(), black.c_str(), total.c_str()));
    return row;
}

void show_evaluation(Uci& uci, std::string_view) {
    std::string text = evaluation_row("term", "white", "black", "total");
    int white = 0;
    int black = 0;
    for (const EvalTerm& term : evaluation_terms(*uci.game, uci.eval)) {
        text +=
            evaluation_row(term.name, in_pawns(term.white), in_pawns(term.black), in_pawns(term.white - term.black));
        white += term.white;
        black += term.black;
    }
    text += evaluation_row("sum", in_pawns(white), in_pawns(black), in_pawns(white - black));
    say_text('\n' + text + "\nin pawns, from white's point of view\n");
}

// --- The table ------------------------------------------------------------------------------------------------------

struct Command {
    std::string_view word;
    void (*run)(Uci& uci, std::string_view arguments);
};

constexpr Command commands[] = {
    {"uci", tell_identity},
    {"debug", set_debug},
    {"isready", say_ready},
    {"setoption", set_option},
    {"ucinewgame", start_new_game},
    {"position", set_position_command},
    {"go", go},
    {"stop", stop_command},
    {"ponderhit", ponder_hit_command},
    {"d", show_position},
    {"eval", show_evaluation},
    {"perft", count_by_move},
};

const Command* command_of(std::string_view word) {
    for (const Command& command : commands) {
        if (command.word == word) return &command;
    }
    return nullptr;
}

}  // namespace

bool start_uci(Uci& uci) { return allocate_tables(*uci.search, {}) == TableFault::none; }

// Unknown words before a command are ignored, as UCI demands.
bool uci_step(Uci& uci, std::string_view line) {
    for (std::string_view word = take_word(line); !word.empty(); word = take_word(line)) {
        if (word == "quit") return false;
        if (const Command* command = command_of(word)) {
            command->run(uci, line);
            return true;
        }
    }
    return true;
}

void uci_loop(Uci& uci) {
    while (const auto line = read_whole_line()) {
        if (line->is_too_long) {
            say_info("a line was too long to be read");
        } else if (!uci_step(uci, line->text)) {
            break;
        }
    }
    finish_search(uci);
}

}  // namespace varn
