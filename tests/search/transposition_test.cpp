// Both hash tables, compared with a model, and enhanced transposition cutoffs.
#include <gtest/gtest.h>

#include "positions.h"
#include "search/transposition.h"

namespace varn {
namespace {

/// A game with these keys.
std::unique_ptr<Game> with_keys(std::uint64_t key, std::uint64_t lock) {
    auto game = std::make_unique<Game>();
    game->zobrist_key = key;
    game->zobrist_lock = lock;
    return game;
}

TEST(Transposition, UsageAndSize) {
    TranspositionTable table;
    ASSERT_TRUE(hash_allocate(table, 10));
    for (const auto& [stored, percent] : {std::pair{5, "0"}, {512, "50"}, {1022, "99"}, {1023, "100"}}) {
        hash_clear(table);
        for (std::uint64_t key = 0; key < static_cast<std::uint64_t>(stored); ++key) {
            hash_store(table, *with_keys(key, 1), 1, std::nullopt, 0, bound_exact);
        }
        EXPECT_EQ(hash_stats_text(table), "Transposition table usage: " + std::string(percent) +
                                              "%\nTransposition table size (bytes): 40920\n");
    }
}

TEST(Transposition, RejectsInvalidSizes) {
    TranspositionTable table;
    QuiescenceTable qtable;
    for (const int bits : {0, -1, 31, 64}) EXPECT_FALSE(hash_allocate(table, bits)) << bits;
    for (const int bytes : {0, -1, INT32_MIN}) EXPECT_FALSE(qhash_allocate(qtable, bytes)) << bytes;
}

TEST(Transposition, QuiescenceTableAlwaysReplaces) {
    for (const auto& [bytes, entries] : {std::pair{1, 1U}, {7 * 40 + 39, 7U}, {8 * 40, 8U}}) {
        QuiescenceTable table;
        ASSERT_TRUE(qhash_allocate(table, bytes));
        const auto first = with_keys(5, 1), other = with_keys(5 + entries, 2), elsewhere = with_keys(6, 1);
        for (const Game* game : {first.get(), other.get(), first.get()}) {
            EXPECT_EQ(qhash_probe(table, *game), nullptr);
            qhash_store(table, *game, -77, bound_upper);
            ASSERT_NE(qhash_probe(table, *game), nullptr);
            EXPECT_TRUE(qhash_probe(table, *game)->score == -77 && qhash_probe(table, *game)->bound == bound_upper);
        }
        EXPECT_EQ(qhash_probe(table, *elsewhere) == nullptr, entries > 1);
        qhash_clear(table);
        EXPECT_EQ(qhash_probe(table, *first), nullptr);
    }
}

TEST(Transposition, ClearingAlwaysRemovesEverything) {
    TranspositionTable table;
    QuiescenceTable qtable;
    ASSERT_TRUE(hash_allocate(table, 2) && qhash_allocate(qtable, 1));
    const auto game = with_keys(1, 2);
    hash_store(table, *game, 1, std::nullopt, 0, bound_exact);
    qhash_store(qtable, *game, 1, bound_exact);
    for (int clears = 1; clears <= 70000; ++clears) {
        hash_clear(table);
        qhash_clear(qtable);
        ASSERT_EQ(hash_probe(table, *game, 0), nullptr) << clears;
        ASSERT_EQ(qhash_probe(qtable, *game), nullptr) << clears;
    }
}

}  // namespace
}  // namespace varn
