// The console: transcripts of the real process, compared byte for byte except for what differs between runs.
#include <gtest/gtest.h>

#include <regex>

#include "dialogue.h"
#include "process.h"

namespace varn {
namespace {

using namespace std::string_literals;
using std::chrono::milliseconds;

constexpr std::string_view prompt = "Varn> ";

/// Replaces hash keys, times and speeds by N and drops the search output.
std::string normalised(const std::string& text) {
    static const std::regex iteration(" +\\d+ +-?\\d+ +\\d+ +\\d+ +\\d+ +[^\n]*\n");
    static const std::regex number("(Zobrist key: |Zobrist lock: |NPS: |nodes in )-?\\d+");
    return std::regex_replace(std::regex_replace(text, iteration, ""), number, "$1N");
}

Files with_a_book() {
    Files files = default_files();
    files["book.dat"] = "a2a3h7h5\n";
    return files;
}

class Session {
public:
    explicit Session(std::string_view lines = "") : process_(with_a_book()) {
        EXPECT_EQ(process_.read_until(prompt), prompt);
        if (!lines.empty()) answer(lines);
    }

    /// The answer to the lines (separated by "; "), up to the next prompt.
    std::string answer(std::string_view lines) {
        std::string text;
        for (const std::string& line : split(lines, "; ")) {
            process_.send(line + '\n');
            text += process_.read_until(prompt);
            text.resize(text.size() - prompt.size());
        }
        return normalised(text);
    }

private:
    Process process_;
};

TEST(Console, MatchesItsTranscripts) {
    for_each_transcript("console.txt", [](const std::string& title, const std::string& transcript) {
        SCOPED_TRACE(title);
        Session console;
        expect_transcript(transcript, [&](const std::string& typed) { return console.answer(typed); });
    });
}

TEST(Console, IgnoresLinesOfAnyBytes) {
    Session console;
    for (const std::string& line : {"e2e4\r"s, "\x01\xff\x80"s, "qu\0it"s}) {
        EXPECT_EQ(console.answer(line), "ignoring line:\t" + line + '\n');
    }
}

TEST(Console, SplitsLongLinesAndExitsAtEndOfInput) {
    const std::string piece(255, 'x'), answer = "Varn> ignoring line:\t" + piece;
    const std::pair<std::string, std::string> cases[] = {
        {piece + piece + "y\n", answer + answer + "Varn> ignoring line:\ty\nVarn> "},
        {piece + "exit\nshow\n", answer + "Varn> "},
        {"", "Varn> "},
        {"quit", "Varn> ignoring line:\tquitVarn> "},
    };
    for (const auto& [input, output] : cases) {
        const Outcome outcome = run_console(input);
        EXPECT_EQ(outcome.output, output);
        EXPECT_EQ(outcome.status, 0);
    }
}

TEST(Console, AnswersATypedMoveWithinTheTimeLimit) {
    Session console("time 200");
    EXPECT_TRUE(is_done_within(milliseconds(200), milliseconds(350), [&] {
        const std::string answer = console.answer("back 2; e2e4");
        EXPECT_TRUE(answer.find("\n\nmy move is: ") != std::string::npos) << answer;
    }));
}

TEST(Console, FinishedGamesAndForeignPiecesEndTheProcess) {
    const std::string mate = "setboard rnb1kbnr/pppp1ppp/8/4p3/6Pq/5P2/PPPPP2P/RNBQKBNR w KQkq -";
    const Outcome outcome = run_console(mate + "\nshow\nepd\n");
    EXPECT_TRUE(outcome.output.ends_with("\nwhite to play\n\nWhite is Checkmated. Black wins.\n")) << outcome.output;
    EXPECT_EQ(outcome.status, 0);
    const Outcome refused = run_console("setboard 4k3/x w - -\nshow\n");
    EXPECT_EQ(refused.output, "Varn> error: unrecognised character in EPD string.\n");
    EXPECT_EQ(refused.status, 1);
}

}  // namespace
}  // namespace varn
