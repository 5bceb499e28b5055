// What the tests of the search share: a search as at the start of the process, but with small tables, and positions
// reached by moves.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>

#include "board/notation.h"
#include "positions.h"
#include "search/clock.h"
#include "search/ordering.h"
#include "search/search.h"
#include "search/settings.h"
#include "search/transposition.h"

namespace varn {

/// Empty tables of 65535 and 26214 entries, no killers, no output but by request, a clock that runs and never ends.
class SearchTest : public testing::Test {
protected:
    SearchTest() : hooks_before_(reset_hooks) {
        install_reset_hooks();
        hash_bits = 16;
        qhash_bytes = 1 << 20;
        new_game(true);
        killer_one = killer_two = {};
        killer_one_piece = killer_two_piece = {};
        main_pv = {};
        null_move_at = {};
        book_enabled = 0;
        xboard_mode = 1;
        post_thinking = 0;
        ply_limit = 50;
        iteration_depth = 1;
        time_limit_ms = 1 << 30;
        nodes = quiescent_nodes = 0;
        start_clock();
    }
    ~SearchTest() override { reset_hooks = hooks_before_; }

private:
    ResetHooks hooks_before_;
};

/// A position and the moves played from it, in coordinate form.
inline std::unique_ptr<Game> game_after(std::string_view text, std::initializer_list<const char*> moves) {
    auto game = game_from(text);
    for (const char* move : moves) play_move(parse_move(move, game.get()), game.get());
    return game;
}

inline std::unique_ptr<Game> after(const Game& game, Move move) {
    auto child = std::make_unique<Game>(game);
    make_move(child.get(), move);
    return child;
}

inline bool contains(const std::vector<Move>& moves, Move move) {
    return std::ranges::find(moves, move) != moves.end();
}

}  // namespace varn
