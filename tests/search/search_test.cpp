// The ends of the per-ply arrays and of the number ranges. All else is compared with a plain search: see
// search_sequence_test.cpp.
#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>
#include <string_view>

#include "search/quiesce.h"
#include "search/search.h"
#include "search_fixture.h"

namespace varn {
namespace {

using SearchNode = SearchTest;

TEST_F(SearchNode, NothingIsWrittenBeyondTheLastPly) {
    const auto game = game_from(middle_text);
    const Game before = *game;
    PvLine line = {};
    const int stand = static_score(s, *game, 0);
    for (const int ply : {499, 498, 497}) {
        qhash_clear(qtable);
        hash_clear(table);
        s.nodes = 0;
        const int quiet = quiesce(s, *game, -full_window, full_window, ply, 1);
        const int searched = search(s, *game, -full_window, full_window, 4, {ply, 1, 0, 0}, line);
        EXPECT_EQ(quiet == stand && searched == stand && s.nodes == 2, ply == 499) << ply;
        EXPECT_TRUE(same_game(*game, before));
    }
}

/// Runs the work on a thread with this stack size.
void run_on_stack(std::size_t bytes, std::function<void()> work) {
    const auto run = [](void* task) -> void* {
        (*static_cast<std::function<void()>*>(task))();
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_t thread = {};
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, bytes), 0);
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

/// At an absurd depth internal iterative deepening reaches the last ply.
TEST_F(SearchNode, TheDeepestLineFitsASmallStack) {
    constexpr int depth = 2 * ply_slots;
    const bool is_sanitized = !std::string_view(VARN_SANITIZERS).empty();
    const auto game = game_from(middle_text);
    const Game before = *game;
    std::ranges::fill(s.in_check_at, std::uint8_t{7});
    s.clock.time_limit_ms = 200;
    start_clock(s.clock);
    run_on_stack(is_sanitized ? 8U << 20U : 512U << 10U, [&] {
        EXPECT_EQ(search(s, *game, -full_window, full_window, depth, root_frame, s.main_pv), abort_score);
    });
    EXPECT_NE(s.in_check_at[last_ply - 1], 7) << "the line wasn't that deep";
    EXPECT_TRUE(same_game(*game, before));
}

/// In games balances are multiples of ten.
TEST_F(SearchNode, MaterialAloneDecidesFromItsLimitsOn) {
    const auto game = game_from(middle_text);
    constexpr std::tuple<int, int, bool> cases[] = {
        {3000, 302, true}, {3000, 301, false}, {3000, -299, true}, {3000, -298, false}, {2999, 302, false}};
    for (const auto& [total, balance, decides] : cases) {
        for (const int sign : {1, -1}) {
            game->turn = sign > 0 ? Side::white : Side::black;
            game->material = sign * balance;
            game->w_material = (total + game->material) / 2;
            game->b_material = total - game->w_material;
            EXPECT_EQ(static_score(s, *game, 0), decides ? balance : sign * evaluate(*game, s.eval))
                << total << balance;
        }
    }
}

TEST_F(SearchNode, HistoryNeverOverflows) {
    const auto game = game_from(start_text);
    const std::int32_t& entry = s.history[Side::white][e1][e8];
    for (std::int64_t depth = 0, before = entry; depth <= 70; ++depth, before = entry) {
        history_update(s.history, *game, {e1, e8, kind_quiet}, static_cast<int>(depth));
        EXPECT_TRUE(entry > before || entry == INT32_MAX) << depth;
    }
}

}  // namespace
}  // namespace varn
