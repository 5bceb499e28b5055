// The box list, compared with the plain reference implementation. That annealing preserves the positions is tested with
// the tool.
#include <gtest/gtest.h>

#include "patterns/pattern_list.h"
#include "plain_patterns.h"

namespace varn {
namespace {

/// All combinations of squares on three edges; they can become one box.
std::vector<Pattern> full_block(int edge) {
    std::vector<Pattern> block;
    const int size = edge * edge * edge;
    block.reserve(static_cast<std::size_t>(size));
    for (int i = 0; i < size; ++i) {
        block.push_back({{bit_mask(i % edge), bit_mask(i / edge % edge), bit_mask(i / edge / edge)}});
    }
    return block;
}

/// The place of the box at a list index.
BoxPlace place_of(const PatternList& list, std::size_t index) {
    std::vector<std::uint64_t> stamps = list.stamps;
    const auto nth = stamps.begin() + static_cast<std::ptrdiff_t>(index);
    std::ranges::nth_element(stamps, nth);
    return static_cast<BoxPlace>(std::ranges::find(list.stamps, *nth) - list.stamps.begin());
}

TEST(Patterns, ListMatchesTheReferenceImplementation) {
    std::vector<Pattern> odd = full_block(4);  // duplicates, and boxes with empty or multiple sets
    odd.insert(odd.end(), odd.begin(), odd.begin() + 20);
    for (Bitboard i = 0; i < 20; ++i) odd.push_back({{0, i & 1, i}});
    const std::tuple<std::vector<Pattern>, std::size_t, int> works[] = {
        // positions, capacity, moves
        {full_block(6), 300, 30000},         // large groups
        {drawn_positions(200), 250, 20000},  // small groups
        {{{{255, 255, 255}}}, 40, 20000},    // no room
        {{{{1, 1, 1}}}, 3, 100},
        {odd, 200, 20000},
    };
    for (const auto& [positions, capacity, moves] : works) {
        PatternList list(positions, capacity);
        PlainList plain = {positions, capacity};
        Choices choices(positions.size());
        for (int i = 0; i < moves; ++i) {
            choices.renew();
            const std::uint32_t index = choices.below(list.count());
            // More merges first, so that there are large boxes to split.
            const bool is_merge = choices.below(i % 5000 < 2500 ? 4 : 2) != 0;
            const auto field = static_cast<Field>(choices.below(field_count));
            Choices same = choices;
            (is_merge ? merge_patterns : split_pattern)(list, place_of(list, index), field, choices);
            (is_merge ? plain_merge : plain_split)(plain, index, field, same);
            ASSERT_EQ(in_order(list), plain.patterns) << positions.size() << ", move " << i;
            ASSERT_EQ(choices.below(1U << 30), same.below(1U << 30)) << i;
        }
    }
}

}  // namespace
}  // namespace varn
