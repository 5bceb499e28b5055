// System faults: out of memory, non-blocking pipes, signals, clock jumps, and games longer than their record.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <thread>

#include "dialogue.h"
#include "positions.h"

namespace varn {
namespace {

/// While it exists, engines start with the given fault.
class Fault {
public:
    explicit Fault(const char* name) : name_("VARN_FAULT", name) {}

private:
    Environment name_;
    Environment library_ = Environment("LD_PRELOAD", VARN_FAULTS);
};

std::string repeated(int times, std::string_view text) {
    std::string all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
}

TEST(Faults, OutOfMemoryEndsTheProcessWithAMessage) {
    if (!std::string_view(VARN_SANITIZERS).empty()) GTEST_SKIP() << "a sanitizer has an allocator of its own";
    const Fault memory("memory");
    const std::pair<Files, std::string> cases[] = {
        {{{"varn.ini", "hash 21"}}, "Cannot allocate enough memory for transposition hash tables.\n"},
        {{{"varn.ini", "hash 9\nqhash 100000000"}}, "error: out of memory.\n"},
        {{{"varn.ini", "hash 9\nqhash 40\nphash 50000000"}},
         "error:  cannot allocate 50000000 bytes for pawn hash tables.\n"},
    };
    for (const auto& [files, output] : cases) {
        const Outcome outcome = run_console("runsuite suite log\n", files);
        EXPECT_EQ(outcome.output, output);
        EXPECT_EQ(outcome.status, 1) << output;
    }
}

TEST(Faults, SlowPipesAndSignalsLoseNothing) {
    const std::pair<std::string, std::string> cases[] = {
        {repeated(600, "help\n"), ""},
        {"xboard\n" + repeated(30000, "ping\n"), "Varn> \n" + repeated(30000, "Illegal Move: ????\n")},
    };
    for (const char* name : {"none", "ends that don't wait", "signals that interrupt"}) {
        for (const auto& [input, expected] : cases) {
            const std::string output = expected.empty() ? run_console(input).output : expected;
            const Fault fault(name);
            Process engine;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));  // waiting for its first line
            engine.send(input);
            for (const int signal : {SIGURG, SIGSTOP, SIGWINCH, SIGCONT, SIGURG}) {
                std::this_thread::sleep_for(std::chrono::milliseconds(50));  // its output isn't read
                engine.send_signal(signal);
            }
            engine.close_input();
            const Outcome outcome = engine.finish();
            EXPECT_TRUE(outcome.output == output) << name << input.substr(0, 9) << outcome.output.size();
            EXPECT_EQ(outcome.status, 0);
        }
    }
}

TEST(Faults, ClockJumpsDoNotBreakSearches) {
    const std::pair<const char*, int> cases[] = {{"none", 500}, {"clock wraps", 500}, {"clock jumps back", 0}};
    for (const auto& [name, least_ms] : cases) {
        const Fault fault(name);
        Process engine;
        const auto started = std::chrono::steady_clock::now();
        engine.send("time 500\ne2e4\n");
        engine.close_input();  // and a search doesn't notice the end of input
        engine.read_until("my move is: ");
        const auto taken = std::chrono::steady_clock::now() - started;
        EXPECT_GE(taken, std::chrono::milliseconds(least_ms)) << name;
        EXPECT_LT(taken, std::chrono::seconds(20)) << name;
        EXPECT_EQ(engine.finish().status, 0);
    }
}

TEST(Faults, SignalsEndLongRunsAndKeepFinishedFiles) {
    const std::string start_text(known_positions[0].text);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        Process engine({{"varn.ini", "hash 10"}, {"suite", "k7/8/1K6/8/8/8/8/8 b - - Kb8\n" + start_text + "\n"}});
        engine.send("runsuite suite log\n");
        std::string said = engine.read_until("Test position #2: ");
        engine.read_until("  1 ");
        engine.send_signal(signal);
        EXPECT_EQ(engine.finish().status, -signal);
        said.erase(0, said.find('\n') + 1);
        EXPECT_EQ(engine.file("log"), said + start_text + "\n");
    }
    for (const int signal : {SIGTERM, SIGHUP}) {
        Process engine;
        engine.send("xboard\nsd 3\ne2e4\nsd 50\n");
        engine.read_until("pondering: ");
        engine.send_signal(signal);
        EXPECT_EQ(engine.finish().status, -signal);
    }
}

TEST(Faults, SizeLimitsAndSignalsLeaveNoPartialFiles) {
    const std::string positions = repeated(100, "8/8/8/8/8/8/7P/5k1K w - - 0 1\t0\n");
    const std::vector<std::string> before = {"kpkbb", "varn.ini"};
    Files files = default_files();
    files["kpkbb"] = positions;
    Process full(files);
    full.limit_files(1000);
    full.send("kpkbb\nquit\n");
    const Outcome outcome = full.finish();
    EXPECT_TRUE(outcome.output.ends_with("\nshuffling...\nerror: cannot output evalubase file.\nVarn> "));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(full.folder().names(), before);

    const Fault fault("signal behind a file");
    Process ended(files);
    ended.send("kpkbb\n");
    EXPECT_EQ(ended.finish().status, -SIGTERM);
    EXPECT_EQ(ended.folder().names(), before);
}

TEST(Faults, DeepSearchesFitASmallStack) {
    if (!std::string_view(VARN_SANITIZERS).empty()) GTEST_SKIP() << "sanitizers need more stack";
    // An endgame with blocked pawns, where the search goes deepest.
    const std::string position = "setboard 8/k7/3p4/p2P1p2/P2P1P2/8/8/K7 w - -\nply 50\ntime 2000\n";
    Process console;
    console.limit_stack(512U << 10U);
    console.send(position + "hint\nquit\n");
    const Outcome hint = console.finish();
    EXPECT_EQ(hint.status, 0);
    EXPECT_NE(hint.output.find("I recommend: "), std::string::npos) << hint.output;

    Partner ponderer(position);
    ponderer.process().limit_stack(512U << 10U);
    ponderer.answer("sd 50");
    // A search stopped in the middle of an iteration doesn't always have an expected reply.
    std::string said;
    for (const char* move : {"a1b1", "b1c1", "c1d1", "d1e1", "e1f1"}) {
        said = ponderer.answer("time 4000; " + std::string(move));
        if (said.find("pondering: ") != std::string::npos) break;
    }
    EXPECT_NE(said.find("pondering: "), std::string::npos) << said;
    std::this_thread::sleep_for(std::chrono::seconds(2));
    EXPECT_EQ(ponderer.answer("force; ping"), "Illegal Move: ????\n");
}

// --- A thousand moves -----------------------------------------------------------------------------------------------

/// Shuffles followed by a pawn move, which ends repetitions and the fifty-move count.
const std::string moves_997 = repeated(249, "g1f3\ng8f6\nf3g1\nf6g8\n") + "e2e3\n";

TEST(Faults, ConsoleEndsTheGameWithAFullRecord) {
    const std::string full = "the game record is full: 1000 moves have been played.\nVarn> ";
    Process engine;
    engine.send("ply 2\npvp\n" + moves_997 + "flags\n");
    engine.read_until("side to move: black\n\nVarn> ");
    const auto answer = [&](const std::string& lines) {
        engine.send(lines + "\n");
        return engine.read_until("Varn> ");
    };
    const std::string itself = answer("cvc");
    EXPECT_NE(itself.find("Turn 3: my move is: "), std::string::npos) << itself;
    EXPECT_TRUE(itself.ends_with("\n\nDraw by game length.\nVarn> ")) << itself;
    // The engine's reply fills the record; the next reply is refused.
    answer("back 2");
    EXPECT_NE(answer("b1a3").find("my move is: "), std::string::npos);
    EXPECT_EQ(answer("a3b1"), full);
    answer("back 3");
    EXPECT_NE(answer("e7e6").find("my move is: "), std::string::npos);
    EXPECT_EQ(answer("b8a6"), full);
    EXPECT_EQ(answer("cvc"), "Draw by game length.\nVarn> ");
    EXPECT_NE(answer("hint").find("I recommend: "), std::string::npos);
}

TEST(Faults, XboardEndsTheGameWithAFullRecordAlsoWhenPondering) {
    const std::string drawn = "1/2-1/2 {Draw by game length}\n";
    Partner partner("pvp\n" + moves_997);
    const std::string reply = partner.answer("sd 3; e7e6");
    EXPECT_NE(reply.find("pondering: "), std::string::npos) << reply;
    EXPECT_EQ(partner.answer("b8a6; x; go; hint"), repeated(4, drawn));
    const std::string last = partner.answer("remove; b1a3");
    EXPECT_TRUE(last.starts_with("move ") && last.substr(last.find('\n') + 1) == drawn) << last;
    EXPECT_EQ(partner.answer("x"), drawn);
}

}  // namespace
}  // namespace varn
