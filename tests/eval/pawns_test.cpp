// The pawn hash table. Pawn structure terms are tested with the evaluation.
#include <gtest/gtest.h>

#include "eval/context.h"
#include "eval/pawns.h"
#include "positions.h"

namespace varn {
namespace {

TEST(PawnTable, HitsDependOnPawnsOnly) {
    FreshContext context;
    PawnTable& table = context.pawns;
    const auto without_rook = game_from("4k3/8/4P3/8/8/8/8/4K3 w - -");
    const auto with_rook = game_from("4k3/8/4P3/8/8/8/4R3/4K3 w - -");
    EXPECT_EQ(pawn_hash_probe(table, *with_rook), nullptr);
    EXPECT_EQ(pawn_terms(table, *without_rook), 59);
    EXPECT_NE(pawn_hash_probe(table, *with_rook), nullptr);
    EXPECT_EQ(pawn_terms(table, *with_rook), 89);
    ++with_rook->pawn_lock;
    EXPECT_EQ(pawn_hash_probe(table, *with_rook), nullptr);
}

TEST(PawnTable, CachedPlacementMatchesTheSquareValues) {
    FreshContext context;
    visit_random_games(6, 30, [&](const Game& game) {
        for (int time = 1; time <= 2; ++time) {  // computed, then cached
            ASSERT_EQ(score_pawns(context.pawns, game).placement, pawn_placement(game)) << position_text(game);
        }
    });
}

TEST(PawnTable, ClearingAlwaysRemovesEverything) {
    FreshContext context;
    PawnTable& table = context.pawns;
    const auto game = game_from("4k3/8/4P3/8/8/8/8/4K3 w - -");
    pawn_hash_store(table, *game, 1, 0, 0);
    for (int clears = 1; clears <= 70000; ++clears) {
        pawn_hash_clear(table);
        ASSERT_EQ(pawn_hash_probe(table, *game), nullptr) << clears;
    }
}

TEST(PawnTable, KeepsItsFirstAllocation) {
    PawnTable table;
    EXPECT_FALSE(pawn_hash_allocate(table, 0));
    EXPECT_FALSE(pawn_hash_allocate(table, -1));
    EXPECT_TRUE(pawn_hash_allocate(table, 1));
    EXPECT_EQ(table.slots.value, 1U);
    EXPECT_TRUE(pawn_hash_allocate(table, 1 << 16));
    EXPECT_EQ(table.slots.value, 1U);
}

}  // namespace
}  // namespace varn
