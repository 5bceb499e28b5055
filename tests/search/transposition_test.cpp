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

TEST(Transposition, TableMatchesItsModel) {
    struct Slot {
        std::uint64_t lock = 0;
        int depth = -1, score = -1, credit = 0;
        std::uint8_t bound = 255;
        std::optional<Move> move;
    };
    constexpr Move moves[] = {{1, 18, kind_quiet}, {11, 27, kind_double_step}, {49, 57, 9}};
    TranspositionTable table;
    RandomSource random(5);
    std::vector<std::unique_ptr<Game>> positions;
    while (positions.size() < 12) positions.push_back(with_keys(random.next(), random.next()));
    std::vector<Slot> model;
    int found = 0;
    for (int step = 0; step < 40000; ++step) {
        if (step % 2500 == 0) {  // 1, 3 or 7 slots, sometimes the same size again
            const int bits = 1 + step / 5000 % 3;
            hash_allocate(table, bits);
            model.assign((std::size_t{1} << bits) - 1, Slot{});
        } else if (random.below(200) == 0) {
            hash_clear(table);
            model.assign(model.size(), Slot{});
        }
        const Game& game = *positions[random.below(positions.size())];
        Slot& slot = model[game.zobrist_key % model.size()];
        const bool known = slot.lock == game.zobrist_lock;
        const int depth = static_cast<int>(random.below(4));
        if (random.below(2) == 0) {
            const auto move = random.below(3) == 0 ? std::nullopt : std::optional(moves[random.below(3)]);
            const int score = static_cast<int>(random.below(3) * 9990) - 9990 + depth;
            const auto bound = static_cast<std::uint8_t>(random.below(3));
            hash_store(table, game, depth, move, score, bound);
            if (!known && slot.credit-- > 0) continue;
            const int pushed = score < -5000 ? score - depth : score > 5000 ? score + depth : score;
            slot = {game.zobrist_lock, depth, pushed, known ? slot.credit : depth * depth, bound, move};
            continue;
        }
        const bool hits = known && slot.depth >= depth;
        slot.credit += hits ? 1 : -1;
        const HashEntry* entry = hash_probe(table, game, depth);
        ASSERT_EQ(entry != nullptr, hits) << step;
        if (!hits) continue;
        ++found;
        ASSERT_EQ(std::tie(entry->score, entry->credit, entry->bound), std::tie(slot.score, slot.credit, slot.bound));
        ASSERT_EQ(entry->depth, slot.depth) << step;
        ASSERT_EQ(entry->lock, game.zobrist_lock) << step;
        ASSERT_EQ(entry->has_move != 0, slot.move.has_value()) << step;
        ASSERT_TRUE(!slot.move || entry->move == *slot.move) << step;
    }
    EXPECT_GT(found, 3000);
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

TEST(Transposition, EnhancedCutoffFindsTheKnownChild) {
    constexpr std::tuple<int, int, int, std::uint8_t, bool> cases[] = {
        {-50, 4, 50, bound_lower, true},
        {-50, 4, 50, bound_upper, false},
        {-50, 3, 49, bound_exact, true},
        {-50, 4, 51, bound_exact, false},
        {-50, 5, 50, bound_exact, false},
        {-9990, 4, 9994, bound_lower, true},  // a mate is stored as -9994 and used unadjusted
    };
    TranspositionTable table;
    ASSERT_TRUE(hash_allocate(table, 16));
    RandomSource random(8);
    auto list = std::make_unique<MoveList>();
    visit_random_games(9, 6, [&](const Game& game) {
        list->count = 0;
        EXPECT_FALSE(enhanced_transposition(table, game, *list, 0, -full_window));
        add_quiets(game, *list);
        if (list->count == 0) return;
        const auto planted = static_cast<int>(random.below(static_cast<std::uint64_t>(list->count)));
        const auto child = after(game, list->moves[planted]);
        for (const auto& [score, wanted_depth, beta, bound, good] : cases) {
            hash_clear(table);
            hash_store(table, *child, 4, std::nullopt, score, bound);
            list->scores[0] = 77;
            ASSERT_EQ(enhanced_transposition(table, game, *list, wanted_depth, beta), good) << position_text(game);
            for (int i = 0; i < list->count; ++i) ASSERT_EQ(list->scores[i], good && i == planted ? 1000000 : 0);
            EXPECT_EQ(hash_probe(table, *child, 0)->credit, 16 + (wanted_depth <= 4 ? 1 : -1) + 1);
        }
    });
}

}  // namespace
}  // namespace varn
