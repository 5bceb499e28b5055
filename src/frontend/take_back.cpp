#include "frontend/take_back.h"

#include <algorithm>
#include <vector>

#include "board/make.h"
#include "board/zobrist.h"

namespace varn {

namespace {

// Of the present game.
Game base_position;
std::vector<int> passes;  // ascending: how many moves had been played when the turn was passed

void switch_turn(Game* game) {
    game->turn ^= 1U;
    game->zobrist_key ^= zobrist_side_number;
}

}  // namespace

void set_base_position(const Game& game) {
    base_position = game;
    passes.clear();
}

void pass_turn(Game* game) {
    switch_turn(game);
    if (!passes.empty() && passes.back() == game->move_counter) {
        passes.pop_back();  // there and back again
    } else {
        passes.push_back(game->move_counter);
    }
}

std::unique_ptr<Game> replay_game(const Game& game, int taken_back) {
    const int kept = std::max(0, game.move_counter - std::max(0, taken_back));
    std::erase_if(passes, [kept](int moves_before) { return moves_before >= kept; });
    auto replayed = new_game(false);
    *replayed = base_position;
    for (int i = 0; i < kept; ++i) {
        if (std::ranges::binary_search(passes, i)) switch_turn(replayed.get());
        play_move(game.game_moves[i], replayed.get());
    }
    return replayed;
}

}  // namespace varn
