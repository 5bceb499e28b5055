// `go`: limits, search output, and exactly one `bestmove` per search.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <set>
#include <thread>

#include "board/draws.h"
#include "process.h"
#include "uci/session.h"

namespace varn {
namespace {

using std::chrono::milliseconds;

constexpr TableSizes small_sizes = {.hash_bits = 16, .qhash_bytes = 1 << 20, .phash_bytes = 1 << 16};

/// Plays the line; returns false at the first illegal move.
bool is_playable_line(Game game, const std::vector<std::string>& line) {
    for (const std::string& text : line) {
        const Move move = parse_move(game, text);
        if (move_text(move) != text || !is_valid_move(game, move)) return false;
        make_move(game, move);
    }
    return true;
}

std::vector<std::string> legal_texts(const Game& game) {
    std::vector<std::string> texts;
    for (const Move move : every_legal_move(game)) texts.push_back(move_text(move));
    return texts;
}

bool contains(const std::vector<std::string>& texts, const std::string& text) {
    return std::ranges::find(texts, text) != texts.end();
}

std::string fen_line(const std::string& position) { return "position fen " + position; }

/// Checks that apply to every search with legal moves.
void expect_sound_search(const Game& game, const std::string& said) {
    EXPECT_TRUE(contains(legal_texts(game), best_move_in(said))) << said;
    const std::vector<std::string> answer = split(split(answers_in(said).at(0), "\n")[0], " ");
    if (answer.size() == 4) {
        EXPECT_EQ(answer[2], "ponder");
        EXPECT_TRUE(is_playable_line(game, {answer[1], answer[3]})) << said;
    }
    std::uint64_t nodes = 0;
    for (const InfoLine& info : info_lines(said)) {
        EXPECT_FALSE(info.pv.empty()) << said;
        EXPECT_TRUE(is_playable_line(game, info.pv)) << said;
        EXPECT_GE(info.selective_depth, info.depth) << said;
        EXPECT_GE(info.nodes, nodes) << said;
        EXPECT_EQ(info.nodes_per_second, info.nodes * 1000 / std::max<std::uint64_t>(1, info.milliseconds)) << said;
        nodes = info.nodes;
    }
}

// --- Limits ---------------------------------------------------------------------------------------------------------

/// The limits of a `go` line, with the rest of that line behind "go ".
struct AnyGo {
    SearchLimits limits;
    std::string words;
};

AnyGo any_go(RandomSource& random, const Game& game) {
    const int depth = 1 + static_cast<int>(random.below(4));
    AnyGo go = {{.depth = depth, .search_forced = true}, "depth " + std::to_string(depth)};
    switch (random.below(6)) {
        case 0:
            go.limits.nodes = 1 + random.below(3000);
            go.limits.lines = 1 + static_cast<int>(random.below(3));
            go.words += " nodes " + std::to_string(go.limits.nodes);
            break;
        case 1:
            go.limits.only = every_legal_move(game);
            std::erase_if(go.limits.only, [&](Move) { return random.below(2) == 0; });
            if (!go.limits.only.empty()) go.words += " searchmoves";
            for (const Move move : go.limits.only) go.words += ' ' + move_text(move);
            break;
        case 2:
            go.limits.search_forced = false;
            go.words += " wtime 90000000 btime 90000000";
            break;
        case 3: go.words += " ponder; ponderhit"; break;
        case 4: go.limits.lines = 3; break;
        default: break;
    }
    return go;
}

/// Each search finds what the one before it left; `ucinewgame` and Clear Hash clear their part of it.
TEST(UciGo, SearchesFollowEachOtherAsInThink) {
    UciSession session;
    RandomSource random(9);
    const auto other = new_search();
    ASSERT_EQ(allocate_tables(*other, small_sizes), TableFault::none);
    reset_search(*other);
    std::string sent;
    for (int i = 0; i < 200 && !testing::Test::HasFailure(); ++i) {
        std::string before = fen_line(known_positions[random.below(known_positions.size())].text);
        switch (random.below(8)) {
            case 0:
                before += "; ucinewgame";
                reset_search(*other);
                break;
            case 1:
                before += "; setoption name Clear Hash";
                clear_tables(*other);
                break;
            case 2: before = "position startpos moves e2e4 e7e5"; break;
            case 3: before = "isready"; break;
            default: break;
        }
        session.send(before);
        const Game& game = *session.uci.game;
        if (every_legal_move(game).empty()) continue;
        const auto [limits, words] = any_go(random, game);
        const std::string lines = "setoption name MultiPV value " + std::to_string(limits.lines) + "; go " + words;
        sent += before + "; " + lines + '\n';
        const std::string said = session.search(lines);
        const Move move = *think(*other, game, limits, {});
        const auto reply = other->predicted_move;
        EXPECT_EQ(answers_in(said),
                  std::vector{"bestmove " + move_text(move) + (reply ? " ponder " + move_text(*reply) : "")})
            << sent;
        EXPECT_EQ(session.uci.search->search_nodes, other->search_nodes) << sent;
        expect_sound_search(game, said);
        const auto infos = last_lines(said);
        EXPECT_TRUE(infos.empty() || infos[0].pv[0] == move_text(move)) << "not of the best line: " << sent;
        if (!limits.search_forced || limits.nodes != SearchLimits{}.nodes) continue;
        ASSERT_FALSE(infos.empty()) << said;
        EXPECT_EQ(infos[0].depth, limits.depth) << sent;
        EXPECT_EQ(infos[0].nodes, other->search_nodes) << sent;
    }
}

TEST(UciGo, NodeLimitIsExact) {
    UciSession session;
    for (const std::size_t place : {0U, 1U}) {
        const std::string& position = known_positions[place].text;
        for (const char* lines : {"1", "3"}) {
            session.send(std::string("setoption name MultiPV value ") + lines + "; " + fen_line(position));
            for (const std::uint64_t nodes : {1U, 2U, 3U, 17U, 1000U, 16383U, 16384U, 16385U, 20000U, 70001U}) {
                expect_sound_search(*session.uci.game, session.search("go nodes " + std::to_string(nodes)));
                EXPECT_EQ(session.uci.search->search_nodes, nodes) << position;
            }
        }
    }
}

TEST(UciGo, EndsAtTheFirstLimitReached) {
    UciSession session;
    for (const char* words :
         {"movetime 1", "movetime 50", "movetime 0", "movetime -5", "wtime 500 btime 500",
          "wtime 1 btime 1 winc 0 binc 0 movestogo 1", "wtime -300 btime 4", "wtime 0 btime 0", "mate 1 depth 4",
          "depth 0", "depth -3", "nodes 0", "nodes 99999999999999999999999 depth 2", "depth 99999999999 movetime 20",
          "depth 3 infinity 7 x", "movetime 20 depth 99"}) {
        EXPECT_TRUE(is_done_within(milliseconds(0), milliseconds(150), [&] {
            expect_sound_search(*session.uci.game, session.search(std::string("go ") + words));
        })) << words;
    }
}

TEST(UciGo, ReportsTheTimeAfterOverhead) {
    UciSession session;
    const auto budget_after = [&](const std::string& words) {
        session.search("go depth 1 " + words);
        return session.uci.job.limit_ms;
    };
    for (const int overhead_ms : {0, 30, 500}) {
        session.send("setoption name Move Overhead value " + std::to_string(overhead_ms));
        EXPECT_EQ(budget_after("movetime 4000"), 4000 - overhead_ms);
        EXPECT_EQ(budget_after("movetime 10"), std::max(10 - overhead_ms, 5));
        EXPECT_EQ(budget_after("wtime 60000 btime 5 winc 100 binc 3 movestogo 7"),
                  allocate_time({60000, 100, 7}, overhead_ms));
        session.send("position startpos moves e2e4");
        EXPECT_EQ(budget_after("wtime 5 btime 60000 winc 3 binc 100"), allocate_time({60000, 100, 0}, overhead_ms));
        EXPECT_EQ(budget_after("btime 60000 movetime 7"), std::max(7 - overhead_ms, 4)) << "the less of the two";
        session.send("position startpos");
    }
}

// --- Infinite and pondering searches --------------------------------------------------------------------------------

TEST(UciGo, InfiniteAndPonderingSearchesHoldTheMoveBack) {
    UciSession session;
    const std::string mated = "R5k1/5ppp/8/8/8/8/8/4K3 b - -", stalemate = "7k/8/8/8/8/8/5q2/7K w - -",
                      single = "k7/8/8/8/8/8/r7/7K w - -", drawn = "8/8/8/8/8/8/k7/7K w - -";
    const auto expect_none_before = [&](const std::string& position, const std::string& go, const std::string& end,
                                        const std::string& last_info) {
        SCOPED_TRACE(position + ": " + go + ", " + end);
        std::string said = session.answer(fen_line(position) + "; " + go);
        if (said.find(last_info) == std::string::npos) said += session.said_with(last_info);
        std::this_thread::sleep_for(milliseconds(30));
        said += session.answer("isready");
        EXPECT_EQ(said.find("bestmove"), std::string::npos) << said;
        EXPECT_TRUE(said.ends_with("readyok\n")) << said;
        session.send(end);
        said = session.said_with("bestmove ");
        join_thread(session.uci.job.thread);
        EXPECT_EQ(answers_in(said + session.said()).size(), 1U);
        return best_move_in(said);
    };
    for (const std::string& position : {mated, stalemate}) {
        const std::string info = position == mated ? "info depth 0 score mate 0\n" : "info depth 0 score cp 0\n";
        for (const char* go : {"go infinite", "go ponder wtime 100 btime 100", "go", "go infinite depth 1"}) {
            EXPECT_EQ(expect_none_before(position, go, "stop", info), "(none)");
        }
        EXPECT_EQ(expect_none_before(position, "go ponder wtime 100 btime 100", "ponderhit", info), "(none)");
        const std::string at_once = session.search("go wtime 100 btime 100");
        EXPECT_EQ(at_once, info + "bestmove (none)\n");
    }
    for (const char* go : {"go infinite", "go ponder movetime 1"}) {
        EXPECT_EQ(expect_none_before(single, go, "stop", "info depth 3 "), "h1g1");
        expect_none_before(drawn, go, "stop", "info depth 50 ");
    }
    EXPECT_EQ(expect_none_before(single, "go ponder wtime 1000 btime 1000", "ponderhit", ""), "h1g1");
    expect_none_before(drawn, "go ponder movetime 1000", "ponderhit", "info depth 50 ");
    expect_none_before(drawn, "go ponder infinite depth 2", "ponderhit; stop", "info depth 2 ");
    // After `ponderhit` a search without limits runs until it is stopped.
    session.send("position startpos; go ponder; ponderhit");
    std::this_thread::sleep_for(milliseconds(20));
    EXPECT_EQ(answers_in(session.said()).size(), 0U);
    session.send("stop; stop");
    session.said_with("bestmove ");
    session.send("stop; ponderhit; stop");
    finish_search(session.uci);
    EXPECT_EQ(answers_in(session.said()).size(), 0U);
}

TEST(UciGo, PonderhitStartsTheFullTime) {
    UciSession session;
    EXPECT_TRUE(is_done_within(milliseconds(345), milliseconds(500), [&] {
        session.send("setoption name Move Overhead value 0; position startpos moves e2e4; go ponder movetime 150");
        std::this_thread::sleep_for(milliseconds(200));
        EXPECT_EQ(answers_in(session.said()).size(), 0U);
        session.send("ponderhit");
        session.said_with("bestmove ");
    }));
}

// --- Principal variations -------------------------------------------------------------------------------------------

TEST(UciGo, MultiPvGivesTheBestLines) {
    UciSession session;
    RandomSource random(12);
    for (const KnownPosition& known : known_positions) {
        for (const int lines : {1, 2, 5, 256}) {
            session.send("setoption name MultiPV value " + std::to_string(lines) + "; " + fen_line(known.text));
            std::vector<std::string> wanted = legal_texts(*session.uci.game);
            if (wanted.empty()) continue;
            std::string go = lines == 256 ? "go depth 2" : "go depth 4";
            if (random.next() % 2 == 0) {
                std::erase_if(wanted, [&](const std::string&) { return random.next() % 2 == 0; });
                if (wanted.empty()) wanted = {legal_texts(*session.uci.game).back()};
                go += " searchmoves";
                for (const std::string& move : wanted) go += ' ' + move;
            }
            const std::string said = session.search(go);
            expect_sound_search(*session.uci.game, said);
            for (const InfoLine& info : info_lines(said))
                EXPECT_TRUE(contains(wanted, info.pv[0])) << go << '\n' << said;
            const std::vector<InfoLine> last = last_lines(said);
            ASSERT_EQ(last.size(), std::min(static_cast<std::size_t>(lines), wanted.size())) << go << '\n' << said;
            EXPECT_EQ(best_move_in(said), last[0].pv[0]);
            std::set<std::string> first_moves;
            for (std::size_t i = 0; i < last.size(); ++i) {
                EXPECT_EQ(last[i].line_number, static_cast<int>(i) + 1) << said;
                EXPECT_EQ(last[i].depth, last[0].depth) << said;
                EXPECT_LE(last[i].value(), last[i == 0 ? 0 : i - 1].value()) << said;
                first_moves.insert(last[i].pv[0]);
            }
            EXPECT_EQ(first_moves.size(), last.size()) << said;
        }
    }
}

}  // namespace
}  // namespace varn
