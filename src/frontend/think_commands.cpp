#include "frontend/think_commands.h"

#include "board/legality.h"
#include "board/make.h"
#include "board/notation.h"
#include "board/output.h"
#include "board/report.h"
#include "search/draws.h"
#include "search/settings.h"
#include "search/think.h"

namespace varn {

namespace {

/// Prints the result of a game whose side to move has no legal move; returns whether it is so.
bool announce_mate_or_stalemate(Game* game) {
    if (has_legal_move(game)) return false;
    say_text(game_status_text(game));
    return true;
}

/// How the game ended, one line; empty while it goes on.
std::string_view result_text(Game* game) {
    if (game_status_score(game) != 1) return game_status_text(game);
    if (insufficient_material(game)) return "Draw by insufficient material.\n";
    if (is_third_repetition(game)) return "Draw by repetition.\n";
    if (record_is_full(*game)) return "Draw by game length.\n";
    return "";
}

}  // namespace

void reply_to_move(Game* game) {
    if (announce_mate_or_stalemate(game)) return;
    if (record_is_full(*game)) {
        say_text(full_record_text);
        return;
    }
    say_text("thinking...\n");
    const Move reply = *think(game);
    say("my move is: %s\n\n", move_text(reply).c_str());
    play_move(reply, game);
}

void give_hint(Console& console, const CommandLine&) {
    Game* game = console.game.get();
    if (refuse_unplayable(game) || announce_mate_or_stalemate(game)) return;
    const std::int32_t book_before = book_enabled;
    book_enabled = 0;
    const Move move = *think(game);
    book_enabled = book_before;
    say_text("I recommend: ");
    print_san(move, game);
    say(" (%s)\n\n", move_text(move).c_str());
}

void play_itself(Console& console, const CommandLine&) {
    Game* game = console.game.get();
    if (refuse_unplayable(game)) return;
    is_white_human = is_black_human = 0;
    std::string_view result = result_text(game);
    for (int turn = 1; result.empty(); ++turn) {
        const Move move = *think(game);
        say("Turn %d: my move is: %s\n\n", turn, move_text(move).c_str());
        play_move(move, game);
        result = result_text(game);
    }
    say_text(result);
}

void search_fixed_depth(Console& console, const CommandLine&) {
    constexpr int depth = 7;
    if (refuse_unplayable(console.game.get())) return;
    main_pv = {};
    say("score is: %d\n", search(console.game.get(), -mate_score, mate_score, depth, root_frame, &main_pv));
}

}  // namespace varn
