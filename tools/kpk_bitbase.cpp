// Solves king and pawn against king.
//
// Usage: kpk_bitbase          writes the file kpkbb in the working directory: a line for every placement with white to
//                             move, with the result 1 where white wins and 0 where it is a draw
#include <cstdio>
#include <string>

#include "patterns/kpk_solver.h"

namespace varn {
namespace {

int write_bitbase(const char* file_name) {
    const auto wins = solve_kpk();
    std::string text;
    for (const Placement placement : kpk_placements()) {
        text += placement_text(placement) + (wins->white_to_move[kpk_index(placement)] ? "\t1\n" : "\t0\n");
    }
    std::FILE* file = std::fopen(file_name, "w");
    const bool written = file != nullptr && std::fwrite(text.data(), 1, text.size(), file) == text.size();
    if (file == nullptr || std::fclose(file) != 0 || !written) {
        std::fprintf(stderr, "can't write %s\n", file_name);
        return 1;
    }
    return 0;
}

}  // namespace
}  // namespace varn

int main() { return varn::write_bitbase("kpkbb"); }
