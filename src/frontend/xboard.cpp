#include "frontend/xboard.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "board/attacks.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/notation.h"
#include "board/output.h"
#include "board/position.h"
#include "frontend/configuration.h"
#include "frontend/input.h"
#include "frontend/numbers.h"
#include "frontend/pondering.h"
#include "frontend/take_back.h"
#include "frontend/time_control.h"
#include "search/clock.h"
#include "search/draws.h"
#include "search/settings.h"
#include "search/think.h"
#include "search/transposition.h"

namespace varn {

namespace {

const char* result_text(GameResult result) {
    switch (result) {
        case GameResult::none: return "";
        case GameResult::black_mates: return "0-1 {Black mates}\n";
        case GameResult::white_mates: return "1-0 {White mates}\n";
        case GameResult::repetition: return "1/2-1/2 {Draw by repetition}\n";
        case GameResult::stalemate: return "1/2-1/2 {Stalemate}\n";
        case GameResult::fifty_moves: return "1/2-1/2 {Draw by 50 move rule}\n";
        case GameResult::insufficient_material: return "1/2-1/2 {Draw by insufficient materal}\n";
        case GameResult::full_record: return "1/2-1/2 {Draw by game length}\n";
    }
    return "";
}

/// Prints the result of a game that is over, or why it can't go on; says whether it is so.
bool announce_end(Game* game) {
    if (!is_playable(game)) {
        say_text(unplayable_text);
        return true;
    }
    const GameResult result = game_result(game);
    say_text(result_text(result));
    return result != GameResult::none;
}

void move_now(Protocol& protocol, Move move) {
    play_move(move, protocol.game.get());
    say("move %s\n", move_text(move).c_str());
}

/// Every new game starts like this; the time control of the last one stands until the next `level`.
void start_game(Protocol& protocol) {
    constexpr std::int32_t no_ply_limit = 99;
    stop_pondering();
    book_enabled = 1;
    ply_limit = no_ply_limit;
    post_thinking = 0;
    predicted_valid = 0;
    protocol.force_mode = false;
    protocol.game = new_game(false);
    set_base_position(*protocol.game);
}

// --- Commands -------------------------------------------------------------------------------------------------------

using Handler = void (*)(Protocol& protocol, std::string_view line);

void ignore(Protocol&, std::string_view) {}

void new_game_command(Protocol& protocol, std::string_view) { start_game(protocol); }

void go(Protocol& protocol, std::string_view) {
    stop_pondering();
    protocol.force_mode = false;
    if (record_is_full(*protocol.game) || !is_playable(protocol.game.get())) {
        announce_end(protocol.game.get());
        return;
    }
    const Move* move = think(protocol.game.get());
    if (move == nullptr) std::exit(0);
    move_now(protocol, *move);
}

void hint(Protocol& protocol, std::string_view) {
    stop_pondering();
    if (announce_end(protocol.game.get())) return;
    say_text("Hint: ");
    const Move move = *think(protocol.game.get());
    print_san(move, protocol.game.get());
    say_text("\n");
}

[[noreturn]] void quit(Protocol& protocol, std::string_view) {
    stop_pondering();
    protocol.game.reset();
    std::exit(0);
}

void force(Protocol& protocol, std::string_view) {
    stop_pondering();
    protocol.force_mode = true;
}

void allow_pondering(Protocol& protocol, std::string_view) { protocol.pondering_enabled = true; }

void forbid_pondering(Protocol& protocol, std::string_view) {
    stop_pondering();
    protocol.pondering_enabled = false;
}

void take_back_one(Protocol& protocol, std::string_view) {
    stop_pondering();
    protocol.game = replay_game(*protocol.game, 1);
}

void take_back_two(Protocol& protocol, std::string_view) {
    stop_pondering();
    protocol.game = replay_game(*protocol.game, 2);
}

void post(Protocol&, std::string_view) { post_thinking = 1; }
void nopost(Protocol&, std::string_view) { post_thinking = 0; }

void limit_depth(Protocol&, std::string_view arguments) {
    if (const auto plies = take_number(arguments)) ply_limit = *plies;
}

void level(Protocol&, std::string_view arguments) { set_level(arguments); }

void time_left(Protocol&, std::string_view arguments) {
    if (const auto centiseconds = take_number(arguments)) allocate_time(*centiseconds);
}

void tell_features(Protocol&, std::string_view arguments) {
    if (take_number(arguments).value_or(0) < 2) return;
    say_text(
        "feature analyse=0\n"
        "feature setboard=0\n"
        "feature myname=\"Varn 0.2\"\n"
        "feature done=1\n");
}

// --- A move of the opponent and the answer --------------------------------------------------------------------------

/// The engine's answer to a move that has just been played; there is a legal one.
Move find_reply(Protocol& protocol, Move move) {
    if (is_ponder_hit(move)) {
        if (const auto reply = take_ponder_result()) return *reply;
    }
    stop_pondering();
    return *think(protocol.game.get());
}

void ponder(const Protocol& protocol) {
    if (!protocol.pondering_enabled) return;
    say_text("pondering enabled\n");
    if (predicted_valid == 0 || book_enabled == 1) return;
    say_text("i am going to try to ponder\n");
    start_pondering(protocol.game.get());
}

/// A line that is no command is taken for a move, whatever it is; an empty one for nothing.
void play_line(Protocol& protocol, std::string_view line) {
    constexpr std::string_view blanks = " \t\n\v\f\r";
    line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
    if (line.empty() || announce_end(protocol.game.get())) return;
    Game* game = protocol.game.get();
    const Move move = parse_move(line.substr(0, line.find_first_of(blanks)), game);
    if (!is_valid_move(game, move)) {
        say("Illegal Move: %s\n", move_text(move).c_str());
        return;
    }
    play_move(move, game);
    if (announce_end(game)) {
        stop_pondering();  // there is nothing left to think about
        return;
    }
    if (protocol.force_mode) return;
    const Move reply = find_reply(protocol, move);
    count_turn();
    move_now(protocol, reply);
    if (!announce_end(game)) ponder(protocol);
}

// --- The table ------------------------------------------------------------------------------------------------------

enum class Match : std::uint8_t { whole_line, beginning };

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
    {"result", Match::beginning, new_game_command},
    {"RESULT", Match::beginning, new_game_command},
    {"protover ", Match::beginning, tell_features},
};

bool fits(const Command& command, std::string_view line) {
    return command.match == Match::whole_line ? line == command.text : line.starts_with(command.text);
}

}  // namespace

GameResult game_result(Game* game) {
    if (!has_legal_move(game)) {
        if (!in_check(game)) return GameResult::stalemate;
        return game->turn == 0 ? GameResult::black_mates : GameResult::white_mates;
    }
    if (game->fifty >= 100) return GameResult::fifty_moves;
    if (insufficient_material(game)) return GameResult::insufficient_material;
    if (is_third_repetition(game)) return GameResult::repetition;
    return record_is_full(*game) ? GameResult::full_record : GameResult::none;
}

Protocol start_protocol(std::unique_ptr<Game> game) {
    xboard_mode = 1;
    post_thinking = 0;
    predicted_valid = 0;
    return {std::move(game), false, pondering_enabled != 0};
}

void xboard_step(Protocol& protocol, std::string_view line) {
    for (const Command& command : commands) {
        if (!fits(command, line)) continue;
        command.handler(protocol, line.substr(command.text.size()));
        return;
    }
    play_line(protocol, line);
}

void xboard_loop(std::unique_ptr<Game> game) {
    end_when_unheard();
    make_tables_real();
    // How a client may ask for attention; between its lines it has it anyway.
    static_cast<void>(std::signal(SIGINT, SIG_IGN));
    Protocol protocol = start_protocol(std::move(game));
    while (const auto line = read_line()) xboard_step(protocol, *line);
    quit(protocol, {});
}

}  // namespace varn
