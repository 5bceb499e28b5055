// Commands during a search, in any order: each search sends one legal move.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "process.h"
#include "uci/session.h"

namespace varn {
namespace {

using std::chrono::milliseconds;

constexpr TableSizes tiny_sizes = {.hash_bits = 10, .qhash_bytes = 40000, .phash_bytes = 16000};

std::string any_of(RandomSource& random, std::initializer_list<const char*> lines) {
    return lines.begin()[random.next() % lines.size()];
}

std::string any_line(RandomSource& random) {
    switch (random.next() % 8) {
        case 0:
        case 1: return any_of(random, {"stop", "ponderhit", "stop", "ponderhit", "isready", "d", "eval", "nonsense"});
        case 2:
            return any_of(random, {"setoption name Hash value 1", "setoption name Clear Hash", "ucinewgame",
                                   "setoption name MultiPV value 3", "setoption name MultiPV value 1", "debug on",
                                   "debug off", "setoption name Hash value 0", "perft 1", "go perft 2", "uci"});
        case 3: return "position fen " + known_positions[random.next() % known_positions.size()].text;
        case 4:
            return any_of(random, {"position startpos moves e2e4 e7e5 g1f3", "position fen 8/8/8/8/8/8/k7/7K w - -",
                                   "position startpos moves f2f3 e7e5 g2g4 d8h4", "position fen x",
                                   "position fen 7k/8/8/8/8/8/5q2/7K w - -", "position fen k7/8/8/8/8/8/r7/7K w - -"});
        default:
            return any_of(random, {"go infinite", "go ponder wtime 50 btime 50", "go ponder depth 3", "go depth 2",
                                   "go nodes 100", "go movetime 1", "go wtime 30 btime 30 winc 1 binc 1", "go",
                                   "go searchmoves e2e4 h1g1 nodes 500", "go mate 2 nodes 300", "go ponder infinite",
                                   "go ponder movetime 2", "go ponder"});
    }
}

TEST(UciThread, EachSearchGivesOneLegalMoveInAnyOrderOfLines) {
    UciSession session(tiny_sizes);
    RandomSource random(2024);
    std::vector<Game> asked;
    std::string said;
    for (int i = 0; i < 6000; ++i) {
        const std::string line = any_line(random);
        session.send(line);
        // Most lines are sent at once, before the search has started.
        if (random.next() % 8 == 0) std::this_thread::sleep_for(std::chrono::microseconds(random.next() % 2000));
        if (line.starts_with("go") && !line.starts_with("go perft")) asked.push_back(*session.uci.game);
        if (i % 100 == 0) said += session.said();
    }
    finish_search(session.uci);
    said += session.said();
    const std::vector<std::string> answers = answers_in(said);
    ASSERT_EQ(answers.size(), asked.size());
    ASSERT_GT(asked.size(), 1000U);
    for (std::size_t i = 0; i < answers.size(); ++i) {
        const std::string text = split(answers[i], " ")[1];
        const std::vector<Move> legal = every_legal_move(asked[i]);
        const bool is_right =
            legal.empty() ? text == "(none)" : std::ranges::find(legal, parse_move(asked[i], text)) != legal.end();
        EXPECT_TRUE(is_right) << answers[i] << " in " << position_text(asked[i]);
    }
}

TEST(UciThread, LinesOfTwoThreadsAreNotInterleaved) {
    UciSession session(tiny_sizes);
    std::string said;
    for (int round = 0; round < 20; ++round) {
        session.send("position startpos; go nodes 20000");
        for (int i = 0; i < 100; ++i) session.send("isready");
        finish_search(session.uci);
        said += session.said();
    }
    std::size_t ready = 0;
    for (const std::string& line : split(said, "\n")) {
        ready += line == "readyok" ? 1 : 0;
        EXPECT_TRUE(line.empty() || line == "readyok" || line.starts_with("info depth ") ||
                    line.starts_with("bestmove "))
            << line;
    }
    EXPECT_EQ(ready, 2000U);
}

TEST(UciThread, StopsAtOnce) {
    UciSession session(tiny_sizes);
    session.send("position fen " + known_positions[1].text);
    for (int round = 0; round < 40; ++round) {
        const milliseconds searched(round % 4 * 3);
        EXPECT_TRUE(is_done_within(searched, searched + milliseconds(250), [&] {
            session.send(round % 2 == 0 ? "go infinite" : "go ponder wtime 100000 btime 100000");
            std::this_thread::sleep_for(searched);
            session.send("stop");
            finish_search(session.uci);
            EXPECT_EQ(answers_in(session.said()).size(), 1U);
        }));
    }
}

}  // namespace
}  // namespace varn
