// History, killers, and picking the best move.
#include <gtest/gtest.h>

#include "positions.h"
#include "search/ordering.h"

namespace varn {
namespace {

TEST(Ordering, HistoryCountsQuietMovesByDepth) {
    auto owner = std::make_unique<History>();
    History& history = *owner;
    const auto white = game_from("4k3/8/8/8/8/8/8/4K3 w - -"), black = game_from("4k3/8/8/8/8/8/8/4K3 b - -");
    const auto update = [&](const auto& game, int kind, int depth) {
        history_update(history, *game, {8, 24, static_cast<std::uint8_t>(kind)}, depth);
    };
    for (const int kind : {0, 0x11, 0x41, 0x42}) update(white, kind, 3);
    for (const int kind : {0x20, 0x12, 1, 2, 3, 6, 9, 10, 11, 14}) update(white, kind, 5);
    update(black, kind_quiet, 1);
    EXPECT_EQ(history[Side::white][8][24], 4 * 8);
    EXPECT_EQ(history[Side::black][8][24], 2);
    for (int depth = 0; depth <= 60; ++depth) {
        const std::int32_t before = history[Side::white][8][24];
        update(white, kind_quiet, depth);
        EXPECT_TRUE(history[Side::white][8][24] > before || before == INT32_MAX) << depth;
    }
    clear_history(history);
    EXPECT_EQ(history[Side::white][8][24] + history[Side::black][8][24], 0);
}

TEST(Ordering, KillersSwapByTheirCounts) {
    const auto white = game_from("4k3/8/8/8/8/8/8/4K3 w - -"), black = game_from("4k3/8/8/8/8/8/8/4K3 b - -");
    for (int from = 0; from < square_count; ++from) white->cells[from] = static_cast<PieceCode>(from);
    Killers killers;
    constexpr int ply = 499;
    const int i = killer_index(*white, ply);
    // Each letter is a cutoff by a different move and piece; 0 clears the counts. Then the expected killers with their
    // counts.
    for (const auto& [cuts, expected] : {std::pair{"ab", "@0 b0"},
                                         {"aa", "a1 @0"},
                                         {"aabb", "a1 b1"},
                                         {"aabbb", "b2 a1"},
                                         {"aabbc", "a1 c0"},
                                         {"aabb0c", "a0 c0"},
                                         {"aabb0b", "b1 a0"}}) {
        killers = {};
        for (const char* cut = cuts; *cut != '\0'; ++cut) {
            if (*cut == '0') clear_killer_counts(killers);
            const auto from = static_cast<std::uint8_t>(*cut - '@');
            if (*cut != '0') killer_update(killers, *white, {from, 30, kind_quiet}, ply);
            killer_update(killers, *black, {3, 4, kind_double_step}, ply);
            killer_update(killers, *white, {5, 6, kind_quiet}, ply - 1);
            for (const int kind : {0x20, 0x12, 0x41, 1, 14}) {
                killer_update(killers, *white, {9, 1, static_cast<std::uint8_t>(kind)}, ply);
            }
        }
        const auto text = [](const KillerSlot& slot, std::int32_t piece) {
            EXPECT_EQ(slot.move.from, piece);
            return static_cast<char>('@' + slot.move.from) + std::to_string(slot.count);
        };
        EXPECT_EQ(text(killers.killer_one[i], killers.killer_one_piece[i]) + " " +
                      text(killers.killer_two[i], killers.killer_two_piece[i]),
                  expected);
    }
    EXPECT_EQ(killers.killer_one[killer_index(*black, ply)].move.kind, kind_double_step);
}

TEST(Ordering, PicksTheFirstOfTheBestScores) {
    RandomSource random(12);
    const auto list = std::make_unique<MoveList>();
    for (int round = 0; round < 2000; ++round) {
        list->count = static_cast<std::int32_t>(random.below(MoveList::capacity + 1));
        if (round % 2 == 0) list->count %= 40;
        for (int i = 0; i < list->count; ++i) {
            list->moves[i] = {static_cast<std::uint8_t>(i % 256), static_cast<std::uint8_t>(i / 256), kind_quiet};
            list->scores[i] = static_cast<std::int32_t>(random.below(20)) - (random.below(9) == 0 ? 10010 : 0);
            if (random.below(50) == 0) list->scores[i] = INT32_MAX;
        }
        if (list->count == 0) continue;
        const auto index = static_cast<int>(random.below(static_cast<std::uint64_t>(list->count)));
        const MoveList before = *list;
        const auto* const highest =
            std::max_element(before.scores.begin() + index, before.scores.begin() + list->count);
        const auto place = static_cast<int>(highest - before.scores.begin());
        pick_best(*list, index);
        const bool passed_over = *highest <= -9999;
        EXPECT_EQ(list->moves[index], before.moves[passed_over ? index : place]);
        EXPECT_EQ(list->moves[place], before.moves[passed_over ? place : index]);
        EXPECT_EQ(list->scores[index], before.scores[passed_over ? index : place]);
    }
}

}  // namespace
}  // namespace varn
