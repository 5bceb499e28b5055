// The input of the pattern tool, and some moves of its annealing.
#include "board/game.h"
#include "frame.h"
#include "patterns/anneal.h"

void run_input(std::string_view input) {
    constexpr std::uint64_t few_moves = 2000;
    varn::write_file("kpkbb", input);
    auto game = varn::new_game(false);
    varn::anneal_kpk(game.get(), few_moves);
}
