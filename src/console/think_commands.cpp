#include "console/think_commands.h"

#include "base/output.h"
#include "board/notation.h"
#include "frontend/game_report.h"

namespace varn {

namespace {

/// Prints the result if the side to move has no legal move; returns whether it did.
bool announce_mate_or_stalemate(const Game& game) {
    if (status_of(game, {GameStatus::mate, GameStatus::stalemate}) == GameStatus::goes_on) return false;
    say_text(status_text(console_status(game), game.turn));
    return true;
}

/// The result of a self-play game; includes the draws that must be claimed.
GameStatus result_of(const Game& game) {
    const GameStatus status = console_status(game);
    if (status != GameStatus::goes_on) return status;
    return status_of(game, {GameStatus::insufficient_material, GameStatus::third_repetition, GameStatus::full_record});
}

/// Needs a legal move.
Move think_of_move(Console& console) { return *choose_move(console.engine, *console.engine.game, console.listener); }

}  // namespace

void reply_to_move(Console& console) {
    Game& game = *console.engine.game;
    if (announce_mate_or_stalemate(game)) return;
    if (record_is_full(game)) {
        say_text(full_record_text);
        return;
    }
    say_text("thinking...\n");
    const Move reply = think_of_move(console);
    say("my move is: %s\n\n", move_text(reply).c_str());
    play_move(game, reply);
}

void give_hint(Console& console, const CommandLine&) {
    const Game& game = *console.engine.game;
    if (refuse_unplayable(game) || announce_mate_or_stalemate(game)) return;
    const bool book_before = console.engine.book_enabled;
    console.engine.book_enabled = false;
    const Move move = think_of_move(console);
    console.engine.book_enabled = book_before;
    say("I recommend: %s (%s)\n\n", san_column(game, move).c_str(), move_text(move).c_str());
}

void play_itself(Console& console, const CommandLine&) {
    Game& game = *console.engine.game;
    if (refuse_unplayable(game)) return;
    console.is_white_human = console.is_black_human = false;
    GameStatus status = result_of(game);
    for (int turn = 1; status == GameStatus::goes_on; ++turn) {
        const Move move = think_of_move(console);
        say("Turn %d: my move is: %s\n\n", turn, move_text(move).c_str());
        play_move(game, move);
        status = result_of(game);
    }
    say_text(status_text(status, game.turn));
}

void search_fixed_depth(Console& console, const CommandLine&) {
    constexpr int depth = 7;
    if (refuse_unplayable(*console.engine.game)) return;
    Search& s = *console.engine.search;
    s.main_pv = {};
    s.listener = &console.listener;
    const int score = search(s, *console.engine.game, -mate_score, mate_score, depth, root_frame, s.main_pv);
    s.listener = nullptr;
    say("score is: %d\n", score);
}

}  // namespace varn
