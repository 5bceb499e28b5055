// Test suites: runs of the real process with their logs, the suites that come with the engine, and the way from other
// people's files to them.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include "board/attacks.h"
#include "board/notation.h"
#include "board/san_reader.h"
#include "epd.h"
#include "positions.h"
#include "process.h"
#include "tables.h"

namespace varn {
namespace {

/// Without what the searches say.
std::string without_searches(const std::string& text) {
    static const std::regex search("\n ply +score[^\n]*\n\n( +\\d+ +-?\\d+ +\\d+ [^\n]*\n)*\nNPS: \\d+\n\n");
    return std::regex_replace(text, search, "");
}

/// Answers to the lines in an engine that finds the files, and the log of the last suite.
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

/// The log says what standard output says, but for one sign.
std::string as_logged(const std::string& report) {
    return std::regex_replace(report, std::regex("Failure\\."), "Failure!");
}

constexpr const char* start_text = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -";

TEST(Suite, ReportsOnEachPositionHereAndInTheLog) {
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

TEST(Suite, SwitchesTheBookOffAndReadsLinesOfAnyLength) {
    const std::string line = start_text + std::string(" bm a4;") + std::string(100000, ' ') + "e4 d4 c4 Nf3 Nc3\n";
    const Files files = {{"suite", line + line}, {"none", ""}, {"book.dat", "a2a3\n"}};
    const Played run = run_lines("new\nply 5\nrunsuite suite log\nhint\nnew\nrunsuite none log\nhint\n", files);
    EXPECT_NE(run.output.find("Test suite complete.\n  2/2 problems solved.\n\n"), std::string::npos);
    EXPECT_EQ(run.output.find("a2a3"), std::string::npos);
    EXPECT_EQ(run.log, "Test suite complete.\n  0/0 problems solved.\n\n");
}

TEST(Suite, WithoutItsFilesItOnlySaysSo) {
    const std::string error = "error: unknown file error. cannot run test suite.\n";
    const std::string ignored = "ignoring line:\t";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"runsuite missing log", "running test suite: missing\n" + error, ""},
        {"runsuite . log", "running test suite: .\n" + error, ""},
        {"runsuite suite no/log", "running test suite: suite\n" + error, "old"},
        {"runsuite suite ./suite",
         "running test suite: suite\nerror: the log would overwrite the test suite. cannot run test suite.\n", "old"},
        {"runs", ignored + "runs\n", "old"},
        {"runsuite my suite log", ignored + "runsuite my suite log\n", "old"},
    };
    for (const auto& [line, answer, log] : cases) {
        const Played run = run_lines(line + "\n", {{"suite", ""}, {"log", "old"}});
        EXPECT_EQ(run.output, "Varn> " + answer + "Varn> ");
        EXPECT_EQ(run.log, log) << line;
    }
}

TEST(Suite, AForeignLineEndsTheProcessBehindACompleteLog) {
    for (const std::string foreign : {"\n", "4k3/x w - -\n"}) {
        const std::string solved = "k7/8/1K6/8/8/8/8/8 b - - bm Kb8;\n";
        const Played run = run_lines("runsuite suite log\n", {{"suite", solved + foreign}});
        EXPECT_EQ(run.log, "\nTest position #1: " + solved +
                               "Test #1: Success!\n\n1/1 problems solved.\n\n\nTest position #2: " + foreign);
        EXPECT_EQ(run.status, 1);
    }
}

// --- Suites from EPD ------------------------------------------------------------------------------------------------

TEST(Epd, BecomesASuiteInTheEnginesOwnText) {
    std::string epd = "  \t\n", suite, messages;
    int number = 1, refused = 0;
    for (const auto& row : table_rows("epd.txt")) {
        epd += row.at(0) + (++number % 2 == 0 ? "\n" : "\r\n");
        if (!row.at(1).empty()) suite += row.at(1) + '\n';
        if (!row.at(2).empty()) messages += "line " + std::to_string(number) + ": " + row.at(2) + '\n';
        refused += row.at(2).starts_with("refused");
    }
    epd.pop_back();  // a last line may lack its newline
    std::istringstream in(epd);
    std::ostringstream out, said;
    EXPECT_EQ(printed([&] { EXPECT_EQ(convert_epd(in, out, said), refused); }), "");
    EXPECT_EQ(out.str(), suite);
    EXPECT_EQ(said.str(), messages);
}

// --- The suites that come with the engine ---------------------------------------------------------------------------

/// The lines of a suite in the data folder, by their ids.
std::map<std::string, std::string> shipped_suite(const std::string& name) {
    std::ifstream file(std::filesystem::path(VARN_DATA_FOLDER) / "suites" / name);
    std::map<std::string, std::string> lines;
    const std::regex id("id \"([^\"]+)\";$");
    std::smatch found;
    for (std::string line; std::getline(file, line);) {
        EXPECT_TRUE(std::regex_search(line, found, id)) << line;
        EXPECT_TRUE(lines.emplace(found[1], line).second) << line;
    }
    return lines;
}

TEST(ShippedSuites, GiveLegalMovesInTheEnginesOwnTextAndCountNoOther) {
    const std::map<std::string, std::string> notes = {{"BK.12", "will count as solved, too: f5"}};
    for (const auto& [name, size] : {std::pair{"bratko-kopec.epd", 24U}, {"mates.epd", 32U}, {"tactics.epd", 30U}}) {
        const auto suite = shipped_suite(name);
        EXPECT_EQ(suite.size(), size) << name;
        for (const auto& [id, line] : suite) {
            const Conversion conversion = convert_epd_line(line);
            EXPECT_EQ(conversion.line, line) << conversion.refusal;
            EXPECT_EQ(conversion.note, notes.contains(id) ? notes.at(id) : "") << id;
        }
    }
}

}  // namespace
}  // namespace varn
