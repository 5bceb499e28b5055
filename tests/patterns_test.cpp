// King-and-pawn patterns: the solved positions, and the list of boxes against the plain walk.
#include <gtest/gtest.h>

#include "patterns/anneal.h"
#include "patterns/kpk_solver.h"
#include "patterns/pattern_files.h"
#include "plain_patterns.h"
#include "positions.h"

namespace varn {
namespace {

std::vector<Pattern> some_positions(std::size_t every) {
    std::vector<Pattern> positions;
    const std::vector<Placement> placements = kpk_placements();
    for (std::size_t i = 0; i < placements.size(); i += every) {
        positions.push_back(
            {{bit_mask(placements[i].white_king), bit_mask(placements[i].pawn), bit_mask(placements[i].black_king)}});
    }
    return positions;
}

/// Where the box at the index of the list lies.
BoxPlace place_of(const PatternList& list, std::size_t index) {
    std::vector<BoxPlace> places(list.count());
    for (BoxPlace place = 0; place < list.count(); ++place) places[place] = place;
    std::ranges::sort(places, {}, [&](BoxPlace place) { return list.stamps[place]; });
    return places[index];
}

void compare_with_plain_walk(const std::vector<Pattern>& positions, std::uint32_t capacity, int moves,
                             std::uint64_t seed) {
    PatternList list(positions, capacity);
    PlainList plain = {positions, capacity};
    Choices choices(seed);
    for (int i = 0; i < moves; ++i) {
        const std::size_t index = choices.below(list.count());
        const bool is_merge = choices.below(i < moves / 2 ? 3 : 2) != 0;
        const auto field = static_cast<Field>(choices.below(3));
        const BoxPlace place = place_of(list, index);
        Choices same = choices;
        if (is_merge) {
            merge_patterns(list, place, field, choices);
            plain_merge(plain, index, field, same);
        } else {
            split_pattern(list, place, field, choices);
            plain_split(plain, index, field, same);
        }
        ASSERT_EQ(choices.below(1 << 30), same.below(1 << 30)) << i;
        ASSERT_EQ(in_order(list), plain.patterns) << i;
    }
}

TEST(Patterns, TheListMovesAsThePlainWalkDoes) {
    for (const auto& [every, capacity, moves] : {std::tuple<std::size_t, std::uint32_t, int>{1000, 200, 100000},
                                                 {3000, 60, 100000},
                                                 {20000, 9, 20000},
                                                 {163327, 2, 100}}) {
        compare_with_plain_walk(some_positions(every), capacity, moves, every);
    }
    std::vector<Pattern> block;
    for (int i = 0; i < 512; ++i) block.push_back({{bit_mask(i & 7), bit_mask(i >> 3 & 7), bit_mask(i >> 6)}});
    compare_with_plain_walk(block, 600, 30000, 1);
    block.insert(block.end(), block.begin(), block.begin() + 100);
    for (int i = 0; i < 50; ++i) block.push_back({{0, Bitboard(i & 1), Bitboard(i)}});
    compare_with_plain_walk(block, 700, 30000, 2);
}

}  // namespace
}  // namespace varn
