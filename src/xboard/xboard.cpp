#include "xboard/xboard.h"

#include <cstdlib>
#include <optional>

#include "base/output.h"
#include "board/legality.h"
#include "board/notation.h"
#include "board/status.h"
#include "frontend/command_line.h"
#include "frontend/game_report.h"
#include "frontend/input.h"
#include "frontend/numbers.h"
#include "frontend/search_table.h"
#include "frontend/version.h"

namespace varn {

namespace {

std::string_view result_text(GameStatus status, Side turn) {
    switch (status) {
        case GameStatus::goes_on: return "";
        case GameStatus::mate: return turn == Side::white ? "0-1 {Black mates}\n" : "1-0 {White mates}\n";
        case GameStatus::stalemate: return "1/2-1/2 {Stalemate}\n";
        case GameStatus::fifty_moves: return "1/2-1/2 {Draw by 50 move rule}\n";
        case GameStatus::repetition:
        case GameStatus::third_repetition: return "1/2-1/2 {Draw by repetition}\n";
        // Kept: docs/compatibility.md#spelling-of-texts
        case GameStatus::insufficient_material: return "1/2-1/2 {Draw by insufficient materal}\n";
        case GameStatus::full_record: return "1/2-1/2 {Draw by game length}\n";
    }
    return "";
}

/// Prints the result of a finished game, or why it can't continue; returns whether it did.
bool announce_end(const Game& game) {
    if (refuse_unplayable(game)) return true;
    const GameStatus status = protocol_status(game);
    say_text(result_text(status, game.turn));
    return status != GameStatus::goes_on;
}

void stop_pondering(Protocol& protocol) { stop_pondering(protocol.pondering, protocol.engine); }

void move_now(Protocol& protocol, Move move) {
    play_move(*protocol.engine.game, move);
    say("move %s\n", move_text(move).c_str());
}

/// Starts a new game. The time control is kept until the next `level`.
void start_protocol_game(Protocol& protocol) {
    constexpr std::int32_t no_ply_limit = 99;
    stop_pondering(protocol);
    protocol.engine.book_enabled = true;
    protocol.engine.ply_limit = no_ply_limit;
    protocol.engine.search->predicted_move.reset();
    protocol.post_thinking = false;
    protocol.force_mode = false;
    start_game(protocol.engine);
}

// --- Commands -------------------------------------------------------------------------------------------------------

using Handler = void (*)(Protocol& protocol, std::string_view arguments);

// Kept: docs/compatibility.md#commands-that-do-nothing
void ignore(Protocol&, std::string_view) {}

void new_game_command(Protocol& protocol, std::string_view) { start_protocol_game(protocol); }

void go(Protocol& protocol, std::string_view) {
    stop_pondering(protocol);
    protocol.force_mode = false;
    const Game& game = *protocol.engine.game;
    if (record_is_full(game) || !is_playable(game)) {
        announce_end(game);
        return;
    }
    const auto move = choose_move(protocol.engine, game, protocol.listener);
    if (!move) std::exit(0);
    move_now(protocol, *move);
}

void hint(Protocol& protocol, std::string_view) {
    stop_pondering(protocol);
    const Game& game = *protocol.engine.game;
    if (announce_end(game)) return;
    say_text("Hint: ");
    const Move move = *choose_move(protocol.engine, game, protocol.listener);
    say_text(san_column(game, move) + '\n');
}

[[noreturn]] void quit(Protocol& protocol, std::string_view) {
    stop_pondering(protocol);
    std::exit(0);
}

void force(Protocol& protocol, std::string_view) {
    stop_pondering(protocol);
    protocol.force_mode = true;
}

void allow_pondering(Protocol& protocol, std::string_view) { protocol.pondering_enabled = true; }

void forbid_pondering(Protocol& protocol, std::string_view) {
    stop_pondering(protocol);
    protocol.pondering_enabled = false;
}

void take_back_one(Protocol& protocol, std::string_view) {
    stop_pondering(protocol);
    take_back_moves(protocol.engine, 1);
}

void take_back_two(Protocol& protocol, std::string_view) {
    stop_pondering(protocol);
    take_back_moves(protocol.engine, 2);
}

void post(Protocol& protocol, std::string_view) { protocol.post_thinking = true; }
void nopost(Protocol& protocol, std::string_view) { protocol.post_thinking = false; }

void limit_depth(Protocol& protocol, std::string_view arguments) {
    if (const auto plies = take_number(arguments)) protocol.engine.ply_limit = *plies;
}

void level(Protocol& protocol, std::string_view arguments) { set_level(protocol.time_control, arguments); }

/// Also sets the limit of a running pondering search.
void time_left(Protocol& protocol, std::string_view arguments) {
    const auto centiseconds = take_number(arguments);
    if (!centiseconds) return;
    const Allocation allocation = allocate_time(protocol.time_control, *centiseconds);
    restart_clock(protocol.engine.search->clock, allocation.limit_ms);
    say("got time: %lld\nturns left = %d\nallocating %d milliseconds for search.\n",
        static_cast<long long>(allocation.remaining_ms), protocol.time_control.turns_left, allocation.planned_ms);
}

void tell_features(Protocol&, std::string_view arguments) {
    if (take_number(arguments).value_or(0) < 2) return;
    say_text("feature analyse=0\nfeature setboard=0\nfeature myname=\"" + std::string(program_name) +
             "\"\nfeature done=1\n");
}

// --- A move of the opponent and the answer --------------------------------------------------------------------------

/// The engine's reply to a move; there must be a legal one.
Move find_reply(Protocol& protocol, Move move) {
    if (is_ponder_hit(protocol.pondering, move)) {
        if (const auto reply = take_ponder_result(protocol.pondering, protocol.engine)) return *reply;
    }
    stop_pondering(protocol);
    return *choose_move(protocol.engine, *protocol.engine.game, protocol.listener);
}

void ponder(Protocol& protocol) {
    if (!protocol.pondering_enabled) return;
    say_text("pondering enabled\n");
    if (!protocol.engine.search->predicted_move || protocol.engine.book_enabled) return;
    say_text("i am going to try to ponder\n");
    start_pondering(protocol.pondering, protocol.engine, protocol.listener);
}

/// Any other line is taken as a move; an empty one is ignored.
void play_line(Protocol& protocol, std::string_view line) {
    Game& game = *protocol.engine.game;
    const std::string_view word = take_word(line);
    if (word.empty() || announce_end(game)) return;
    const Move move = parse_move(game, word);
    if (!is_valid_move(game, move)) {
        say("Illegal Move: %s\n", move_text(move).c_str());
        return;
    }
    play_move(game, move);
    if (announce_end(game)) {
        stop_pondering(protocol);  // the game is over
        return;
    }
    if (protocol.force_mode) return;
    const Move reply = find_reply(protocol, move);
    count_turn(protocol.time_control);
    move_now(protocol, reply);
    if (!announce_end(game)) ponder(protocol);
}

// --- The table ------------------------------------------------------------------------------------------------------

struct Command {
    std::string_view text;
    Match match;
    Handler handler;
};

constexpr Command commands[] = {
    {"new\n", Match::whole_line, new_game_command},
    {"computer\n", Match::whole_line, ignore},
    {"hard\n", Match::whole_line, allow_pondering},
    {"?\n", Match::whole_line, ignore},
    {"rating\n", Match::whole_line, ignore},
    {"go\n", Match::whole_line, go},
    {"white\n", Match::whole_line, ignore},
    {"black\n", Match::whole_line, ignore},
    {"easy\n", Match::whole_line, forbid_pondering},
    {"quit\n", Match::whole_line, quit},
    {"random\n", Match::whole_line, ignore},
    {"force\n", Match::whole_line, force},
    {"hint\n", Match::whole_line, hint},
    {"remove\n", Match::whole_line, take_back_two},
    {"post\n", Match::whole_line, post},
    {"nopost\n", Match::whole_line, nopost},
    {"sd ", Match::beginning, limit_depth},
    {"undo\n", Match::whole_line, take_back_one},
    {"level ", Match::beginning, level},
    {"time ", Match::beginning, time_left},
    {"otim ", Match::beginning, ignore},
    {"accepted", Match::beginning, ignore},
    {"rejected", Match::beginning, ignore},
    {"name ", Match::beginning, ignore},
    // Kept: docs/compatibility.md#result-starts-a-new-game
    {"result", Match::beginning, new_game_command},
    {"RESULT", Match::beginning, new_game_command},
    {"protover ", Match::beginning, tell_features},
};

}  // namespace

GameStatus protocol_status(const Game& game) {
    return status_of(game, {GameStatus::mate, GameStatus::stalemate, GameStatus::fifty_moves,
                            GameStatus::insufficient_material, GameStatus::third_repetition, GameStatus::full_record});
}

Protocol::Protocol(Engine& its_engine)
    : engine(its_engine), pondering_enabled(its_engine.configuration.pondering_enabled != 0) {
    engine.search->predicted_move.reset();
    listener.line_improved = [this](const SearchReport& report) {
        if (post_thinking) print_search_line(report, QuiescentColumn::left_out);
    };
    listener.iteration_finished = listener.line_improved;
}

void xboard_step(Protocol& protocol, std::string_view line) {
    for (const Command& command : commands) {
        if (!fits(line, command.text, command.match)) continue;
        command.handler(protocol, line.substr(command.text.size()));
        return;
    }
    play_line(protocol, line);
}

void xboard_loop(Engine& engine) {
    exit_when_reader_gone();
    prefault_tables(engine.search->tables);
    Protocol protocol(engine);
    while (const auto line = read_line()) xboard_step(protocol, *line);
    quit(protocol, {});
}

}  // namespace varn
