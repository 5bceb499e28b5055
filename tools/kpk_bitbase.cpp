// Solves king and pawn against king, and looks after the files of the annealing, all in the working directory.
//
// Usage:
//   kpk_bitbase                 writes kpkbb: every placement with white to move, 1 for a win of white, 0 for a draw
//   kpk_bitbase anneal MOVES    makes wkpk.eb from kpkbb as the console does, with so many moves
//   kpk_bitbase check           tells whether the boxes of wkpk.eb hold exactly the draws of kpkbb
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "board/zobrist.h"
#include "kpk_check.h"
#include "patterns/anneal.h"
#include "patterns/kpk_solver.h"
#include "patterns/pattern_files.h"

namespace varn {
namespace {

bool write_bitbase() {
    const auto wins = solve_kpk();
    std::string text;
    for (const Placement placement : kpk_placements()) {
        text += placement_text(placement) + (wins->white_to_move[kpk_index(placement)] ? "\t1\n" : "\t0\n");
    }
    if (write_whole_file(positions_file_name, text)) return true;
    std::printf("can't write %s\n", positions_file_name);
    return false;
}

bool check() {
    const auto game = new_game();
    const auto positions = load_positions(positions_file_name, *game, [](const PositionRemarks&) {});
    if (!positions) std::printf("can't open %s\n", positions_file_name);
    return positions && covers_exactly(patterns_file_name, positions->drawn);
}

bool run(std::string_view task, const char* moves) {
    draw_hash_numbers(1);
    if (task.empty()) return write_bitbase();
    if (task == "check") return check();
    if (task == "anneal" && moves != nullptr) {
        AnnealRun run;
        anneal_kpk(
            run, *new_game(), [](const PositionRemarks&) {}, std::strtoull(moves, nullptr, 10));
        return run.list != nullptr && run.is_written;
    }
    std::printf("usage: kpk_bitbase [anneal MOVES | check]\n");
    return false;
}

}  // namespace
}  // namespace varn

int main(int argument_count, char** arguments) {
    const char* task = argument_count > 1 ? arguments[1] : "";
    return varn::run(task, argument_count > 2 ? arguments[2] : nullptr) ? 0 : 1;
}
