// Test suites: runs of the real process with their logs.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <regex>

#include "board/status.h"
#include "frontend/input.h"
#include "frontend/suite.h"
#include "process.h"

namespace varn {
namespace {

/// Without the search output.
std::string without_searches(const std::string& text) {
    static const std::regex search("\n ply +score[^\n]*\n\n( +\\d+ +-?\\d+ +\\d+ [^\n]*\n)*\nNPS: \\d+\n\n");
    return std::regex_replace(text, search, "");
}

/// The answers to the lines in an engine started with the files, and the log of the last suite.
struct Played {
    std::string output, log;
    int status;
};

Played run_lines(const std::string& lines, const Files& suites) {
    Files files = default_files();
    files.insert(suites.begin(), suites.end());
    Process engine(files);
    engine.send(lines);
    engine.close_input();
    const Outcome outcome = engine.finish();
    return {without_searches(outcome.output), engine.file("log"), outcome.status};
}

/// The log equals standard output except for one character.
std::string as_logged(const std::string& report) {
    return std::regex_replace(report, std::regex("Failure\\."), "Failure!");
}

constexpr const char* start_text = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -";

TEST(Suite, ReportsEachPositionOnOutputAndInTheLog) {
    const std::string mate = "6k1/5ppp/8/8/8/8/8/K3R3 w - - bm ";
    const std::tuple<std::string, std::string, std::string> positions[] = {
        {mate + "Re8#;\n", "", "Success!"},
        {mate + "Re8+; id \"the mate has another sign\";\n", "", "Failure."},
        {"8/8/8/8/8/8/8/K7 w - - bm Ka2;\n", std::string(unplayable_text), "Failure."},
        {"k7/1Q6/1K6/8/8/8/8/8 b - - bm Ka7;\n", "Black is Checkmated. White wins.\n", "Failure."},
        {"7k/8/8/8/8/8/r5p1/6K1 w - - bm Kxg2;", "", "Failure."},
    };
    std::string suite, report, number = "0";
    for (const auto& [line, fault, result] : positions) {
        suite += line;
        ++number[0];
        report += "\nTest position #" + number + ": " + line + fault + "Test #" + number + ": " + result + "\n\n1/" +
                  number + " problems solved.\n\n";
    }
    report += "Test suite complete.\n  1/5 problems solved.\n\n";
    const Played run = run_lines("ply 3\nruns suite log\n", {{"suite", suite}});
    EXPECT_EQ(run.output, "Varn> Varn> running test suite: suite\n" + report + "Varn> ");
    EXPECT_EQ(run.log, as_logged(report));
    EXPECT_EQ(run.status, 0);
}

TEST(Suite, LeavesTheUsersGameAlone) {
    const std::string game = "setboard 4k3/8/8/8/8/8/4p3/R3K2R b KQ -\npvp\ne8e7\n";
    const std::string run = "ply 2\nrunsuite suite log\nepd\nhistory\nback\nepd\n";
    const std::string output = run_lines(game + run, {{"suite", start_text + std::string(" bm e4\n")}}).output;
    EXPECT_NE(output.find("is: 8/4k3/8/8/8/8/4p3/R3K2R w KQ -\nVarn> 1. e8e7  \n"), std::string::npos) << output;
    EXPECT_TRUE(output.ends_with("is: 4k3/8/8/8/8/8/4p3/R3K2R b KQ -\nVarn> ")) << output;
}

TEST(Suite, ReadsLinesOfAnyLength) {
    const std::string line = start_text + std::string(" bm a4;") + std::string(100000, ' ') + "e4 d4 c4 Nf3 Nc3\n";
    const Played run = run_lines("ply 5\nrunsuite suite log\n", {{"suite", line + line}});
    EXPECT_NE(run.output.find("Test suite complete.\n  2/2 problems solved.\n\n"), std::string::npos);
}

TEST(Suite, MissingFilesOnlyGiveAMessage) {
    const std::string error = "error: unknown file error. cannot run test suite.\n";
    const std::string ignored = "ignoring line:\t";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"runsuite missing log", "running test suite: missing\n" + error, ""},
        {"runsuite . log", "running test suite: .\n" + error, ""},
        {"runsuite /proc/self/mem log",  // can't be read
         "running test suite: /proc/self/mem\nTest suite complete.\n  0/0 problems solved.\n\n"
         "error: the test suite could not be read to its end.\n",
         "Test suite complete.\n  0/0 problems solved.\n\n"},
        {"runsuite suite no/log", "running test suite: suite\n" + error, "old"},
        {"runsuite suite ./suite",
         "running test suite: suite\nerror: the log would overwrite the test suite. cannot run test suite.\n", "old"},
        {"runsuite /dev/zero log", "running test suite: /dev/zero\n" + error, ""},
        {"runsuite /dev/stdin log", "running test suite: /dev/stdin\n" + error, ""},
        {"runsuite suite /dev/full", "running test suite: suite\n" + error, "old"},
        {"runsuite suite /dev/stdout", "running test suite: suite\n" + error, "old"},
        {"runs", ignored + "runs\n", "old"},
        {"runsuite my suite log", ignored + "runsuite my suite log\n", "old"},
    };
    for (const auto& [line, answer, log] : cases) {
        const Played run = run_lines(line + "\n", {{"suite", ""}, {"log", "old"}});
        EXPECT_EQ(run.output, "Varn> " + answer + "Varn> ");
        EXPECT_EQ(run.log, log) << line;
    }
}

TEST(Suite, RefusesPipesAndEndlessLines) {
    const std::string solved = "k7/8/1K6/8/8/8/8/8 b - - bm Kb8;\n";
    Files files = default_files();
    files["suite"] = solved + std::string(longest_line + 1, ' ');
    Process engine(files);
    ASSERT_EQ(mkfifo(engine.folder().path_to("pipe").c_str(), 0666), 0);
    const std::string error = "error: unknown file error. cannot run test suite.\n";
    engine.send("runsuite pipe log\nrunsuite suite pipe\nrunsuite suite /dev/null\nrunsuite /dev/null log\nquit\n");
    const Outcome outcome = engine.finish();
    EXPECT_EQ(without_searches(outcome.output),
              "Varn> running test suite: pipe\n" + error + "Varn> running test suite: suite\n" + error +
                  "Varn> running test suite: suite\n\nTest position #1: " + solved +
                  "Test #1: Success!\n\n1/1 problems solved.\n\nerror: line 2 of the test suite is too long.\n" +
                  "Varn> running test suite: /dev/null\nTest suite complete.\n  0/0 problems solved.\n\nVarn> ");
    EXPECT_EQ(engine.file("log"), "Test suite complete.\n  0/0 problems solved.\n\n");
}

TEST(Suite, ContinuesWithAMessageIfTheLogIsFull) {
    Files files = default_files();
    files["suite"] = "k7/8/1K6/8/8/8/8/8 b - - bm Kb8;\n";
    Process engine(files);
    engine.limit_files(20);
    engine.send("runsuite suite log\nquit\n");
    const Outcome outcome = engine.finish();
    EXPECT_TRUE(
        outcome.output.ends_with("Test suite complete.\n  1/1 problems solved.\n\n"
                                 "error: the log could not be written to its end.\nVarn> "))
        << outcome.output;
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(engine.file("log"), "\nTest position #1: k");
}

TEST(Suite, AnInvalidLineEndsTheProcessAfterACompleteLog) {
    for (const std::string foreign : {"\n", "4k3/x w - -\n"}) {
        const std::string solved = "k7/8/1K6/8/8/8/8/8 b - - bm Kb8;\n";
        const Played run = run_lines("runsuite suite log\n", {{"suite", solved + foreign}});
        EXPECT_EQ(run.log, "\nTest position #1: " + solved +
                               "Test #1: Success!\n\n1/1 problems solved.\n\n\nTest position #2: " + foreign);
        EXPECT_EQ(run.status, 1);
    }
}

}  // namespace
}  // namespace varn
