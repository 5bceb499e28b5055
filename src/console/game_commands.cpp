#include "console/game_commands.h"

#include <cctype>
#include <optional>

#include "base/output.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/notation.h"
#include "board/soundness.h"
#include "console/show_commands.h"
#include "console/think_commands.h"
#include "frontend/command_line.h"
#include "frontend/game_report.h"
#include "frontend/numbers.h"

namespace varn {

namespace {

bool is_letter(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; }
bool is_rank_digit(char c) { return c >= '1' && c <= '8'; }

/// Files continue beyond h into the rank below, so that "i3i5" is a2a4. Without validation illegal moves are allowed,
/// but none that would corrupt the game, and no wrapped squares, which are hardly intended.
bool may_play(const Console& console, std::string_view text, Move move) {
    const Game& game = *console.engine.game;
    if (console.human_move_validation) return is_valid_move(game, move);
    return names_two_squares(text) && keeps_record_sound(game, move);
}

bool is_human_to_move(const Console& console) {
    return console.engine.game->turn == Side::white ? console.is_white_human : console.is_black_human;
}

/// Number of moves to take back: one for the bare word, else the number after it; none if it is unreadable.
std::optional<std::int32_t> moves_to_take_back(std::string_view line) {
    constexpr std::size_t bare_word = 5;  // with the newline
    if (line.size() == bare_word) return 1;
    take_word(line);
    const auto moves = take_number(line);
    return moves && *moves >= 0 ? moves : std::nullopt;
}

}  // namespace

bool is_move_shaped(std::string_view line) {
    if (line.size() != 5 && line.size() != 6) return false;
    if (!is_letter(line[0]) || !is_rank_digit(line[1]) || !is_letter(line[2]) || !is_rank_digit(line[3])) return false;
    return std::string_view("\nqrbn").find(line[4]) != std::string_view::npos;
}

void type_move(Console& console, const CommandLine& line) {
    Game& game = *console.engine.game;
    if (refuse_unplayable(game)) return;
    const Move move = parse_move(game, line.whole);
    if (!may_play(console, line.whole, move)) {
        say_text("invalid move.\n");
        return;
    }
    if (!play_move(game, move)) {
        say_text(full_record_text);
        return;
    }
    if (!is_human_to_move(console)) reply_to_move(console);
}

void start_new_game(Console& console, const CommandLine& line) {
    // Kept: docs/compatibility.md#spelling-of-texts
    say_text("reseting game...\n");
    console.engine.book_enabled = true;
    allocate_tables(console.engine);
    start_game(console.engine);
    show_game(console, line);
}

void take_back(Console& console, const CommandLine& line) {
    if (const auto moves = moves_to_take_back(line.whole)) {
        take_back_moves(console.engine, *moves);
    } else {
        ignore_line(line);
    }
    show_game(console, line);
}

void set_board(Console& console, const CommandLine& line) { set_game_position(console.engine, line.rest); }

void switch_sides(Console& console, const CommandLine&) { pass_turn(console.engine); }

}  // namespace varn
