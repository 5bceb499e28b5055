// The console: transcripts of the real process, compared byte for byte except for what differs between runs.
#include <gtest/gtest.h>

#include <regex>
#include <set>

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

constexpr std::string_view prompt = "Varn> ";
const std::string &start_text = known_positions[0].text, &rich_text = known_positions[1].text;

/// Replaces hash keys, times and speeds by N and drops the search output.
std::string normalised(const std::string& text) {
    static const std::regex iteration(" +\\d+ +-?\\d+ +\\d+ +\\d+ +\\d+ +[^\n]*\n");
    static const std::regex number("(Zobrist key: |Zobrist lock: |NPS: |nodes in )-?\\d+");
    return std::regex_replace(std::regex_replace(text, iteration, ""), number, "$1N");
}

class Session {
public:
    explicit Session(std::string_view lines = "") {
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

TEST(Console, KeysOfASetPositionDependOnPiecesAndPreviousTurn) {
    Session console;
    const auto keys = [&console](const std::string& rest) {
        const std::string report = console.raw_answer("setboard r3k2r/8/8/8/8/8/8/R3K2R " + rest + "; show");
        const std::size_t start = report.find("Zobrist key: ");
        return report.substr(start, report.find("\nMaterial") - start);
    };
    const std::string after_white = keys("w - -");
    EXPECT_EQ(keys("b KQkq -"), after_white);
    const std::string after_black = keys("w Kq -");
    EXPECT_NE(after_black, after_white);
    EXPECT_EQ(keys("b - -"), after_white);
    EXPECT_EQ(keys("b - -"), after_black);
    // Repetitions are found by the same keys.
    const std::string round = "; a1b1; a8b8; b1a1; b8a8";
    EXPECT_EQ(console.answer("pvp; setboard r3k2r/8/8/8/8/8/8/R3K2R w KQkq -" + round + round + round + "; cvc"),
              "Draw by repetition.\n");
}

TEST(Console, FullRecordRefusesMoves) {
    const std::string full = "the game record is full: 1000 moves have been played.\n";
    Session console("ply 1; pvp");
    for (int i = 0; i < 249; ++i) EXPECT_EQ(console.answer("g1f3; g8f6; f3g1; f6g8"), "");
    EXPECT_EQ(console.answer("g1f3; g8f6; f3g1; cvc; f6g8; pvp; g1f3"), "Stalemate.\n" + full + full);
    EXPECT_EQ(console.position(), start_text + '\n');
    EXPECT_NE(console.answer("hint").find("I recommend: "), std::string::npos);
}

TEST(Console, AnswersATypedMoveWithinTheTimeLimit) {
    Session console("time 200");
    const auto started = std::chrono::steady_clock::now();
    const std::string answer = console.answer("e2e4");
    const auto taken = std::chrono::steady_clock::now() - started;
    EXPECT_GE(taken, std::chrono::milliseconds(200));
    EXPECT_LT(taken, std::chrono::seconds(2));
    EXPECT_TRUE(std::regex_match(answer, std::regex("thinking...\n\n ply [^\n]*\n\n\nNPS: N\n\nmy move is: ....\n\n")));
    const auto game = game_from(start_text);
    std::string played = console.answer("history").substr(std::size("1. ") - 1);
    for (const std::string& text : {played.substr(0, 4), played.substr(6, 4)}) {
        const Move move = parse_move(*game, text);
        EXPECT_TRUE(is_valid_move(*game, move)) << text;
        play_move(*game, move);
    }
    EXPECT_EQ(console.position(), position_text(*game) + '\n');
}

TEST(Console, HintKeepsTheBookEnabled) {
    Files files = default_files();
    files["book.dat"] = "e2e4e7e5\n";
    const std::string output = run_console("new\nply 1\nhint\ne2e4\n", files).output;
    EXPECT_TRUE(output.ends_with("thinking...\nmy move is: e7e5\n\nVarn> ")) << output;
}

TEST(Console, BookMovesAreDrawnAnewAtEachStart) {
    Files files = default_files();
    files["book.dat"] = "a2a3a7a6\na2a3h7h6\n";
    std::set<std::string> replies;
    for (int start = 0; start < 30; ++start) {
        const std::string output = run_console("ply 1\nnew\na2a3\n", files).output;
        replies.insert(output.substr(output.find("my move is: ")));
    }
    EXPECT_EQ(replies.size(), 2U);
}

TEST(Console, ReportOfAFinishedGameEndsTheProcess) {
    const std::string mate = "setboard rnb1kbnr/pppp1ppp/8/4p3/6Pq/5P2/PPPPP2P/RNBQKBNR w KQkq -";
    const Outcome outcome = run_console(mate + "\nshow\nepd\n");
    EXPECT_TRUE(outcome.output.ends_with("\nwhite to play\n\nWhite is Checkmated. Black wins.\n")) << outcome.output;
    EXPECT_EQ(outcome.status, 0);
}

}  // namespace
}  // namespace varn
