// The xboard protocol: transcripts of the real process, compared byte for byte except for the engine's moves; its
// clock; and misbehaving clients.
#include <gtest/gtest.h>

#include <csignal>
#include <regex>

#include "dialogue.h"
#include "positions.h"
#include "small_engine.h"
#include "xboard/xboard.h"

namespace varn {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

Files with_a_book() {
    Files files = default_files();
    files["book.dat"] = "e2e4e7e5g1f3\ne2e4e7e5g1f3\n";
    return files;
}

TEST(Xboard, MatchesItsTranscripts) {
    for_each_transcript("xboard.txt", [](const std::string& title, const std::string& transcript) {
        SCOPED_TRACE(title);
        const std::vector<std::string> parts = split(title, " | ");  // the second: lines for the console
        const std::string lines = parts.size() == 1 ? "" : parts[1] + '\n';
        Partner(std::regex_replace(lines, std::regex("; "), "\n"), with_a_book()).expect(transcript);
    });
}

TEST(Xboard, PonderingIsASetting) {
    Files files = default_files();
    files["varn.ini"] += "pondering 0\n";
    Partner("", files).expect(
        "> sd 1; e2e4; new; sd 1; e2e4\nmove g8f6\nmove g8f6\n> hard; d2d4\nmove f6e4\npondering enabled\n"
        "> new; sd 1; e2e4\nmove g8f6\npondering enabled\n");
}

TEST(Xboard, SurvivesArbitraryBytes) {
    Partner partner;
    partner.expect("> \t\r; \f\v ; force\n");
    for (const char* line : {"protover 3\n", "protover  99 x\n"}) {
        partner.process().send(line);
        EXPECT_EQ(partner.process().read_until("done=1\n"), features) << line;
    }
    EXPECT_EQ(partner.answer(std::string("e2\0e4; \x01\xff\x80\xfe; quit\r", 18)),
              "Illegal Move: e2h2\nIllegal Move: ????\nIllegal Move: a3a3\n");
    // A line that is too long is split.
    partner.process().send(std::string(255, 'x') + std::string(255, ' ') + std::string(255, 'y') + "force\ne2e4\n");
    EXPECT_EQ(partner.answer(std::string(250, ' ') + "e7e5"), "Illegal Move: h6h6\nIllegal Move: a6a6\n");
    EXPECT_EQ(partner.answer("  g1f3  and more"), "");
}

// --- The clock ------------------------------------------------------------------------------------------------------

TEST(Xboard, TimeSetsTheLimitOfTheNextMove) {
    SmallEngine engine;
    Protocol protocol(engine);
    const std::uint32_t before = clock_ms();
    EXPECT_EQ(printed([&] {
                  xboard_step(protocol, "level 40 5 0\n");
                  xboard_step(protocol, "time 30000\n");
              }),
              "got time: 299980\nturns left = 40\nallocating 7499 milliseconds for search.\n");
    EXPECT_EQ(engine.search->clock.time_limit_ms, 7499);
    EXPECT_LE(engine.search->clock.clock_start_ms - before, clock_ms() - before) << "the budget counts from the line";
}

// --- Course and end of a game ---------------------------------------------------------------------------------------

TEST(Xboard, GoWithoutALegalMoveEndsTheProcess) {
    const Outcome outcome = run_console("setboard k6R/8/1K6/8/8/8/8/8 b - -\nxboard\ngo\nx\n");
    EXPECT_EQ(outcome.output, "Varn> Varn> \n");
    EXPECT_EQ(outcome.status, 0);
}

TEST(Xboard, PostsItsThinkingOnRequest) {
    const std::string said = Partner().answer("new; sd 2; post; go; nopost; go");
    const std::string line = "  [12] +-?\\d+ +0 +\\d+      {0,3}[A-Za-h][^ \n]* [^\n]*\n", move = "move [a-h1-8]{4}\n";
    EXPECT_TRUE(std::regex_match(said, std::regex('(' + line + ")+" + move + move))) << said;
    // The iteration's line comes last and repeats the score of the last principal variation.
    constexpr std::size_t depth_and_score = 11;
    const std::vector<std::string> lines = split(said.substr(0, said.find("move ")), "\n");
    ASSERT_GE(lines.size(), 3U);
    EXPECT_EQ(lines[lines.size() - 2].substr(0, depth_and_score), lines[lines.size() - 3].substr(0, depth_and_score));
}

// --- Clients that misbehave -----------------------------------------------------------------------------------------

TEST(Xboard, ExitsWhenItsClientIsGone) {
    const std::pair<std::string, std::string> stages[] = {
        {"e2e", "Varn> \n"},
        {"new\n" + std::string(5000, 'x') + "\n", "h6h6\n"},
        {"time 1\ne2e4\n", "pondering: "},
        {"time 1\ne2e4\ntime 40000000\n", "pondering: "},
        {"time 400000000\npost\ne2e4\n", "  5 "},  // the end of input is noticed after the answer
    };
    for (const auto& [sent, awaited] : stages) {
        for (const char* closed : {"output", "both", "input"}) {
            if (*closed == 'i' && awaited == "  5 ") continue;
            for (const Link link : {Link::pipes, Link::sockets}) {
                Process engine(default_files(), VARN_EXECUTABLE, link);
                engine.send("xboard\n" + sent);
                engine.read_until(awaited);
                if (*closed != 'o') engine.close_input();
                if (*closed != 'i') engine.close_output();
                const Outcome outcome = engine.finish(std::chrono::seconds(60));
                EXPECT_EQ(outcome.status, 0) << sent << closed << outcome.output;
            }
        }
    }
    Process early;  // gone before the first line
    early.close_output();
    early.send("xboard\nnew\n");
    const int status = early.finish().status;
    EXPECT_TRUE(status == 0 || status == -SIGPIPE) << status;
}

TEST(Xboard, AnswersAllInputBeforeItsEnd) {
    const Outcome outcome = run_console("xboard\ntime 100\nsd 4\ne2e4\nforce\nundo\nundo\nping\nquit");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(std::regex_search(outcome.output, std::regex("move [a-h1-8]{4}\npondering enabled\n")))
        << outcome.output;
    EXPECT_TRUE(outcome.output.ends_with("Illegal Move: ????\nIllegal Move: a3a3\n")) << outcome.output;
}

TEST(Xboard, IgnoresInterruptsFromItsFirstLineOn) {
    Process engine(Files{{"varn.ini", "hash 22\n"}});  // takes a while to prefault
    engine.send("xboard\n");
    engine.read_until("Varn> \n");
    engine.send_signal(SIGINT);
    engine.send("ping\nquit\n");
    const Outcome outcome = engine.finish();
    EXPECT_EQ(outcome.output, "Illegal Move: ????\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST(Xboard, IgnoresInterrupts) {
    Partner partner;
    partner.answer("sd 9; post");
    partner.process().send("e2e4\n");
    for (const char* stage : {"  1 ", "move ", "pondering: "}) {
        partner.process().read_until(stage);
        partner.process().send_signal(SIGINT);
    }
    partner.answer("nopost");
    partner.process().send("quit\n");
    EXPECT_EQ(partner.process().finish().status, 0);
}

TEST(Xboard, WithoutASecondThreadItExitsWithAMessage) {
    Partner partner;
    partner.process().limit_memory(4U << 20U);  // half of the thread's stack
    partner.process().send("sd 2\ne2e4\n");
    const Outcome outcome = partner.process().finish();
    EXPECT_TRUE(outcome.output.ends_with("i am going to try to ponder\nerror: cannot start new search thread\n"))
        << outcome.output;
    EXPECT_EQ(outcome.status, 1);
}

}  // namespace
}  // namespace varn
