// Solves king and pawn against king, and anneals and checks its files, all in the working directory.
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/file.h"
#include "base/number.h"
#include "board/zobrist.h"
#include "kpk_check.h"
#include "patterns/anneal.h"
#include "patterns/kpk_solver.h"
#include "patterns/pattern_files.h"

namespace varn {
namespace {

constexpr const char* usage =
    "usage: kpk_bitbase [anneal MOVES | check]\n"
    "kpk_bitbase                 writes kpkbb: all placements with white to move, 1 if white wins, 0 for a draw\n"
    "kpk_bitbase anneal MOVES    writes wkpk.eb from kpkbb like the console, with this number of moves\n"
    "kpk_bitbase check           checks that the boxes of wkpk.eb contain exactly the draws of kpkbb\n";

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

bool anneal(std::uint64_t moves) {
    AnnealRun run;
    anneal_kpk(
        run, *new_game(), [](const PositionRemarks&) {}, moves);
    return run.list != nullptr && run.is_written;
}

bool run(std::span<const std::string_view> arguments) {
    draw_hash_numbers(1);
    const std::string_view task = arguments.empty() ? "" : arguments[0];
    if (arguments.empty()) return write_bitbase();
    if (arguments.size() == 1 && task == "check") return check();
    if (arguments.size() == 1 && task == "--help") return std::fputs(usage, stdout) >= 0;
    const auto moves =
        arguments.size() == 2 && task == "anneal" ? read_number<std::uint64_t>(arguments[1]) : std::nullopt;
    if (moves) return anneal(*moves);
    static_cast<void>(
        std::fputs("kpk_bitbase: expects nothing, `check`, or `anneal` with a number of moves; see --help\n", stderr));
    return false;
}

}  // namespace
}  // namespace varn

int main(int argument_count, char** arguments) {
    const std::vector<std::string_view> given(arguments + 1, arguments + argument_count);
    return varn::run(given) ? 0 : 1;
}
