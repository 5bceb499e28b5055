// What the search remembers: both hash tables, each against a model of its slots, the keys of children, history and
// killers.
#include <gtest/gtest.h>
#include <unistd.h>

#include <limits>
#include <set>

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

std::vector<std::unique_ptr<Game>> random_positions(RandomSource& random, int count) {
    std::vector<std::unique_ptr<Game>> positions;
    while (count-- > 0) positions.push_back(with_keys(random.next(), random.next()));
    return positions;
}

// --- Transposition table ------------------------------------------------------------------------------------------

TEST_F(Tables, CreditIsTheNumberOfStoresThatASlotRefuses) {
    hash_allocate(4);
    const auto first = with_keys(3, 1), other = with_keys(3 + 15, 2);
    const auto survives = [&](int depth, int hits, int stores) {
        hash_clear();
        hash_store(first.get(), depth, nullptr, 10, bound_exact);
        while (hits-- > 0) hash_probe(first.get(), depth);
        while (stores-- > 0) hash_store(other.get(), 3, nullptr, 20, bound_lower);
        return hash_probe(first.get(), depth) != nullptr;
    };
    for (const auto& [depth, hits, refusals] : {std::tuple{2, 1, 5}, {2, 0, 4}, {1, 0, 1}, {0, 0, 0}, {3, 2, 11}}) {
        EXPECT_TRUE(survives(depth, hits, refusals)) << depth;
        EXPECT_FALSE(survives(depth, hits, refusals + 1)) << depth;
    }
}

TEST_F(Tables, TranspositionTableActsAsItsModel) {
    struct Slot {
        std::uint64_t lock = 0;
        int depth = -1, score = -1, credit = 0;
        std::uint8_t bound = 255;
        const Move* move = nullptr;
    };
    constexpr Move moves[] = {{1, 18, kind_quiet}, {11, 27, kind_double_step}, {49, 57, 9}};
    RandomSource random(5);
    const auto positions = random_positions(random, 12);
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
        ASSERT_EQ(entry->score, slot.score) << step;
        ASSERT_EQ(entry->depth, slot.depth) << step;
        ASSERT_EQ(entry->bound, slot.bound) << step;
        ASSERT_EQ(entry->credit, slot.credit) << step;
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
    for (const auto& [stored, percent] : {std::pair{0, "0"}, {5, "0"}, {512, "50"}, {1022, "99"}, {1023, "100"}}) {
        hash_clear();
        for (int key = 0; key < stored; ++key) {
            hash_store(with_keys(static_cast<std::uint64_t>(key), 1).get(), 1, nullptr, 0, bound_exact);
        }
        testing::internal::CaptureStdout();
        print_hash_stats();
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "Transposition table usage: " + std::string(percent) +
                                                              "%\nTransposition table size (bytes): 40920\n");
    }
}

/// What ends the process is said on the standard output, where a death test doesn't look.
void on_standard_error(void (*action)()) {
    dup2(STDERR_FILENO, STDOUT_FILENO);
    action();
}

TEST_F(Tables, SizesThatCannotBeEndTheProcess) {
    constexpr const char* no_table = "^Cannot allocate enough memory for transposition hash tables\\.\n$";
    EXPECT_EXIT(on_standard_error([] { hash_allocate(0); }), testing::ExitedWithCode(1), no_table);
    EXPECT_EXIT(on_standard_error([] { hash_allocate(31); }), testing::ExitedWithCode(1), no_table);
    qhash_bytes = -1;
    EXPECT_EXIT(on_standard_error(qhash_allocate), testing::ExitedWithCode(1), "^error: out of memory\\.\n$");
}

// --- Quiescence table ---------------------------------------------------------------------------------------------

TEST_F(Tables, QuiescenceTableKeepsTheLastOfEachSlot) {
    struct Last {
        const Game* game = nullptr;
        int score = 0, bound = 0;
    };
    RandomSource random(6);
    const auto positions = random_positions(random, 20);
    for (const auto& [bytes, entries] : {std::pair{1, 1U}, {7 * 40 + 39, 7U}, {8 * 40, 8U}}) {
        qhash_bytes = bytes;
        qhash_allocate();
        std::vector<Last> model(entries);
        for (int step = 0; step < 3000; ++step) {
            if (random.below(100) == 0) {
                qhash_clear();
                model.assign(entries, Last{});
            }
            const Game* game = positions[random.below(positions.size())].get();
            Last& last = model[game->zobrist_key % entries];
            if (random.below(2) == 0) {
                last = {game, static_cast<int>(random.below(20001)) - 10000, step % 3};
                qhash_store(game, step % 300, last.score, static_cast<std::uint8_t>(last.bound));
            }
            const QhashEntry* entry = qhash_probe(game);
            ASSERT_EQ(entry != nullptr, last.game == game);
            ASSERT_TRUE(entry == nullptr || (entry->score == last.score && entry->bound == last.bound));
        }
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
    struct Case {
        int score, wanted_depth, beta;
        std::uint8_t bound;
        bool good;
    };
    constexpr Case cases[] = {{-50, 4, 50, bound_lower, true},
                              {-50, 4, 50, bound_exact, true},
                              {-50, 4, 50, bound_upper, false},
                              {-50, 3, 49, bound_exact, true},
                              {-50, 4, 51, bound_exact, false},
                              {-50, 5, 50, bound_exact, false},
                              // A mate is stored as -9994, and taken as it stands.
                              {-9990, 4, 9994, bound_lower, true},
                              {-9990, 4, 9995, bound_lower, false}};
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
    for (const int kind : {kind_quiet, kind_double_step, kind_kingside_castling, kind_queenside_castling}) {
        update(white, kind, 3);
    }
    for (const int kind : {0x20, 0x12, 1, 2, 3, 6, 9, 10, 11, 14}) update(white, kind, 5);
    update(black, kind_quiet, 1);
    EXPECT_EQ(history[0][8][24], 4 * 8);
    EXPECT_EQ(history[1][8][24], 2);
    EXPECT_EQ(history[0][24][8], 0);
    constexpr std::int32_t ceiling = std::numeric_limits<std::int32_t>::max();
    for (int depth = 0; depth <= 60; ++depth) {
        const std::int32_t before = history[0][8][24];
        update(white, kind_quiet, depth);
        EXPECT_TRUE(history[0][8][24] > before || before == ceiling) << depth;
    }
    EXPECT_EQ(history[0][8][24], ceiling);
    clear_history();
    EXPECT_EQ(history[0][8][24] + history[1][8][24], 0);
}

TEST_F(Tables, KillersChangePlacesByTheirCounts) {
    const auto white = game_from("4k3/8/8/8/8/8/8/4K3 w - -"), black = game_from("4k3/8/8/8/8/8/8/4K3 b - -");
    constexpr int ply = 499;
    const int i = killer_index(white.get(), ply);
    // Each letter is a cut-off by a move and a man of its own; 0 zeroes the counts. Then the first and the second
    // killer with their counts.
    for (const auto& [cuts, expected] : {std::pair{"a", "-0 a0"},
                                         {"ab", "-0 b0"},
                                         {"aa", "a1 -0"},
                                         {"aab", "a1 b0"},
                                         {"aabb", "a1 b1"},
                                         {"aabbb", "b2 a1"},
                                         {"aabbc", "a1 c0"},
                                         {"aaab", "a2 b0"},
                                         {"aabb0c", "a0 c0"},
                                         {"aabb0b", "b1 a0"}}) {
        killer_one = killer_two = {};
        for (const char* cut = cuts; *cut != '\0'; ++cut) {
            if (*cut == '0') {
                clear_killer_counts();
            } else {
                killer_update({static_cast<std::uint8_t>(*cut), 30, kind_quiet}, ply, *cut, white.get());
            }
            killer_update({3, 4, kind_double_step}, ply, pawn, black.get());
            killer_update({5, 6, kind_quiet}, ply - 1, knight, white.get());
            for (const int kind : {0x20, 0x12, 0x41, 0x42, 1, 14}) {
                killer_update({9, 10, static_cast<std::uint8_t>(kind)}, ply, pawn, white.get());
            }
        }
        const auto text = [](const KillerSlot& slot, std::int32_t piece) {
            EXPECT_TRUE(slot.move.from == piece || slot.move.from == 0);
            return (slot.move.from == 0 ? '-' : static_cast<char>(slot.move.from)) + std::to_string(slot.count);
        };
        EXPECT_EQ(text(killer_one[i], killer_one_piece[i]) + " " + text(killer_two[i], killer_two_piece[i]), expected);
    }
    EXPECT_EQ(killer_one[killer_index(black.get(), ply)].move.kind, kind_double_step);
}

}  // namespace
}  // namespace varn
