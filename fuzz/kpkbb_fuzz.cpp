// Input files of the pattern tool, followed by some annealing moves.
#include "frame.h"
#include "frontend/engine.h"
#include "patterns/anneal.h"

void run_input(std::string_view input) {
    constexpr std::uint64_t few_moves = 2000;
    varn::write_file("kpkbb", input);
    const auto game = varn::new_game();
    varn::AnnealRun run;
    varn::anneal_kpk(run, *game, varn::print_remarks, few_moves);
}
