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

namespace varn {
namespace {

/// Without what the searches say.
std::string without_searches(const std::string& text) {
    static const std::regex search("\n ply +score[^\n]*\n\n( +\\d+ +-?\\d+ +\\d+ [^\n]*\n)*\nNPS: \\d+\n\n");
    return std::regex_replace(text, search, "");
}

/// Answers to the lines in an engine that finds the files, and the log of the last suite, if there was one.
struct Played {
    std::string output;
    std::string log;
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
    const std::string suite = R"(6k1/5ppp/8/8/8/8/8/K3R3 w - - bm Re8#;
6k1/5ppp/8/8/8/8/8/K3R3 w - - bm Re8+; id "the mate has another sign";
8/8/8/8/8/8/8/K7 w - - bm Ka2;
k7/1Q6/1K6/8/8/8/8/8 b - - bm Ka7;
7k/5Q2/6K1/8/8/8/8/8 b - - bm Kh7;
7k/8/8/8/8/8/r5p1/6K1 w - - bm Kxg2;)";
    const std::string report = R"(
Test position #1: 6k1/5ppp/8/8/8/8/8/K3R3 w - - bm Re8#;
Test #1: Success!

1/1 problems solved.


Test position #2: 6k1/5ppp/8/8/8/8/8/K3R3 w - - bm Re8+; id "the mate has another sign";
Test #2: Failure.

1/2 problems solved.


Test position #3: 8/8/8/8/8/8/8/K7 w - - bm Ka2;
)" + std::string(unplayable_text) +
                               R"(Test #3: Failure.

1/3 problems solved.


Test position #4: k7/1Q6/1K6/8/8/8/8/8 b - - bm Ka7;
Black is Checkmated. White wins.
Test #4: Failure.

1/4 problems solved.


Test position #5: 7k/5Q2/6K1/8/8/8/8/8 b - - bm Kh7;
Stalemate.
Test #5: Failure.

1/5 problems solved.


Test position #6: 7k/8/8/8/8/8/r5p1/6K1 w - - bm Kxg2;Test #6: Failure.

1/6 problems solved.

Test suite complete.
  1/6 problems solved.

)";
    const Played run = run_lines("ply 3\nruns suite log\n", {{"suite", suite}});
    EXPECT_EQ(run.output, "Varn> Varn> running test suite: suite\n" + report + "Varn> ");
    EXPECT_EQ(run.log, as_logged(report));
    EXPECT_EQ(run.status, 0);
}

TEST(Suite, LeavesTheUsersGameAlone) {
    const std::string game = "setboard 4k3/8/8/8/8/8/4p3/R3K2R b KQ -\npvp\ne8e7\n";
    const std::string questions = "epd\nhistory\nflags\nback\nepd\n";
    const std::string with_suite =
        run_lines(game + "ply 2\nrunsuite suite log\n" + questions, {{"suite", start_text + std::string(" bm e4\n")}})
            .output;
    const std::string without = run_console(game + questions).output;
    const auto number = std::regex("(Zobrist \\w+): -?\\d+");
    const auto tail = [&](const std::string& text) {
        return std::regex_replace(text.substr(text.find("EPD")), number, "$1");
    };
    EXPECT_EQ(tail(with_suite), tail(without));
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
        {"runsuite suite /dev/full",
         "running test suite: suite\nTest suite complete.\n  0/0 problems solved.\n\nerror: the log could not be "
         "written to its end.\n",
         "old"},
        {"runs", ignored + "runs\n", "old"},
        {"runsuite suite", ignored + "runsuite suite\n", "old"},
        {"runsuite my suite log", ignored + "runsuite my suite log\n", "old"},
    };
    for (const auto& [line, answer, log] : cases) {
        const Played run = run_lines(line + "\n", {{"suite", ""}, {"log", "old"}});
        EXPECT_EQ(run.output, "Varn> " + answer + "Varn> ");
        EXPECT_EQ(run.log, log) << line;
    }
}

TEST(Suite, AForeignLineEndsTheProcessBehindACompleteLog) {
    for (const std::string foreign : {"\n", "4k3/x w - -\n", "4k3/8"}) {
        const std::string report =
            "\nTest position #1: k7/8/1K6/8/8/8/8/8 b - - bm Kb8;\nTest #1: Success!\n\n1/1 problems "
            "solved.\n\n\nTest position #2: " +
            foreign;
        const Played run =
            run_lines("runsuite suite log\n", {{"suite", "k7/8/1K6/8/8/8/8/8 b - - bm Kb8;\n" + foreign}});
        EXPECT_EQ(run.log, report);
        EXPECT_EQ(run.status, 1);
    }
}

// --- Suites from EPD ------------------------------------------------------------------------------------------------

TEST(Epd, BecomesASuiteInTheEnginesOwnText) {
    const std::string pawns = "2r1k3/1P6/8/2pP4/4B3/8/8/4K3 w - -";
    const std::string castles = "r3k2r/8/8/8/8/8/8/R3K2R";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {pawns + " bm b8=Q! bxc8(Q); id \"a b;c\"; c0 \"or d6\";", pawns + " bm b8Q bxc8Q+; id \"a b;c\";", ""},
        {pawns + "\tbm  Pd6, d5-d6 d5d6+ ! ; dm 3", pawns + " bm d6; dm 3;", ""},
        {"  \t", "", ""},
        {castles + " w QqK - 3 17 am Kd2; bm Rxa8;", castles + " w KQq - bm Rxa8+;", ""},
        {castles + " w KQ - bm O-O-O;\r", castles + " w KQ - bm O-O-O;", "will count as solved, too: O-O"},
        {"4k3/8/8/8/8/8/8/4K2R w KQ e3 bm 0-0; id x", "4k3/8/8/8/8/8/8/4K2R w K - bm O-O; id x;",
         "castling rights without king and rook at home are left out"},
        {"4k3/8/8/8/8/8/8/4K2R b - - bm \"O-O\"", "", "refused: \"\"O-O\"\" names no single legal move"},
        {pawns + " bm d6 b8;", "", "refused: \"b8\" names no single legal move"},
        {pawns + " bm ;", "", "refused: no best move"},
        {pawns + " am Nf3; id \"bm d6;\"", "", "refused: moves to avoid, but no best move"},
        {pawns, "", "refused: no best move"},
        {"2r1k3/1P6/8/2pP4/4B3/8/8/4K3 w - c6 bm Kd2;", "", "refused: a suite can't hold the capture en passant"},
        {castles + " w - e9 bm Kd2;", "", "refused: \"e9\" is no en-passant square"},
        {castles + " w - bm Kd2;", "", "refused: \"bm\" is no en-passant square"},
        {castles + " w", "", "refused: \"\" are no castling rights"},
        {castles + " w HA - bm Kd2;", "", "refused: \"HA\" are no castling rights"},
        {castles + " W - - bm Kd2;", "", "refused: \"W\" is no side to move"},
        {castles + "/ w - - bm Kd2;", "", "refused: the board doesn't have eight rows of eight squares"},
        {"r3k3r/8/8/8/8/8/8/R3K2R w - - bm Kd2;", "", "refused: the board can't go on with \"/\""},
        {"r3k2r/8/8/8/8/8/8/R3J2R w - - bm Kd2;", "", "refused: the board can't go on with \"J\""},
        {"r3k2r/9/8/8/8/8/8/R3K2R w - - bm Kd2;", "", "refused: the board can't go on with \"9\""},
        {"r3k2r/8/8/8/8/8/8/R6R w - - bm Ra2;", "",
         "refused: the position needs one king a side and no pawn on the first or last rank"},
        {"r3k2r/8/8/8/8/8/8/R3K2r b - - bm Kd7;", "", "refused: the side that isn't to move is in check"},
    };
    std::string epd, suite, messages;
    int number = 0, refused = 0;
    for (const auto& [text, line, message] : cases) {
        ++number;
        epd += text + '\n';
        if (!line.empty()) suite += line + '\n';
        if (!message.empty()) messages += "line " + std::to_string(number) + ": " + message + '\n';
        refused += message.starts_with("refused");
    }
    epd.pop_back();  // a last line may lack its newline
    std::istringstream in(epd);
    std::ostringstream out, said;
    ::testing::internal::CaptureStdout();
    const int counted = convert_epd(in, out, said);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(counted, refused);
    EXPECT_EQ(out.str(), suite);
    EXPECT_EQ(said.str(), messages);
}

// --- The suites that come with the engine
// -----------------------------------------------------------------------------

/// Whether the side to move mates in so many of its moves at the most, whatever the other side does.
bool mates_within(Game& game, int moves);

bool move_mates(Game& game, Move move, int moves) {
    UndoRecord undo;
    fill_undo(&game, move, &undo);
    make_move(&game, move);
    bool mates = in_check(&game) || moves > 1;
    const std::vector<Move> replies = mates ? legal_moves(game) : std::vector<Move>();
    if (replies.empty()) mates = mates && in_check(&game);
    for (auto reply = replies.begin(); mates && reply != replies.end(); ++reply) {
        UndoRecord undo_reply;
        fill_undo(&game, *reply, &undo_reply);
        make_move(&game, *reply);
        mates = moves > 1 && mates_within(game, moves - 1);
        unmake_move(&game, *reply, &undo_reply);
    }
    unmake_move(&game, move, &undo);
    return mates;
}

bool mates_within(Game& game, int moves) {
    return std::ranges::any_of(legal_moves(game), [&](Move move) { return move_mates(game, move, moves); });
}

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

TEST(ShippedSuites, MatesAreTheShortestAndTheOnlyOnes) {
    constexpr int longest_whose_rivals_are_tried = 3;  // beyond, a sanitizer would take minutes
    for (const auto& [id, line] : shipped_suite("mates.epd")) {
        const auto game = game_from(line);
        const int length = std::stoi(line.substr(line.find("dm ") + 3));
        EXPECT_FALSE(mates_within(*game, length - 1)) << id;
        for (const Move move : legal_moves(*game)) {
            const bool listed = line.find(" bm " + san_text(move, game.get()) + ';') != std::string::npos;
            if (!listed && length > longest_whose_rivals_are_tried) continue;
            EXPECT_EQ(move_mates(*game, move, length), listed) << id << ' ' << move_text(move);
        }
    }
}

}  // namespace
}  // namespace varn
