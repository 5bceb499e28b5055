// The search node: draws, table cutoffs, null move, extensions, history and killers, and the first move.
#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>
#include <string_view>

#include "search/quiesce.h"
#include "search/search.h"
#include "search_fixture.h"

namespace varn {
namespace {

class SearchNode : public SearchTest {
protected:
    int search_at(Game& game, int alpha, int beta, int depth, int ply) {
        PvLine line = {};
        s.nodes = 0;
        return search(s, game, alpha, beta, depth, {ply, static_cast<std::uint8_t>(ply), 0, 0}, line);
    }
};

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

TEST_F(SearchNode, TableEntriesCutOff) {
    const auto game = game_from(start_text);
    for (const auto& [bound, stored, alpha, beta, score] : {std::tuple{bound_upper, 20, 20, 60, 20},
                                                            {bound_lower, 60, 20, 60, 60},
                                                            {bound_exact, 60, 20, 60, 60},
                                                            {bound_exact, 20, 20, 60, 20},
                                                            {bound_exact, 9999 - 12, 20, 60, 9999 - 8},
                                                            {bound_upper, 12 - 9999, 20, 60, 8 - 9999},
                                                            {bound_exact, 9996, 20, 60, 10006}}) {
        hash_clear(table);
        hash_store(table, *game, 10, std::nullopt, stored, bound);
        EXPECT_EQ(search_at(*game, alpha, beta, 2, 6), score)
            << bound + 0 << stored;  // mates: 10 added when stored, 6 subtracted when read
        EXPECT_EQ(s.nodes, 1U);
    }
    for (const auto& [bound, stored] :
         {std::pair{bound_upper, 21}, {bound_lower, 59}, {bound_exact, 59}, {bound_lower, 20}}) {
        hash_clear(table);
        hash_store(table, *game, 10, std::nullopt, stored, bound);
        search_at(*game, 20, 60, 1, 6);
        EXPECT_GT(s.nodes, 1U) << bound + 0 << stored;
    }
    const auto repeated = game_after(start_text, {"g1f3", "g8f6", "f3g1"});
    const Move back = parse_move(*repeated, "f6g8");
    hash_store(table, *repeated, 10, back, 500, bound_exact);
    EXPECT_EQ(search_at(*repeated, -100, 0, 2, 1), 0);
    EXPECT_EQ(s.nodes, 1U);
}

TEST_F(SearchNode, DrawsEndALineExceptAtTheRoot) {
    const auto game = game_from(known_positions[7].text);
    game->fifty = 100;
    for (const int ply : {0, 1}) {
        search_at(*game, -full_window, full_window, 1, ply);
        EXPECT_EQ(s.nodes == 1, ply == 1);
    }
}

TEST_F(SearchNode, NullMoveConditions) {
    constexpr const char* rich = "k5r1/pppp4/8/8/8/8/PPPPQ3/K6R w - -";
    constexpr std::tuple<const char*, const char*, int, int, int, bool> cases[] = {
        // the text, depth, beta and ply
        {"beyond a pawn's hope", rich, 2, 1050, 1, false},
        {"black", "k6r/ppppq3/8/8/8/8/PPPP4/K5R1 b - -", 4, 500, 1, true},
        {"shallow", rich, 2, 500, 1, true},
        {"too shallow", rich, 1, 500, 1, false},
        {"root", rich, 4, 500, 0, false},
        {"check", "k3r3/pppp4/8/8/8/8/PPPP4/Q3K2R w - -", 4, -500, 1, false},
        {"one bishop", "k7/8/2b5/8/8/8/PPPPQ3/K6R w - -", 4, 500, 1, false},
        {"one rook", "k7/8/2r5/8/8/8/PPPPQ3/K6R w - -", 4, 500, 1, true},
        {"pawns", "k7/pppp4/8/8/8/8/PPPPPPPP/K7 w - -", 4, -200, 1, false},
    };
    for (const auto& [what, text, depth, beta, ply, passes] : cases) {
        const int score = search_at(*game_from(text), beta - 1, beta, depth, ply);
        EXPECT_EQ(s.null_move_at[ply], passes) << what;  // not reset if the null move failed high
        EXPECT_TRUE(!passes || score == beta) << what;
    }
    const auto game = game_from(rich);
    const auto passes = [&](auto prepare) {
        hash_clear(table);
        s.main_pv = {};
        s.null_move_at = {};
        prepare();
        search_at(*game, 400, 500, 4, 1);
        return s.null_move_at[1] == 1;
    };
    EXPECT_TRUE(passes([] {}));
    EXPECT_FALSE(passes([&] { s.null_move_at[0] = 1; }));
    EXPECT_FALSE(passes([&] { s.main_pv.keys[1] = game->zobrist_key, s.main_pv.locks[1] = game->zobrist_lock; }));
    EXPECT_FALSE(passes([&] { hash_store(table, *game, 9, std::nullopt, 450, bound_upper); }));
    EXPECT_FALSE(passes([&] { hash_store(table, *game, 9, std::nullopt, 450, bound_exact); }));
    EXPECT_TRUE(passes([&] { hash_store(table, *game, 9, std::nullopt, 450, bound_lower); }));
}

TEST_F(SearchNode, ExtensionsIncreaseTheStoredDepth) {
    constexpr const char* quiet = "r3k3/8/8/8/8/8/8/R3K3 w - -";
    constexpr const char* check = "r3k3/8/8/8/8/8/8/4K2r w - -";
    constexpr const char* seventh = "4k3/R7/8/8/8/8/1p6/4K3 w - -";
    constexpr int b2 = 14, a7 = 55;
    constexpr std::tuple<const char*, int, int, int, int, std::uint8_t, std::uint8_t, int> cases[] = {
        // depth, captured piece, recaptured piece, last move's target, pawn extensions, all extensions, expected depth
        {check, 1, -1, -1, 0, 0, 2, 2},    {check, 1, -1, -1, 0, 0, 3, 1},    {quiet, 1, 11, 2, 0, 0, 0, 2},
        {quiet, 1, 14, 3, 0, 0, 0, 1},     {quiet, 1, 15, 7, 0, 0, 0, 1},     {seventh, 0, -1, -1, b2, 0, 0, 1},
        {seventh, 0, -1, -1, a7, 0, 0, 0}, {seventh, 0, -1, -1, b2, 1, 0, 0}, {seventh, 1, -1, -1, b2, 0, 0, 1},
    };
    for (const auto& [text, depth, taken, taken_back, to, pawns, total, stored] : cases) {
        const auto game = game_from(text);
        hash_clear(table);
        s.search_stack[0] = {{}, taken};
        s.search_stack[1] = {{0, static_cast<std::uint8_t>(to), kind_quiet}, taken_back};
        PvLine line = {};
        search(s, *game, -full_window, full_window, depth, {2, 2, pawns, total}, line);
        const HashEntry* entry = hash_probe(table, *game, 0);
        EXPECT_EQ(entry != nullptr ? entry->depth : 0, stored) << text << taken << taken_back << to << total + 0;
    }
}

TEST_F(SearchNode, RaisingAlphaUpdatesHistoryAndCutoffsKillers) {
    const auto game = game_from(start_text);
    const auto search_start = [&](int beta) {
        hash_clear(table);
        clear_history(s.history);
        return search(s, *game, -full_window, beta, 1, root_frame, s.main_pv);
    };
    const int best = search_start(full_window);
    const Move move = s.main_pv.moves[0];
    EXPECT_EQ(s.history[Side::white][move.from][move.to], 2);
    EXPECT_EQ(s.killers.killer_two[0].move, Move{});
    EXPECT_EQ(hash_probe(table, *game, 1)->bound, bound_exact);
    EXPECT_EQ(search_start(best), best);
    const HashEntry* entry = hash_probe(table, *game, 1);
    EXPECT_EQ(entry->bound, bound_lower);
    EXPECT_EQ(s.killers.killer_two[0].move, entry->move);
    EXPECT_EQ(s.killers.killer_two_piece[0], game->cells[entry->move.from]);
    hash_clear(table);
    EXPECT_EQ(search(s, *game, best + 50, best + 51, 1, root_frame, s.main_pv), best);  // fail-soft
    entry = hash_probe(table, *game, 1);
    EXPECT_TRUE(entry->bound == bound_upper && entry->has_move == 0 && entry->score == best);
}

TEST_F(SearchNode, FirstMoveComesFromTheTableOrIid) {
    const auto game = game_from(middle_text);
    const std::vector<Move> legal = every_legal_move(*game);
    const auto first = [&](int depth, int alpha, int beta) {
        s.nodes = 0;
        return first_move(s, *game, 3, alpha, beta, depth);
    };
    hash_store(table, *game, 4, legal[5], 0, bound_upper);
    EXPECT_EQ(first(5, 10, 11), legal[5]);  // an entry one ply too shallow still gives its move
    EXPECT_EQ(first(0, 10, 11), std::nullopt);
    EXPECT_EQ(first(6, 10, 11), std::nullopt);
    for (const auto& [depth, beta, searches] : {std::tuple{3, 11, false}, {2, 12, false}, {3, 12, true}}) {
        hash_clear(table);
        hash_store(table, *game, 9, std::nullopt, 0, bound_upper);
        first(depth, 10, beta);
        EXPECT_EQ(s.nodes != 0, searches) << depth << beta;
    }
    hash_clear(table);
    const Game before = *game;
    const auto found = first(3, -full_window, full_window);
    ASSERT_TRUE(found && std::ranges::find(legal, *found) != legal.end());
    EXPECT_TRUE(same_game(*game, before));
}

}  // namespace
}  // namespace varn
