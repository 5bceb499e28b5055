// The console: transcripts of the real process, compared byte for byte except for what differs between runs.
#include <gtest/gtest.h>

#include <regex>

#include "board/attacks.h"
#include "console/console.h"
#include "dialogue.h"
#include "eval/evaluate.h"
#include "eval/king_safety.h"
#include "eval/pawns.h"
#include "positions.h"
#include "process.h"

namespace varn {
namespace {

using std::chrono::milliseconds;

constexpr std::string_view prompt = "Varn> ";
const std::string &start_text = known_positions[0].text, &rich_text = known_positions[1].text;

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
    std::string raw_answer(std::string_view lines) {
        std::string text;
        for (const std::string& line : split(lines, "; ")) {
            process_.send(line + '\n');
            text += process_.read_until(prompt);
            text.resize(text.size() - prompt.size());
        }
        return text;
    }
    std::string answer(std::string_view lines) { return normalised(raw_answer(lines)); }
    std::string position() { return answer("epd").substr(std::size("EPD string is: ") - 1); }

private:
    Process process_;
};

std::string ignored(const std::string& line) { return "ignoring line:\t" + line + '\n'; }

TEST(Console, MatchesItsTranscripts) {
    for_each_transcript("console.txt", [](const std::string& title, const std::string& transcript) {
        SCOPED_TRACE(title);
        Session console;
        expect_transcript(transcript, [&](const std::string& typed) { return console.answer(typed); });
    });
}

TEST(Console, IgnoresUnknownLines) {
    Session console;
    constexpr std::string_view lines =
        "| | show|SHOW|show |shows|time5|ply|bac|a0a1|a9a1|e2e4 |e7e8Q|e2e4qq|e2-e4|e2e|e2e4\r|perft|perft |perft x|"
        "perft -1|perft 500|perft 99999999999|attacks|attacks x|attacks -1|attacks 64|control|control i1|control 4e|"
        "control e|\x01\xff\x80|%s%n%d";
    for (const std::string& line : split(lines, "|")) EXPECT_EQ(console.answer(line), ignored(line));
    const std::string with_zero_byte("qu\0it", 5);
    EXPECT_EQ(console.answer(with_zero_byte), ignored(with_zero_byte));
    EXPECT_EQ(console.answer("go; reps; showhash; time x; ply ; time "), "\n");
    EXPECT_EQ(console.position(), start_text + '\n');
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

std::string drawing(Bitboard board) {
    std::string text;
    for (int square = 63; square >= 0; --square) {
        text += (board & bit_mask(square)) != 0 ? '1' : '0';
        if (square % 8 == 0) text += '\n';
    }
    return text + '\n';
}

TEST(Console, ShowsBoardsAndScores) {
    constexpr std::pair<const char*, Bitboard Game::*> boards[] = {
        {"w_pieces", &Game::w_pieces},   {"b_pieces", &Game::b_pieces},   {"w_king", &Game::w_king},
        {"b_king", &Game::b_king},       {"w_queens", &Game::w_queens},   {"b_queens", &Game::b_queens},
        {"w_rooks", &Game::w_rooks},     {"b_rooks", &Game::b_rooks},     {"w_bishops", &Game::w_bishops},
        {"b_bishops", &Game::b_bishops}, {"w_knights", &Game::w_knights}, {"b_knights", &Game::b_knights},
        {"w_pawns", &Game::w_pawns},     {"b_pawns", &Game::b_pawns},     {"enpassant", &Game::enpassant},
    };
    EvalContext context;
    ASSERT_TRUE(pawn_hash_allocate(context.pawns, 1 << 16));
    const auto owner = game_from(rich_text);
    Game& game = *owner;
    play_move(game, parse_move(game, "a2a4"));
    Session console("setboard " + rich_text + "; pvp; a2a4");
    for (const auto& [name, board] : boards) EXPECT_EQ(console.answer(name), drawing(game.*board)) << name;
    EXPECT_EQ(console.answer("attacks 36"), drawing(attackers_of(game, 36)));
    EXPECT_EQ(console.answer("attacks0"), drawing(attackers_of(game, 0)));
    const std::tuple<std::string, std::string, int> scores[] = {
        {"eval", "static evaluation is: ", evaluate(game, context)},
        {"evalpawns", "static evaluation of pawns is: ", pawn_terms(context.pawns, game)},
        {"keval", "ksafety is: ", king_shelter(game) + king_attack(game)},
        {"ksafety", "attack eval is: ", attack_eval(game)},
        {"ksaf", "attack eval is: ", attack_eval(game)},
        {"control e6", "control value of 43 is: ", square_control(game, 43)},
        {"control  E6", "control value of 43 is: ", square_control(game, 43)},
        {"controld5x", "control value of 36 is: ", square_control(game, 36)},
    };
    for (const auto& [typed, text, score] : scores)
        EXPECT_EQ(console.answer(typed), text + std::to_string(score) + '\n');
}

TEST(Console, AnswersATypedMoveWithinTheTimeLimit) {
    Session console("time 200");
    EXPECT_TRUE(is_done_within(milliseconds(200), milliseconds(350), [&] {
        const std::string answer = console.answer("back 2; e2e4");
        EXPECT_TRUE(answer.find("\n\nmy move is: ") != std::string::npos) << answer;
    }));
}

TEST(Console, ReportOfAFinishedGameEndsTheProcess) {
    const std::string mate = "setboard rnb1kbnr/pppp1ppp/8/4p3/6Pq/5P2/PPPPP2P/RNBQKBNR w KQkq -";
    const Outcome outcome = run_console(mate + "\nshow\nepd\n");
    EXPECT_TRUE(outcome.output.ends_with("\nwhite to play\n\nWhite is Checkmated. Black wins.\n")) << outcome.output;
    EXPECT_EQ(outcome.status, 0);
}

}  // namespace
}  // namespace varn
