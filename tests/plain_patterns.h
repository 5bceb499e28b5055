// Reference implementation of the annealing moves, which walks the list box by box, and test positions.
#pragma once

#include <algorithm>
#include <vector>

#include "patterns/chance.h"
#include "patterns/kpk_solver.h"
#include "patterns/pattern.h"

namespace varn {

/// One box for every `every`-th draw with white to move.
inline std::vector<Pattern> drawn_positions(std::size_t every = 1) {
    const auto wins = solve_kpk();
    std::vector<Pattern> positions;
    std::size_t number = 0;
    for (const Placement at : kpk_placements()) {
        if (wins->white_to_move[kpk_index(at)] || number++ % every != 0) continue;
        positions.push_back({{bit_mask(at.white_king), bit_mask(at.pawn), bit_mask(at.black_king)}});
    }
    return positions;
}

struct PlainList {
    std::vector<Pattern> patterns;
    std::size_t capacity;
};

inline void plain_merge(PlainList& list, std::size_t index, int left_out, Choices& choices) {
    const Pattern wanted = list.patterns[index];
    const std::uint32_t chance = choices.below(3) + 2;
    Pattern merged = wanted;
    merged.squares[left_out] = 0;
    std::vector<std::size_t> used;
    for (std::size_t i = 0; i < list.patterns.size() && used.size() < 2; ++i) {
        Pattern other = list.patterns[i];
        other.squares[left_out] = wanted.squares[left_out];
        if (other != wanted || choices.below(chance) != 0) continue;
        merged.squares[left_out] |= list.patterns[i].squares[left_out];
        used.push_back(i);
    }
    if (used.empty()) return;
    std::reverse(used.begin(), used.end());
    for (const std::size_t i : used) list.patterns.erase(list.patterns.begin() + static_cast<std::ptrdiff_t>(i));
    list.patterns.push_back(merged);
}

inline void plain_split(PlainList& list, std::size_t index, int field, Choices& choices) {
    const std::uint32_t chance = choices.below(2) + 2;
    const Bitboard squares = list.patterns[index].squares[field];
    Bitboard chosen = 0;
    for (int square = 0; square < 64 && popcount(chosen) < popcount(squares) - 1; ++square) {
        if ((squares >> square & 1) != 0 && choices.below(chance) == 0) chosen |= Bitboard{1} << square;
    }
    if (chosen == 0 || list.patterns.size() == list.capacity) return;
    Pattern rest = list.patterns[index];
    rest.squares[field] = squares ^ chosen;
    list.patterns[index].squares[field] = chosen;
    list.patterns.push_back(rest);
}

}  // namespace varn
