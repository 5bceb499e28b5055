// What the search remembers: both hash tables, each against a model of its slots, the keys of children, history and
// killers.
#include <gtest/gtest.h>

#include <set>

#include "base/divisor.h"
#include "search_helpers.h"

namespace varn {
namespace {

using Tables = SearchTest;

/// A record that has these keys and stands for their position.
std::unique_ptr<Game> with_keys(std::uint64_t key, std::uint64_t lock) {
    auto game = std::make_unique<Game>();
    game->zobrist_key = key;
    game->zobrist_lock = lock;
    return game;
}

TEST(Divisor, GivesTheRemainderOfTheDivision) {
    RandomSource random(2);
    for (int round = 0; round < 100000; ++round) {
        const std::uint64_t value = (random.next() >> random.below(64)) | 1U;  // of every length
        const std::uint64_t multiple = random.next() / value * value;
        for (const std::uint64_t d : {value, value == ~std::uint64_t{0} ? value : value + 1}) {
            for (const std::uint64_t number : {multiple, multiple - 1, random.next(), ~std::uint64_t{0}}) {
                ASSERT_EQ(remainder(number, divisor(d)), number % d) << number << " by " << d;
            }
        }
    }
}

// --- Transposition table ------------------------------------------------------------------------------------------

TEST_F(Tables, TranspositionTableActsAsItsModel) {
    struct Slot {
        std::uint64_t lock = 0;
        int depth = -1, score = -1, credit = 0;
        std::uint8_t bound = 255;
        const Move* move = nullptr;
    };
    constexpr Move moves[] = {{1, 18, kind_quiet}, {11, 27, kind_double_step}, {49, 57, 9}};
    RandomSource random(5);
    std::vector<std::unique_ptr<Game>> positions;
    while (positions.size() < 12) positions.push_back(with_keys(random.next(), random.next()));
    std::vector<Slot> model;
    int found = 0;
    for (int step = 0; step < 40000; ++step) {
        if (step % 2500 == 0) {  // a table of 1, 3 or 7 slots, at times of the same size again
            const int bits = 1 + step / 5000 % 3;
            hash_allocate(bits);
            model.assign((std::size_t{1} << bits) - 1, Slot{});
        } else if (random.below(200) == 0) {
            hash_clear();
            model.assign(model.size(), Slot{});
        }
        const Game& game = *positions[random.below(positions.size())];
        Slot& slot = model[game.zobrist_key % model.size()];
        const bool known = slot.lock == game.zobrist_lock;
        const int depth = static_cast<int>(random.below(4));
        if (random.below(2) == 0) {
            const Move* move = random.below(3) == 0 ? nullptr : &moves[random.below(3)];
            const int score = static_cast<int>(random.below(3) * 9990) - 9990 + depth;
            const auto bound = static_cast<std::uint8_t>(random.below(3));
            hash_store(&game, depth, move, score, bound);
            if (!known && slot.credit-- > 0) continue;
            const int pushed = score < -5000 ? score - depth : score > 5000 ? score + depth : score;
            slot = {game.zobrist_lock, depth, pushed, known ? slot.credit : depth * depth, bound, move};
            continue;
        }
        const bool hits = known && slot.depth >= depth;
        slot.credit += hits ? 1 : -1;
        const HashEntry* entry = hash_probe(&game, depth);
        ASSERT_EQ(entry != nullptr, hits) << step;
        if (!hits) continue;
        ++found;
        ASSERT_EQ(std::tie(entry->score, entry->credit, entry->bound), std::tie(slot.score, slot.credit, slot.bound));
        ASSERT_EQ(entry->depth, slot.depth) << step;
        ASSERT_EQ(entry->key, game.zobrist_key) << step;
        ASSERT_EQ(entry->has_move != 0, slot.move != nullptr) << step;
        ASSERT_TRUE(slot.move == nullptr || entry->move == *slot.move) << step;
    }
    EXPECT_GT(found, 3000);
}

TEST_F(Tables, MateBand) {
    for (const int score : {9499, 9700, 9999, -9499, -9999}) EXPECT_TRUE(is_mate_score(score)) << score;
    for (const int score : {0, 9498, 10000, -9498, -10000, abort_score, -abort_score, no_score, full_window}) {
        EXPECT_FALSE(is_mate_score(score)) << score;
    }
}

TEST_F(Tables, UsageAndSize) {
    hash_allocate(10);
    for (const auto& [stored, percent] : {std::pair{5, "0"}, {512, "50"}, {1022, "99"}, {1023, "100"}}) {
        hash_clear();
        for (std::uint64_t key = 0; key < static_cast<std::uint64_t>(stored); ++key) {
            hash_store(with_keys(key, 1).get(), 1, nullptr, 0, bound_exact);
        }
        EXPECT_EQ(printed(print_hash_stats), "Transposition table usage: " + std::string(percent) +
                                                 "%\nTransposition table size (bytes): 40920\n");
    }
}

// --- Quiescence table ---------------------------------------------------------------------------------------------

TEST_F(Tables, QuiescenceTableKeepsTheLastOfEachSlot) {
    for (const auto& [bytes, entries] : {std::pair{1, 1U}, {7 * 40 + 39, 7U}, {8 * 40, 8U}}) {
        qhash_bytes = bytes;
        qhash_allocate();
        const auto first = with_keys(5, 1), other = with_keys(5 + entries, 2), elsewhere = with_keys(6, 1);
        for (const Game& game : {first.get(), other.get(), first.get()}) {
            EXPECT_EQ(qhash_probe(game), nullptr);
            qhash_store(game, 300, -77, bound_upper);
            ASSERT_NE(qhash_probe(game), nullptr);
            EXPECT_TRUE(qhash_probe(game)->score == -77 && qhash_probe(game)->bound == bound_upper);
        }
        EXPECT_EQ(qhash_probe(elsewhere.get()) == nullptr, entries > 1);
        qhash_clear();
        EXPECT_EQ(qhash_probe(first.get()), nullptr);
    }
}

TEST_F(Tables, NothingOutlivesAClearHoweverManyFollow) {
    hash_allocate(2);
    qhash_bytes = 1;
    qhash_allocate();
    const auto game = with_keys(1, 2);
    hash_store(game.get(), 1, nullptr, 0, bound_exact);
    qhash_store(game.get(), 1, 0, bound_exact);
    for (int clears = 1; clears <= 70000; ++clears) {
        hash_clear();
        qhash_clear();
        ASSERT_EQ(hash_probe(game.get(), 0), nullptr) << clears;
        ASSERT_EQ(qhash_probe(game.get()), nullptr) << clears;
    }
}

// --- Children -----------------------------------------------------------------------------------------------------

TEST_F(Tables, ChildKeysAreThoseThatMakeLeaves) {
    std::set<int> kinds;
    visit_random_games(7, 60, [&](const Game& game) {
        for (const Move move : pseudo_legal_moves(game)) {
            kinds.insert(move.kind);
            ASSERT_EQ(child_keys(&game, move), keys_of(*after(game, move))) << position_text(&game) << move_text(move);
        }
    });
    EXPECT_EQ(kinds, (std::set<int>{0, 1, 2, 3, 6, 9, 10, 11, 14, 0x11, 0x12, 0x20, 0x41, 0x42}));
}

TEST_F(Tables, EnhancedTranspositionFindsTheKnownChild) {
    constexpr std::tuple<int, int, int, std::uint8_t, bool> cases[] = {
        {-50, 4, 50, bound_lower, true},
        {-50, 4, 50, bound_upper, false},
        {-50, 3, 49, bound_exact, true},
        {-50, 4, 51, bound_exact, false},
        {-50, 5, 50, bound_exact, false},
        {-9990, 4, 9994, bound_lower, true},  // a mate is stored as -9994, and taken as it stands
    };
    RandomSource random(8);
    auto list = std::make_unique<MoveList>();
    visit_random_games(9, 6, [&](const Game& game) {
        list->count = 0;
        EXPECT_FALSE(enhanced_transposition(&game, list.get(), 0, -full_window));
        add_quiets(&game, list.get());
        if (list->count == 0) return;
        const auto planted = static_cast<int>(random.below(static_cast<std::uint64_t>(list->count)));
        const auto child = after(game, list->moves[planted]);
        for (const auto& [score, wanted_depth, beta, bound, good] : cases) {
            hash_clear();
            hash_store(child.get(), 4, nullptr, score, bound);
            list->scores.slots[0] = 77;
            ASSERT_EQ(enhanced_transposition(&game, list.get(), wanted_depth, beta), good) << position_text(&game);
            for (int i = 0; i < list->count; ++i) ASSERT_EQ(list->scores[i], good && i == planted ? 1000000 : 0);
            EXPECT_EQ(hash_probe(child.get(), 0)->credit, 16 + (wanted_depth <= 4 ? 1 : -1) + 1);
        }
    });
}

// --- History and killers ------------------------------------------------------------------------------------------

TEST_F(Tables, HistoryCountsQuietMovesByDepth) {
    const auto white = game_from("4k3/8/8/8/8/8/8/4K3 w - -"), black = game_from("4k3/8/8/8/8/8/8/4K3 b - -");
    const auto update = [](const auto& game, int kind, int depth) {
        history_update(game.get(), {8, 24, static_cast<std::uint8_t>(kind)}, depth);
    };
    for (const int kind : {0, 0x11, 0x41, 0x42}) update(white, kind, 3);
    for (const int kind : {0x20, 0x12, 1, 2, 3, 6, 9, 10, 11, 14}) update(white, kind, 5);
    update(black, kind_quiet, 1);
    EXPECT_EQ(history[0][8][24], 4 * 8);
    EXPECT_EQ(history[1][8][24], 2);
    for (int depth = 0; depth <= 60; ++depth) {
        const std::int32_t before = history[0][8][24];
        update(white, kind_quiet, depth);
        EXPECT_TRUE(history[0][8][24] > before || before == INT32_MAX) << depth;
    }
    clear_history();
    EXPECT_EQ(history[0][8][24] + history[1][8][24], 0);
}

TEST_F(Tables, KillersChangePlacesByTheirCounts) {
    const auto white = game_from("4k3/8/8/8/8/8/8/4K3 w - -"), black = game_from("4k3/8/8/8/8/8/8/4K3 b - -");
    constexpr int ply = 499;
    const int i = killer_index(white.get(), ply);
    // Each letter is a cut-off by a move and a man of its own; 0 zeroes the counts. Then the first and the second
    // killer with their counts.
    for (const auto& [cuts, expected] : {std::pair{"ab", "@0 b0"},
                                         {"aa", "a1 @0"},
                                         {"aabb", "a1 b1"},
                                         {"aabbb", "b2 a1"},
                                         {"aabbc", "a1 c0"},
                                         {"aabb0c", "a0 c0"},
                                         {"aabb0b", "b1 a0"}}) {
        killer_one = killer_two = {};
        for (const char* cut = cuts; *cut != '\0'; ++cut) {
            if (*cut == '0') clear_killer_counts();
            const auto from = static_cast<std::uint8_t>(*cut - '@');
            if (*cut != '0') killer_update({from, 30, kind_quiet}, ply, from, white.get());
            killer_update({3, 4, kind_double_step}, ply, pawn, black.get());
            killer_update({5, 6, kind_quiet}, ply - 1, knight, white.get());
            for (const int kind : {0x20, 0x12, 0x41, 1, 14}) {
                killer_update({9, 1, static_cast<std::uint8_t>(kind)}, ply, pawn, white.get());
            }
        }
        const auto text = [](const KillerSlot& slot, std::int32_t piece) {
            EXPECT_EQ(slot.move.from, piece);
            return static_cast<char>('@' + slot.move.from) + std::to_string(slot.count);
        };
        EXPECT_EQ(text(killer_one[i], killer_one_piece[i]) + " " + text(killer_two[i], killer_two_piece[i]), expected);
        killer_one_piece = killer_two_piece = {};
    }
    EXPECT_EQ(killer_one[killer_index(black.get(), ply)].move.kind, kind_double_step);
}

}  // namespace
}  // namespace varn
