#include "frontend/game_commands.h"

#include <algorithm>
#include <cctype>
#include <optional>

#include "board/legality.h"
#include "board/make.h"
#include "board/notation.h"
#include "board/output.h"
#include "board/position.h"
#include "board/soundness.h"
#include "frontend/numbers.h"
#include "frontend/show_commands.h"
#include "frontend/take_back.h"
#include "frontend/think_commands.h"
#include "search/settings.h"

namespace varn {

namespace {

bool is_letter(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; }
bool is_rank_digit(char c) { return c >= '1' && c <= '8'; }

/// A letter beyond the board may come out as some square of it.
bool names_squares(std::string_view line) {
    return square_from_text(line) >= 0 && square_from_text(line.substr(2)) >= 0;
}

/// Without validation a person may play what the rules forbid, but nothing that would spoil the record.
bool may_play(Game* game, Move move) {
    return human_move_validation == 1 ? is_valid_move(game, move) : keeps_record_sound(game, move);
}

bool is_human_to_move(const Game& game) { return (game.turn == 0 ? is_white_human : is_black_human) == 1; }

/// How many moves a line takes back: one for the bare word, else the number behind its first word; none where there is
/// no such number.
std::optional<std::int32_t> moves_to_take_back(std::string_view line) {
    constexpr std::size_t bare_word = 5;  // with the newline
    if (line.size() == bare_word) return 1;
    std::string_view number = line.substr(std::min(line.find_first_of(" \t"), line.size()));
    const auto moves = take_number(number);
    return moves && *moves >= 0 ? moves : std::nullopt;
}

}  // namespace

bool is_move_shaped(std::string_view line) {
    if (line.size() != 5 && line.size() != 6) return false;
    if (!is_letter(line[0]) || !is_rank_digit(line[1]) || !is_letter(line[2]) || !is_rank_digit(line[3])) return false;
    return std::string_view("\nqrbn").find(line[4]) != std::string_view::npos;
}

void type_move(Console& console, const CommandLine& line) {
    Game* game = console.game.get();
    if (refuse_unplayable(game)) return;
    const Move move = parse_move(line.whole, game);
    if (!names_squares(line.whole) || !may_play(game, move)) {
        say_text("invalid move.\n");
        return;
    }
    if (!play_move(move, game)) {
        say_text(full_record_text);
        return;
    }
    if (!is_human_to_move(*game)) reply_to_move(game);
}

void start_new_game(Console& console, const CommandLine& line) {
    say_text("reseting game...\n");
    book_enabled = 1;
    console.game = new_game(true);
    set_base_position(*console.game);
    show_game(console, line);
}

void take_back(Console& console, const CommandLine& line) {
    if (const auto moves = moves_to_take_back(line.whole)) {
        console.game = replay_game(*console.game, *moves);
    } else {
        ignore_line(line);
    }
    show_game(console, line);
}

void set_board(Console& console, const CommandLine& line) {
    set_position(console.game.get(), line.rest, KeepTables::no);
    set_base_position(*console.game);
}

void switch_sides(Console& console, const CommandLine&) { pass_turn(console.game.get()); }

}  // namespace varn
