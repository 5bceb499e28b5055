#include "patterns/kpk_placements.h"

#include "base/output.h"
#include "board/geometry.h"
#include "board/position.h"

namespace varn {

namespace {

bool can_arise(int white_king, int pawn, int black_king) {
    if (white_king == pawn || pawn == black_king || white_king == black_king) return false;
    const Bitboard attacked = king_moves[white_king] | pawn_attacks<Side::white>[pawn];
    return (attacked & bit_mask(black_king)) == 0;
}

char letter_on(Placement placement, int square) {
    if (square == placement.white_king) return 'K';
    if (square == placement.pawn) return 'P';
    return square == placement.black_king ? 'k' : '\0';
}

}  // namespace

std::vector<Placement> kpk_placements() {
    std::vector<Placement> placements;
    for (std::uint8_t white_king = 0; white_king < square_count; ++white_king) {
        for (std::uint8_t pawn = 0; pawn < square_count; ++pawn) {
            if (rank_of(pawn) == 1 || rank_of(pawn) == 8) continue;
            for (std::uint8_t black_king = 0; black_king < square_count; ++black_king) {
                if (can_arise(white_king, pawn, black_king)) placements.push_back({white_king, pawn, black_king});
            }
        }
    }
    return placements;
}

std::string placement_text(Placement placement) {
    std::string text;
    int empty = 0;
    const auto write_empty = [&] {
        if (empty > 0) text += std::to_string(empty);
        empty = 0;
    };
    for (int square = square_count - 1; square >= 0; --square) {
        const char letter = letter_on(placement, square);
        if (letter == '\0') {
            ++empty;
        } else {
            write_empty();
            text += letter;
        }
        if (file_of(square) == 1) {
            write_empty();
            if (square > 0) text += '/';
        }
    }
    return text + " w - - 0 1";
}

void print_kpk_script(Game& game) {
    constexpr std::size_t chunk = 1 << 16;  // flush size
    std::string script;
    for (const Placement placement : kpk_placements()) {
        const std::string text = placement_text(placement);
        set_position(game, text);
        script += "setboard " + text + "\nepdshow\ngo\n";
        if (script.size() < chunk) continue;
        say_text(script);
        script.clear();
    }
    say_text(script);
}

}  // namespace varn
