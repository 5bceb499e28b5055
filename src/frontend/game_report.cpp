#include "frontend/game_report.h"

#include <cstdlib>

#include "base/output.h"
#include "board/report.h"

namespace varn {

GameStatus console_status(const Game& game) {
    return status_of(game, {GameStatus::fifty_moves, GameStatus::mate, GameStatus::stalemate});
}

std::string_view status_text(GameStatus status, Side turn) {
    switch (status) {
        case GameStatus::goes_on: return "Game is in progress.\n";
        case GameStatus::mate:
            return turn == Side::white ? "White is Checkmated. Black wins.\n" : "Black is Checkmated. White wins.\n";
        // Kept: docs/compatibility.md#one-word-for-two-draws
        case GameStatus::stalemate:
        case GameStatus::fifty_moves: return "Stalemate.\n";
        case GameStatus::insufficient_material: return "Draw by insufficient material.\n";
        case GameStatus::repetition:
        case GameStatus::third_repetition: return "Draw by repetition.\n";
        case GameStatus::full_record: return "Draw by game length.\n";
    }
    return "";
}

void print_board(const Game& game, WhenOver when_over) {
    say_text(board_text(game));
    if (!refuse_unplayable(game)) {
        const GameStatus status = console_status(game);
        say_text(status_text(status, game.turn));
        if (status != GameStatus::goes_on && when_over == WhenOver::end_process) std::exit(0);
    }
    say_text("\n");
}

void print_cells(const Game& game) { say_text(cells_text(game)); }

bool refuse_unplayable(const Game& game) {
    if (is_playable(game)) return false;
    say_text(unplayable_text);
    return true;
}

}  // namespace varn
