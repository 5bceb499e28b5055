// The system around the engine: missing memory, slow readers, signals, clock jumps; and games longer than their record.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <set>
#include <thread>

#include "base/memory.h"
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

TEST(Faults, StartNeedsSettingsAndMemory) {
    const std::string no_hash = "Cannot allocate enough memory for transposition hash tables.\n";
    const std::tuple<const char*, Files, std::string> cases[] = {
        {"none", {}, "error:  varn.ini cannot be found.\n"},
        {"none", {{"varn.ini", "hash 31"}}, no_hash},
        {"none", {{"varn.ini", "qhash -1"}}, "error: out of memory.\n"},
        {"none", {{"varn.ini", "phash -1"}}, "error:  cannot allocate -1 bytes for pawn hash tables.\n"},
        {"memory", {{"varn.ini", "hash 21"}}, no_hash},
        {"memory", {{"varn.ini", "hash 9\nqhash 100000000"}}, "error: out of memory.\n"},
        {"memory",
         {{"varn.ini", "hash 9\nqhash 40\nphash 50000000"}},
         "error:  cannot allocate 50000000 bytes for pawn hash tables.\n"},
        {"none", {{"varn.ini", "hash 30"}}, no_hash},  // more than the machine has
    };
    for (const auto& [name, files, output] : cases) {
        if (name == std::string("memory") && !std::string_view(VARN_SANITIZERS).empty()) continue;  // has an allocator
        if (files.contains("varn.ini") && files.at("varn.ini") == "hash 30" && physical_memory_bytes() >> 35 != 0)
            continue;
        const Fault fault(name);
        const Outcome outcome = run_console("runsuite suite log\n", files);
        EXPECT_EQ(outcome.output, output);
        EXPECT_EQ(outcome.status, 1) << output;
    }
    for (const auto& [settings, bytes] : {std::pair{"", "83886040"}, {"hash 10\n", "40920"}}) {
        EXPECT_EQ(run_console("tstats\n", {{"varn.ini", settings}}).output,
                  "Varn> Transposition table usage: 0%\nTransposition table size (bytes): " + std::string(bytes) +
                      "\n\nVarn> ");
    }
}

TEST(Faults, EachStartDrawsOtherRandomNumbers) {
    Files files = default_files();
    files["book.dat"] = "e2e4c7c5\ne2e4e7e5\n";
    EXPECT_NE(run_console("show\n").output, run_console("show\n").output) << "the hash numbers";
    std::set<std::string> answers;
    for (int start = 0; start < 24; ++start) {
        const std::string said = run_console("new\ne2e4\n", files).output;
        answers.insert(said.substr(said.find("my move is: ")));
    }
    EXPECT_EQ(answers.size(), 2U) << "the book";
}

TEST(Faults, SlowReadersAndSignalsLoseNothing) {
    const std::string help = run_console("help\n").output, prompt = "Varn> ";
    const std::string empty =
        "8/8/8/8/8/8/8/8 w - - " + std::string(300000, 'x') + '\n';  // one text, larger than a pipe
    Files files = default_files();
    files["suite"] = empty;
    const std::pair<std::string, std::string> cases[] = {
        {repeated(600, "help\n"), repeated(600, help.substr(0, help.size() - prompt.size())) + prompt},
        {"xboard\n" + repeated(30000, "ping\n"), prompt + '\n' + repeated(30000, "Illegal Move: ????\n")},
        {"runsuite suite log\n",
         prompt + "running test suite: suite\n\nTest position #1: " + empty + std::string(unplayable_text) +
             "Test #1: Failure.\n\n0/1 problems solved.\n\nTest suite complete.\n  0/1 problems "
             "solved.\n\n" +
             prompt},
    };
    for (const char* name : {"none", "ends that don't wait", "interrupted calls"}) {
        for (const Link link : {Link::pipes, Link::sockets}) {
            for (const auto& [input, output] : cases) {
                const Fault fault(name);
                Process engine(files, VARN_EXECUTABLE, link);
                const auto signal = [&](std::initializer_list<int> numbers) {
                    for (const int number : numbers) {
                        std::this_thread::sleep_for(std::chrono::milliseconds(20));
                        engine.send_signal(number);
                    }
                };
                signal({SIGURG});  // while it waits for its first line
                engine.send(input);
                signal({SIGSTOP, SIGURG, SIGCONT, SIGURG});  // while its output isn't read
                engine.close_input();
                const Outcome outcome = engine.finish();
                EXPECT_TRUE(outcome.output == output) << name << input.substr(0, 9) << outcome.output.size();
                EXPECT_EQ(outcome.status, 0) << name;
            }
        }
    }
}

TEST(Faults, ClockJumpsDoNotBreakSearches) {
    const std::pair<const char*, int> cases[] = {{"none", 500}, {"clock wraps", 500}, {"clock jumps back", 0}};
    for (const auto& [name, least_ms] : cases) {
        const Fault fault(name);
        EXPECT_TRUE(is_done_within(std::chrono::milliseconds(least_ms), std::chrono::milliseconds(800), [] {
            Process engine;
            engine.send("time 500\ne2e4\n");
            engine.close_input();  // and a search doesn't notice the end of input
            engine.read_until("my move is: ");
            EXPECT_EQ(engine.finish().status, 0);
        })) << name;
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

TEST(Faults, TheConsoleEndsWithItsReader) {
    Process engine;
    engine.read_until("Varn> ");
    engine.close_output();
    engine.send("show\n");
    EXPECT_EQ(engine.finish().status, -SIGPIPE);
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
