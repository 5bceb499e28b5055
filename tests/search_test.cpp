// The search from its leaves to its root: exchanges, draws, the clock, quiescence, the node and the deepening.
#include <gtest/gtest.h>

#include <chrono>
#include <regex>
#include <thread>

#include "board/attacks.h"
#include "eval/evaluate.h"
#include "board/draws.h"
#include "search/exchange.h"
#include "search/quiesce.h"
#include "search/think.h"
#include "search_helpers.h"

namespace varn {
namespace {

using Search = SearchTest;

const std::string start_text = known_positions[0].text;
const std::string middle_text = known_positions[1].text;

// --- Exchanges ----------------------------------------------------------------------------------------------------

/// What the side to move gains if it goes on capturing on the square, or doesn't; played out on the board.
int reply_gain(Game& game, int target) {
    std::vector<Move> captures = moves_of(*generate_captures(&game, scratch_slot));
    std::erase_if(captures, [&](Move move) { return move.to != target || move.kind == kind_en_passant; });
    if (captures.empty()) return 0;
    const auto cost = [&](Move move) {
        return std::pair((piece_values[game.cells[move.from]] + 9999) % 10000, move.from);
    };
    Move move = std::ranges::min(captures, {}, cost);  // a king comes last
    const int won = piece_values[game.cells[target]];
    if (man_of(game.cells[move.from]) == king) {
        return game.turn == 0 ? (attacked_by_black(&game, target) ? 0 : won)
                              : (attacked_by_white(&game, target) ? 0 : won);
    }
    move.kind = kind_capture;
    return std::max(0, won - reply_gain(*after(game, move), target));
}

TEST_F(Search, ExchangeIsThatPlayedOutOnTheBoard) {
    int captures = 0;
    visit_random_games(41, 40, [&](Game& game) {
        const Game before = game;
        for (Move move : moves_of(*generate_captures(&game, 0))) {
            if (!is_legal(&game, move)) continue;
            if (move.kind == kind_en_passant) {
                ASSERT_EQ(exchange_value(&game, move), 0);
                continue;
            }
            const Move as_capture = {move.from, move.to, kind_capture};
            const int gain = piece_values[game.cells[move.to]] - reply_gain(*after(game, as_capture), move.to);
            ASSERT_EQ(exchange_value(&game, move), game.turn == 0 ? gain : -gain)
                << position_text(&game) << move_text(move);
            ++captures;
        }
        ASSERT_TRUE(same_game(game, before));
    });
    EXPECT_GT(captures, 1500);
}

// --- Draws --------------------------------------------------------------------------------------------------------

TEST_F(Search, RepetitionsAreFoundSinceTheLastPawnMoveOrCapture) {
    const auto game = game_from(start_text);
    const char* const round[] = {"g1f3", "g8f6", "f3g1", "f6g8"};
    for (int played = 1; played <= 12; ++played) {
        play_move(parse_move(round[(played - 1) % 4], game.get()), game.get());
        EXPECT_EQ(is_repetition(game.get()), played >= 4) << played;
        EXPECT_EQ(is_third_repetition(game.get()), played >= 8) << played;
    }
    for (const auto& [fifty, times] : {std::pair{0, 0}, {3, 0}, {4, 1}, {7, 1}, {8, 2}, {255, 2}}) {
        game->fifty = static_cast<std::uint8_t>(fifty);
        EXPECT_EQ(is_repetition(game.get()) + is_third_repetition(game.get()), times) << fifty;
    }
    game->fifty = 12;
    game->draw_hash[8].lock ^= 1;
    game->draw_hash[4].key ^= 1;
    EXPECT_EQ(is_repetition(game.get()) + is_third_repetition(game.get()), 1);
}

TEST_F(Search, DrawAfterMove) {
    const auto game = game_after(start_text, {"g1f3", "g8f6", "f3g1"});
    const Game before = *game;
    EXPECT_TRUE(draw_after_move(game.get(), parse_move("f6g8", game.get())));
    EXPECT_FALSE(draw_after_move(game.get(), parse_move("f6e4", game.get())));
    EXPECT_TRUE(same_game(*game, before));
}

TEST_F(Search, StatusOfFinishedGames) {
    for (const auto& row : table_rows("status.txt")) {
        const int status = node_status(game_of_row(row).get(), 5);
        EXPECT_EQ(status, row.at(2) == "-" ? game_goes_on : std::stoi(row.at(2))) << row.at(0) << row.at(1);
    }
}

// --- Clock --------------------------------------------------------------------------------------------------------

TEST_F(Search, ClockIsReadOnceIn16384Nodes) {
    time_limit_ms = 0;
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
    for (const std::uint32_t seen : {1U, 16383U, 16385U, 24576U}) {
        nodes = seen;
        EXPECT_TRUE(clock_ok()) << seen;
    }
    nodes = 3 * 16384;
    time_limit_ms = -1;  // without a sign: 49 days
    EXPECT_TRUE(clock_ok());
    time_limit_ms = 0;
    EXPECT_FALSE(clock_ok());
    nodes = 1;
    EXPECT_FALSE(clock_ok());  // once is enough
}

// --- Quiescence ---------------------------------------------------------------------------------------------------

TEST_F(Search, MaterialAloneDecidesWhereThereIsMuchOfIt) {
    const auto game = game_from(middle_text);
    for (const auto& [total, balance, decides] : {std::tuple{3000, 302, true},
                                                  {3000, 301, false},
                                                  {3000, -299, true},
                                                  {3000, -298, false},
                                                  {2999, 302, false}}) {
        for (const int turn : {0, 1}) {
            game->turn = static_cast<std::uint8_t>(turn);
            game->material = turn == 0 ? balance : -balance;
            game->w_material = (total + game->material) / 2;
            game->b_material = total - game->w_material;
            const int evaluated = evaluate(game.get(), 0, 0, 0) * (turn == 0 ? 1 : -1);
            EXPECT_EQ(static_score(game.get(), root_frame, 0, 0), decides ? balance : evaluated) << total << balance;
        }
    }
}

int quiesce_afresh(Game& game, int alpha, int beta) {
    qhash_clear();
    quiescent_nodes = 0;
    return quiesce(game, alpha, beta, root_frame);
}

TEST_F(Search, QuiescenceStandsPat) {
    const auto game = game_from("4k3/8/4p3/3p4/8/8/8/3QK3 w - -");  // the one capture loses
    const int stand = static_score(game.get(), root_frame, 0, 0);
    for (const auto& [alpha, beta, bound] :
         {std::tuple{stand - 1, stand, 2}, {stand, stand + 1, 1}, {stand - 1, stand + 1, 0}}) {
        EXPECT_EQ(quiesce_afresh(game.get(), alpha, beta), stand) << bound;
        EXPECT_EQ(quiescent_nodes, 1U);
        EXPECT_EQ(qhash_probe(game.get())->bound, bound);
        EXPECT_EQ(qhash_probe(game.get())->score, stand) << bound;
    }
}

TEST_F(Search, QuiescenceTriesWhatMayReachAlpha) {
    const auto nodes_of = [](const Game& game, int alpha) {
        Game copy = game;
        quiesce_afresh(&copy, alpha, full_window);
        EXPECT_TRUE(same_game(copy, game));
        return quiescent_nodes;
    };
    for (const auto& [text, gain] : {std::pair{"4k3/8/8/3p4/4P3/8/8/4K3 w - -", 100},
                                     {"8/P7/8/7k/8/8/8/K7 w - -", 850},
                                     {"8/8/8/3p4/4P1k1/8/8/2K5 b - -", 100},
                                     {"4k3/8/4p3/3p4/4P3/8/8/4K3 w - -", 0}}) {
        const auto game = game_from(text);
        const int stand = static_score(game.get(), root_frame, 0, 0);
        EXPECT_GT(nodes_of(*game, stand + gain + 300), 1U) << text;
        EXPECT_EQ(nodes_of(*game, stand + gain + 301), 1U) << text;
    }
    EXPECT_GT(nodes_of(*game_after("4k3/3p4/8/4P3/8/8/8/4K3 b - -", {"d7d5"}), -full_window), 1U);  // en passant
}

TEST_F(Search, QuiescenceAnswersBeforeItStandsPat) {
    const auto game = game_from("4k3/pppp4/8/8/8/8/4PPPP/4K3 w - -");
    const int stand = static_score(game.get(), root_frame, 0, 0);
    for (const auto& [bound, score, alpha, beta, answers] : {std::tuple{bound_upper, 700, 700, 800, true},
                                                             {bound_upper, 701, 700, 800, false},
                                                             {bound_lower, 700, 600, 700, true},
                                                             {bound_lower, 699, 600, 700, false},
                                                             {bound_exact, 700, 600, 800, true},
                                                             {bound_exact, 700, 800, 900, true}}) {
        qhash_store(game.get(), 77, score, bound);
        EXPECT_EQ(quiesce(game.get(), alpha, beta, root_frame), answers ? score : stand) << bound << score;
    }
    const auto drawn = game_from("4k3/8/8/8/8/8/8/4KB2 w - -");
    qhash_store(drawn.get(), 0, 55, bound_exact);
    clock_running = 0;
    EXPECT_EQ(quiesce(game.get(), 0, 1, root_frame), abort_score);
    EXPECT_EQ(quiesce(drawn.get(), 0, 1, root_frame), 0);
}

TEST_F(Search, NothingIsWrittenBehindTheLastPly) {
    const auto game = game_from(middle_text);
    const Game before = *game;
    PvLine line = {};
    const int stand = static_score(game.get(), root_frame, 0, 0);
    for (const int ply : {499, 498, 497}) {
        const SearchFrame frame = {1, ply, 0, 0, 0, 0};
        qhash_clear();
        hash_clear();
        nodes = 0;
        const int quiet = quiesce(game.get(), -full_window, full_window, frame);
        const int searched = search(game.get(), -full_window, full_window, 4, frame, &line);
        EXPECT_EQ(quiet == stand && searched == stand && nodes == 2, ply == 499) << ply;
        EXPECT_TRUE(same_game(*game, before));
    }
}

// --- The node -----------------------------------------------------------------------------------------------------

int search_at(Game& game, int alpha, int beta, int depth, int ply) {
    PvLine line = {};
    nodes = 0;
    return search(game, alpha, beta, depth, {static_cast<std::uint8_t>(ply), ply, 0, 0, 0, 0}, &line);
}

TEST_F(Search, NodeTakesTheAnswerOfTheTable) {
    const auto game = game_from(start_text);
    for (const auto& [bound, stored, alpha, beta, score] : {std::tuple{bound_upper, 20, 20, 60, 20},
                                                            {bound_lower, 60, 20, 60, 60},
                                                            {bound_exact, 60, 20, 60, 60},
                                                            {bound_exact, 20, 20, 60, 20},
                                                            {bound_exact, 9999 - 12, 20, 60, 9999 - 8},
                                                            {bound_upper, 12 - 9999, 20, 60, 8 - 9999},
                                                            {bound_exact, 9996, 20, 60, 10006}}) {
        hash_clear();
        hash_store(game.get(), 10, nullptr, stored, bound);
        EXPECT_EQ(search_at(game.get(), alpha, beta, 2, 6), score)
            << bound + 0 << stored;  // mates: 10 farther, 6 nearer
        EXPECT_EQ(nodes, 1U);
    }
    for (const auto& [bound, stored] :
         {std::pair{bound_upper, 21}, {bound_lower, 59}, {bound_exact, 59}, {bound_lower, 20}}) {
        hash_clear();
        hash_store(game.get(), 10, nullptr, stored, bound);
        search_at(game.get(), 20, 60, 1, 6);
        EXPECT_GT(nodes, 1U) << bound + 0 << stored;
    }
    const auto repeated = game_after(start_text, {"g1f3", "g8f6", "f3g1"});
    const Move back = parse_move("f6g8", repeated.get());
    hash_store(repeated.get(), 10, &back, 500, bound_exact);
    EXPECT_EQ(search_at(repeated.get(), -100, 0, 2, 1), 0);
    EXPECT_EQ(nodes, 1U);
}

TEST_F(Search, DrawsEndALineButNotTheRoot) {
    const auto game = game_from(known_positions[7].text);
    game->fifty = 100;
    for (const int ply : {0, 1}) {
        search_at(game.get(), -full_window, full_window, 1, ply);
        EXPECT_EQ(nodes == 1, ply == 1);
    }
}

TEST_F(Search, NullMoveIsTriedWhereItIsSafe) {
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
        const int score = search_at(game_from(text).get(), beta - 1, beta, depth, ply);
        EXPECT_EQ(null_move_at[ply], passes) << what;  // left behind by a pass that cut the node off
        EXPECT_TRUE(!passes || score == beta) << what;
    }
    const auto game = game_from(rich);
    const auto passes = [&](auto prepare) {
        hash_clear();
        main_pv = {};
        null_move_at = {};
        prepare();
        search_at(game.get(), 400, 500, 4, 1);
        return null_move_at[1] == 1;
    };
    EXPECT_TRUE(passes([] {}));
    EXPECT_FALSE(passes([] { null_move_at[0] = 1; }));
    EXPECT_FALSE(passes([&] { main_pv.keys[1] = game->zobrist_key, main_pv.locks[1] = game->zobrist_lock; }));
    EXPECT_FALSE(passes([&] { hash_store(game.get(), 9, nullptr, 450, bound_upper); }));
    EXPECT_FALSE(passes([&] { hash_store(game.get(), 9, nullptr, 450, bound_exact); }));
    EXPECT_TRUE(passes([&] { hash_store(game.get(), 9, nullptr, 450, bound_lower); }));
}

TEST_F(Search, ExtensionsShowInTheDepthThatIsStored) {
    constexpr const char* quiet = "r3k3/8/8/8/8/8/8/R3K3 w - -";
    constexpr const char* check = "r3k3/8/8/8/8/8/8/4K2r w - -";
    constexpr const char* seventh = "4k3/R7/8/8/8/8/1p6/4K3 w - -";
    constexpr int b2 = 14, a7 = 55;
    constexpr std::tuple<const char*, int, int, int, int, std::uint8_t, std::uint8_t, int> cases[] = {
        // the depth, what was taken, what was taken back, the last move's target, extensions for pawns and in all,
        // depth
        {check, 1, -1, -1, 0, 0, 2, 2},    {check, 1, -1, -1, 0, 0, 3, 1},    {quiet, 1, 11, 2, 0, 0, 0, 2},
        {quiet, 1, 14, 3, 0, 0, 0, 1},     {quiet, 1, 15, 7, 0, 0, 0, 1},     {seventh, 0, -1, -1, b2, 0, 0, 1},
        {seventh, 0, -1, -1, a7, 0, 0, 0}, {seventh, 0, -1, -1, b2, 1, 0, 0}, {seventh, 1, -1, -1, b2, 0, 0, 1},
    };
    for (const auto& [text, depth, taken, taken_back, to, pawns, total, stored] : cases) {
        const auto game = game_from(text);
        hash_clear();
        search_stack[0] = {{}, taken};
        search_stack[1] = {{0, static_cast<std::uint8_t>(to), kind_quiet}, taken_back};
        PvLine line = {};
        search(game.get(), -full_window, full_window, depth, {2, 2, pawns, total, 0, 0}, &line);
        const HashEntry* entry = hash_probe(game.get(), 0);
        EXPECT_EQ(entry != nullptr ? entry->depth : 0, stored) << text << taken << taken_back << to << total + 0;
    }
}

TEST_F(Search, RaisingAlphaMakesHistoryAndACutOffKillers) {
    const auto game = game_from(start_text);
    const auto search_start = [&](int beta) {
        hash_clear();
        clear_history();
        return search(game.get(), -full_window, beta, 1, root_frame, &main_pv);
    };
    const int best = search_start(full_window);
    const Move move = main_pv.moves[0];
    EXPECT_EQ(history[0][move.from][move.to], 2);
    EXPECT_EQ(killer_two[0].move, Move{});
    EXPECT_EQ(hash_probe(game.get(), 1)->bound, bound_exact);
    EXPECT_EQ(search_start(best), best);
    const HashEntry* entry = hash_probe(game.get(), 1);
    EXPECT_EQ(entry->bound, bound_lower);
    EXPECT_EQ(killer_two[0].move, entry->move);
    EXPECT_EQ(killer_two_piece[0], game->cells[entry->move.from]);
    hash_clear();
    EXPECT_EQ(search(game.get(), best + 50, best + 51, 1, root_frame, &main_pv), best);  // fails soft
    entry = hash_probe(game.get(), 1);
    EXPECT_TRUE(entry->bound == bound_upper && entry->has_move == 0 && entry->score == best);
}

// --- The root -----------------------------------------------------------------------------------------------------

std::string main_line(Game game) {
    std::string text;
    for (int i = 0; i < main_pv.length; ++i) {
        if (!is_valid_move(&game, main_pv.moves[i])) break;
        text += san_text(main_pv.moves[i], &game) + " ";
        make_move(&game, main_pv.moves[i]);
    }
    return text;
}

constexpr std::tuple<std::string_view, int, int, std::string_view> mates[] = {
    {"r1bq2r1/b4pk1/p1pp1p2/1p2pP2/1P2P1PB/3P4/1PPQ2P1/R3K2R w KQ -", 2, 4, "Qh6+ Kxh6 Bxf6# "},
    {"7k/8/4K3/8/8/8/8/6R1 w - -", 2, 4, "Kf7 Kh7 Rh1# "},
    {"r5rk/5p1p/5R2/4B3/8/8/7P/7K w - -", 3, 5, "Ra6+ f6 Bxf6+ Rg7 Rxa8# "},
    {"r5k1/2p2ppp/p1P2n2/8/1pP2bbQ/1B3PP1/PP1Pq2P/RNB3K1 b - -", 3, 6, "Qe1+ Kg2 Bxf3+ Kxf3 Qf1# "},
    {"2r1r3/p3P1k1/1p1pR1Pp/n2q1P2/8/2p4P/P4Q2/1B3RK1 w - -", 4, 7, "f6+ Kh8 g7+ Kg8 f7+ Kxg7 Qf6# "},
};

TEST_F(Search, Mates) {
    for (const auto& [text, moves, depth, line] : mates) {
        for (const bool mirror : {false, true}) {
            const auto game = game_from(mirror ? mirrored_text(text) : std::string(text));
            ply_limit = depth;
            post_thinking = 1;
            const std::string output = printed([&] { think(game.get()); });
            const std::string printed = output.substr(output.find_last_of('\n', output.size() - 2) + 1);
            EXPECT_EQ(std::stoi(printed.substr(3)), mate_score - (2 * moves - 1)) << text << mirror;
            std::string expected(line);
            for (char& c : expected) c = static_cast<char>(mirror && c >= '1' && c <= '8' ? '1' + '8' - c : c);
            EXPECT_EQ(main_line(*game), expected) << text;
            EXPECT_EQ(predicted_valid == 1 ? predicted_move : Move{}, main_pv.moves[1]);
        }
    }
}

/// Whoever changes this number has changed what the engine plays.
TEST_F(Search, ItsSignatureStands) {
    ply_limit = 4;
    think(game_from(std::get<0>(mates[0])).get());  // the window of the next search hangs on the last score
    qhash_clear();
    killer_one = killer_two = {};
    std::uint64_t all_nodes = 0;
    for (const KnownPosition& known : known_positions) {
        ply_limit = 6;
        think(game_from(known.text).get());
        all_nodes += search_nodes;
    }
    EXPECT_EQ(all_nodes, 6250635U);
}

TEST_F(Search, StoppedSearchesLeaveTheGameAndGiveALegalMove) {
    for (const KnownPosition& known : known_positions) {
        for (const int limit : {0, 1, 5}) {
            time_limit_ms = limit;
            const auto game = game_from(known.text);
            const Game before = *game;
            const Move* move = think(game.get());
            EXPECT_TRUE(*game == before) << known.text;
            ASSERT_NE(move, nullptr);
            EXPECT_TRUE(is_valid_move(game.get(), *move)) << known.text;
        }
    }
}

TEST_F(Search, StoppedBeforeItsFirstLineGivesTheFirstLegalMove) {
    const auto game = game_from("qqqqkqqq/qqqqqqqq/8/8/8/8/QQQQQQQQ/QQQQKQQQ w - -");
    time_limit_ms = 0;
    EXPECT_EQ(*think(game.get()), legal_moves(*game)[0]);
    EXPECT_EQ(iteration_depth, 1);
    EXPECT_EQ(predicted_valid, 0);
}

TEST_F(Search, ForcedAndFinishedGamesAreNotSearched) {
    xboard_mode = 0;
    for (const auto& [text, forced] : {std::pair{"7k/8/8/8/8/8/r7/7K w - -", "h1g1"},
                                       {"7k/8/8/8/8/6q1/r7/7K w - -", ""},
                                       {"k7/8/8/8/8/8/r4q2/7K w - -", ""}}) {
        const auto game = game_from(text);
        predicted_valid = 1;
        const Move* move = nullptr;
        EXPECT_EQ(printed([&] { move = think(game.get()); }), "");
        EXPECT_EQ(move == nullptr ? "" : move_text(*move), forced) << text;
        EXPECT_EQ(predicted_valid, 0);
        EXPECT_EQ(nodes, 0U);
    }
}

TEST_F(Search, DeepensToTheLimitAsked) {
    const auto game = game_from("4k3/8/8/8/8/8/8/4KB2 w - -");
    for (const auto& [limit, deepest] : {std::pair{-5, 1}, {0, 1}, {1, 1}, {7, 7}, {50, 50}, {99, 50}}) {
        ply_limit = limit;
        think(game.get());
        EXPECT_EQ(iteration_depth, deepest);
    }
}

TEST_F(Search, OutputHasItsColumns) {
    const auto game = game_from(start_text);
    main_pv.length = 3;
    main_pv.moves[0] = parse_move("e2e4", game.get());
    main_pv.moves[1] = {51, 35, kind_double_step};
    main_pv.moves[2] = {51, 35, kind_double_step};  // a tail that doesn't follow
    nodes = 1234;
    quiescent_nodes = 567;
    const auto print = [&] { print_search_line(game.get(), 7, 89, -42); };
    EXPECT_EQ(printed(print), "  7     -42      89       1234       e4    e5 \n");
    xboard_mode = 0;
    EXPECT_EQ(printed(print), "  7     -42      89       1234                  567       e4    e5 \n");

    ply_limit = 3;
    post_thinking = 1;
    const std::string line = "( {2}[1-3][ 0-9-]{8}[ 0-9]{8}[ 0-9]{11} {4}[ 0-9]{17} {4}[^\n]+ \n){6,}";
    const std::string header = "\n ply   score    time      nodes     quiescent nodes     principal variation\n\n";
    const std::string said = printed([&] { think(game.get()); });
    EXPECT_TRUE(std::regex_match(said, std::regex(header + line + "\nNPS: [1-9][0-9]*\n\n"))) << said;
}

}  // namespace
}  // namespace varn
