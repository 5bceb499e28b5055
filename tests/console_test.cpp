// The console as a person at the prompt meets it: transcripts of the real process, byte for byte but for what differs
// from run to run.
#include <gtest/gtest.h>

#include <iomanip>
#include <regex>
#include <sstream>

#include "board/attacks.h"
#include "board/notation.h"
#include "dialogue.h"
#include "eval/evaluate.h"
#include "eval/king_safety.h"
#include "eval/pawns.h"
#include "positions.h"
#include "process.h"

namespace varn {
namespace {

constexpr std::string_view prompt = "Varn> ";
constexpr const char* start_text = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -";
constexpr const char* rich_text = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -";

/// Hash keys become N, and so does the speed of a search; the lines that tell of its iterations go.
std::string normalised(const std::string& text) {
    static const std::regex iteration(" +\\d+ +-?\\d+ +\\d+ +\\d+ +\\d+ +[^\n]*\n");
    static const std::regex number("(Zobrist (?:key|lock)|NPS): -?\\d+");
    return std::regex_replace(std::regex_replace(text, iteration, ""), number, "$1: N");
}

/// What a search says before the move it found, normalised.
const std::string table =
    "\n ply   score    time      nodes     quiescent nodes     principal variation\n\n\nNPS: N\n\n";

class Session {
public:
    explicit Session(std::string_view lines = "") {
        EXPECT_EQ(process_.read_until(prompt), prompt);
        if (!lines.empty()) answer(lines);
    }

    /// What the lines, with "; " between them, are answered with, up to the next prompt.
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

    void expect(const std::string& transcript) {
        expect_transcript(transcript, [this](const std::string& typed) { return answer(typed); });
    }

    /// For a line that ends the process.
    Outcome end(std::string_view line) {
        process_.send(std::string(line) + '\n');
        return process_.finish();
    }

private:
    Process process_;
};

std::string ignored(const std::string& line) { return "ignoring line:\t" + line + '\n'; }

// --- Lines ----------------------------------------------------------------------------------------------------------

TEST(Console, IgnoresWhatItDoesNotKnow) {
    Session console;
    constexpr std::string_view lines =
        "| | show|SHOW|show |shows|time5|ply|bac|a0a1|a9a1|e2e4 |e7e8Q|e2e4qq|e2-e4|e2e|e2e4\r|perft|perft |perft x|"
        "perft -1|perft 500|perft 99999999999|attacks|attacks x|attacks -1|attacks 64|control|control i1|control 4e|"
        "control e|\x01\xff\x80|%s%n%d";
    for (const std::string& line : split(lines, "|")) {
        EXPECT_EQ(console.answer(line), ignored(line));
    }
    const std::string with_zero_byte("qu\0it", 5);
    EXPECT_EQ(console.answer(with_zero_byte), ignored(with_zero_byte));
    EXPECT_EQ(console.answer("go; reps; showhash; time x; ply ; time "), "\n");
    EXPECT_EQ(console.position(), start_text + std::string("\n"));
}

TEST(Console, ReadsLongLinesInPiecesAndEndsWithItsInput) {
    const std::string piece(255, 'x'), answer = "Varn> ignoring line:\t" + piece;
    const std::pair<std::string, std::string> cases[] = {
        {piece + piece + "y\n", answer + answer + "Varn> ignoring line:\ty\nVarn> "},
        {piece + "exit\nshow\n", answer + "Varn> "},
        {"", "Varn> "},
        {"quit\nshow\n", "Varn> "},
        {"quit", "Varn> ignoring line:\tquitVarn> "},
    };
    for (const auto& [input, output] : cases) {
        const Outcome outcome = run_console(input);
        EXPECT_EQ(outcome.output, output);
        EXPECT_EQ(outcome.status, 0);
    }
}

// --- What is shown --------------------------------------------------------------------------------------------------

constexpr std::pair<std::string_view, Bitboard Game::*> boards[] = {
    {"w_pieces", &Game::w_pieces},   {"b_pieces", &Game::b_pieces},   {"w_king", &Game::w_king},
    {"b_king", &Game::b_king},       {"w_queens", &Game::w_queens},   {"b_queens", &Game::b_queens},
    {"w_rooks", &Game::w_rooks},     {"b_rooks", &Game::b_rooks},     {"w_bishops", &Game::w_bishops},
    {"b_bishops", &Game::b_bishops}, {"w_knights", &Game::w_knights}, {"b_knights", &Game::b_knights},
    {"w_pawns", &Game::w_pawns},     {"b_pawns", &Game::b_pawns},     {"enpassant", &Game::enpassant},
};

TEST(Console, ListsItsCommands) {
    std::ostringstream listing;
    listing << "Command:              Action:\n" << std::left;
    for (const auto& [name, board] : boards) {
        const std::string colour = name[1] != '_' ? "" : name[0] == 'w' ? "white " : "black ";
        listing << std::setw(22) << name << "show the " << colour << name.substr(colour.empty() ? 0 : 2)
                << " bitboard.\n";
    }
    Session console;
    EXPECT_EQ(console.answer("debug"), listing.str() +
                                           "cells                 displays the board using the 2d array.\n"
                                           "showhash              shows the information in the draw hash.\n"
                                           "bking_sqr             shows the black king square.\n"
                                           "wking_sqr             shows the white king square.\n\n");
    console.expect(R"(> help
----------------------------------------------------
Command:              Action:
new                   resets game
show                  shows the board in ascii
moves                 lists all pseudo-legal moves
go                    force AI to play this color and make a move
sides                 switches whose go it is
pvp                   makes the game human vs human
e2e4                  makes a move in that format (use e7e8q for promotions)
tstats                shows transposition table information
history               displays the game history
back                  moves the position back one.
back n                moves the position back n positions.
captures              lists all the pseudo-legal captures.
flags                 shows the status of all the game flags.
valid                 toggles human move validation on and off.
debug                 displays the debugging commands.
reps                  displays how many times this position has
                          occured in the game.
ply n                 sets how far the ai will scan ahead.
cvc                   makes the engine play itself.
----------------------------------------------------

)");
}

TEST(Console, ShowsThePosition) {
    const std::string report =
        "\nrnbqkbnr\npppppppp\n.#.#.#.#\n#.#.#.#.\n.#.#.#.#\n#.#.#.#.\nPPPPPPPP\nRNBQKBNR\n\n"
        "Zobrist key: N\nZobrist lock: N\nMaterial Balance: 0\n\nWhite can castle on both sides.\n"
        "Black can castle on both sides.\n\nwhite to play\n\nGame is in progress.\n\n";
    Session console;
    console.expect("> show\n" + report + "> new\nreseting game...\n" + report);
    console.expect(R"(> setboard 4k3/8/8/8/8/8/7P/R3K2r b Q -; epd; w_material; b_material; wking_sqr; bking_sqr; cells
EPD string is: 4k3/8/8/8/8/8/7P/R3K2r b Q -
White's material sum is: 600
Black's material sum is: 500
white king square is: 3

black king square is: 59


.#.#k#.#
#.#.#.#.
.#.#.#.#
#.#.#.#.
.#.#.#.#
#.#.#.#.
.#.#.#.P
R.#.K.#r

> setboard k7/8/8/3p1b2/4P3/8/8/1r5K w - -; captures; moves; sides; captures

Captures are:
e4f5
e4d5


All white moves are:
h1h2
h1g2

2 legal moves exist for this position.


Captures are:
d5e4
f5e4

)");
}

std::string drawing(Bitboard board) {
    std::string text;
    for (int square = 63; square >= 0; --square) {
        text += (board & bit_mask(square)) != 0 ? '1' : '0';
        if (square % 8 == 0) text += '\n';
    }
    return text + '\n';
}

TEST(Console, ShowsBitboardsAndExchanges) {
    const auto game = game_from(rich_text);
    play_move(parse_move("a2a4", game.get()), game.get());
    EXPECT_NE(game->enpassant, 0U);
    Session console("setboard " + std::string(rich_text) + "; pvp; a2a4");
    for (const auto& [name, board] : boards) EXPECT_EQ(console.answer(name), drawing((*game).*board)) << name;
    EXPECT_EQ(console.answer("attacks 36"), drawing(attackers_of(game.get(), 36)));
    EXPECT_EQ(console.answer("attacks0"), drawing(attackers_of(game.get(), 0)));

    const std::string rule = "-------------------------------\n";
    const std::string report = console.answer("setboard k7/8/8/3p4/4P3/8/8/K7 w - -; show").substr(1);
    EXPECT_EQ(console.answer("testsee"), rule + report + "considering: e4d5\nattacks are:\n" + drawing(bit_mask(27)) +
                                             "SEE eval is: 100\n" + rule);
}

TEST(Console, ShowsTheEvaluation) {
    pawn_hash_allocate();
    const auto owner = game_from(rich_text);
    Game* game = owner.get();
    Session console("setboard " + std::string(rich_text));
    const std::tuple<std::string, std::string, int> cases[] = {
        {"eval", "static evaluation is: ", evaluate(game, 0, -9999, 9999)},
        {"evalpawns", "static evaluation of pawns is: ", pawn_terms(game)},
        {"keval", "ksafety is: ", king_shelter(game) + king_attack(game)},
        {"ksafety", "attack eval is: ", attack_eval(game)},
        {"ksaf", "attack eval is: ", attack_eval(game)},
        {"control e6", "control value of 43 is: ", square_control(game, 43)},
        {"control  E6", "control value of 43 is: ", square_control(game, 43)},
        {"controld5x", "control value of 36 is: ", square_control(game, 36)},
    };
    for (const auto& [typed, text, value] : cases)
        EXPECT_EQ(console.answer(typed), text + std::to_string(value) + '\n');
}

// --- Playing --------------------------------------------------------------------------------------------------------

TEST(Console, PlaysTypedMoves) {
    Session().expect(R"(> pvp; history

> e2e5; e7e5; z2z4
invalid move.
invalid move.
invalid move.
> e2e4; A7A6; e4e5; history
1. e2e4  a7a6
2. e4e5  

> d7d5; history; epd; e5d6; epd
1. e2e4  a7a6
2. e4e5  d7d5

EPD string is: rnbqkbnr/1pp1pppp/p7/3pP3/8/8/PPPP1PPP/RNBQKBNR w KQkq d6
EPD string is: rnbqkbnr/1pp1pppp/p2P4/8/8/8/PPPP1PPP/RNBQKBNR b KQkq -
> setboard 1r2k2r/P7/8/8/8/8/8/R3K3 w Qk e3 0 5; a7a8; e1g1
enpassant not supported in EPD format yet.
invalid move.
invalid move.
> a7b8n; e8g8; e1c1; epd; history
EPD string is: 1N3rk1/8/8/8/8/8/8/2KR4 b - -
1. a7b8n  e8g8
2. e1c1  

)");
}

TEST(Console, WithoutValidationItPlaysWhatCannotSpoilTheRecord) {
    const std::string open = "r3k2r/8/8/3pP3/8/8/P6p/R3K2R w KQkq -";
    Session console("pvp; valid");
    const std::pair<std::string, std::string> barred[] = {
        {open, "z2a2; a1z8; i2a4; e4e5; e1e1; e1a1; a1e8; a2a8; a2b4; a1a2q; h2h1; h2h1q"},
        {"4k3/8/8/8/p7/P7/P7/RN2K3 w Q -", "e1c1; a2a4"},
        {"3k4/8/8/8/8/8/8/R3K2R w - -", "e1c1; e1g1; e1e2q"},
    };
    for (const auto& [text, moves] : barred) {
        console.answer("setboard " + text);
        for (const std::string& move : split(moves, "; ")) EXPECT_EQ(console.answer(move), "invalid move.\n") << move;
        EXPECT_EQ(console.position(), text + '\n');
    }
    console.expect("> setboard " + open + R"(; a2g7; g7g8n; e8c8; g7g8n; epd; flags
invalid move.
EPD string is: 2kr2Nr/8/8/3pP3/8/8/7p/R3K2R b KQ -
is_white_human: 1
is_black_human: 1
human_move_validation: 0
side to move: black

)");
}

TEST(Console, TakesMovesBack) {
    const std::string two_moves = "\nrnbqkbnr\nppp.pppp\n.#.#.#.#\n#.#p#.#.\n.#.#P#.#\n";
    Session console("pvp");
    const std::string start = console.raw_answer("show");
    EXPECT_TRUE(console.answer("e2e4; d7d5; e4d5; back").starts_with(two_moves));
    for (const std::string line : {"back x", "back -1", "backwards", "back "}) {
        EXPECT_TRUE(console.answer(line).starts_with(ignored(line) + two_moves)) << line;
    }
    EXPECT_TRUE(console.answer("back 0").starts_with(two_moves));
    EXPECT_EQ(console.answer("history"), "1. e2e4  d7d5\n\n");
    EXPECT_EQ(console.raw_answer("backwards 99999999999 moves"), start);
    EXPECT_EQ(console.raw_answer("back"), start);

    // A set position is where its moves start from, and who moved out of turn moves so again.
    const std::string base = console.raw_answer("setboard 4k3/8/8/8/8/8/4p3/R3K2R b KQ -; show");
    EXPECT_EQ(console.raw_answer("e8e7; e1f2; e2e1q; back 3"), base);
    EXPECT_EQ(console.answer("e8e7; sides; e7e6; a1a2"), "");
    const std::string before = console.raw_answer("show");
    EXPECT_EQ(console.raw_answer("e6d6; back"), before);
    console.answer("new");
    EXPECT_EQ(console.raw_answer("e2e4; back"), start);
}

TEST(Console, RefusesToPlayWhatCannotBePlayed) {
    for (const char* text : {"8/8/8/8/8/8/8/K7 w - -", "kk6/8/8/8/8/8/8/K7 w - -", "P6k/8/8/8/8/8/8/K7 w - -"}) {
        Session console(std::string("setboard ") + text);
        for (const char* line : {"moves", "captures", "a1a2", "hint", "cvc", "nm", "perft 2", "testsee"}) {
            EXPECT_EQ(console.answer(line), unplayable_text) << text << ' ' << line;
        }
        EXPECT_TRUE(console.answer("show").ends_with(std::string(unplayable_text) + '\n'));
    }
}

TEST(Console, AFullRecordTakesNoMoreMoves) {
    const std::string full = "the game record is full: 1000 moves have been played.\n";
    Session console("ply 1; pvp");
    for (int i = 0; i < 249; ++i) EXPECT_EQ(console.answer("g1f3; g8f6; f3g1; f6g8"), "");
    console.expect("> g1f3; g8f6; f3g1; cvc; f6g8; pvp; g1f3\nStalemate.\n" + full + full);
    EXPECT_EQ(console.position(), start_text + std::string("\n"));
    EXPECT_TRUE(console.answer("hint").starts_with(table + "I recommend: "));
}

// --- Playing against the engine -------------------------------------------------------------------------------------

TEST(Console, TheEngineAnswersATypedMoveInItsTime) {
    Session console("time 200");
    const auto started = std::chrono::steady_clock::now();
    const std::string answer = console.answer("e2e4");
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(20));
    const std::string head = "thinking...\n" + table + "my move is: ";
    ASSERT_TRUE(answer.starts_with(head)) << answer;
    const std::string reply = answer.substr(head.size());
    EXPECT_EQ(reply.substr(4), "\n\n");
    const auto game = game_from(start_text);
    for (const std::string& text : {std::string("e2e4"), reply.substr(0, 4)}) {
        const Move move = parse_move(text, game.get());
        EXPECT_TRUE(is_valid_move(game.get(), move)) << text;
        play_move(move, game.get());
    }
    EXPECT_EQ(console.position(), position_text(game.get()) + '\n');
}

TEST(Console, SaysHowAGameEnds) {
    Session console("ply 2");
    console.expect("> setboard 6k1/5ppp/8/8/8/8/8/K3R3 w - -; hint; epd\n" + table + R"(I recommend:  Re8# (e1e8)

EPD string is: 6k1/5ppp/8/8/8/8/8/K3R3 w - -
> e1e8; hint; cvc; perft 1; moves
Black is Checkmated. White wins.
Black is Checkmated. White wins.
Black is Checkmated. White wins.
running perft=1
Counted: 0 nodes in 0 seconds.

All black moves are:

0 legal moves exist for this position.

> setboard 6k1/5ppp/8/8/8/8/8/K3R3 w - -; cvc; flags
)" + table + R"(Turn 1: my move is: e1e8

Black is Checkmated. White wins.
is_white_human: 0
is_black_human: 0
human_move_validation: 1
side to move: black

> setboard 7k/8/6K1/8/8/8/8/5Q2 w - -; f1f7
Stalemate.
> setboard 7k/8/8/8/8/8/K7/1R6 w - -; b1g1
thinking...
my move is: h8h7

> setboard k7/8/8/8/8/8/8/K6n w - -; cvc
Draw by insufficient material.
> pvp; setboard k7/8/8/8/8/8/P7/K7 w - -; a1b1; a8b8; b1a1; b8a8; a1b1; a8b8; b1a1; b8a8; cvc
Draw by repetition.
)");
    // The report of a game that is over ends the process.
    console.answer("setboard rnb1kbnr/pppp1ppp/8/4p3/6Pq/5P2/PPPPP2P/RNBQKBNR w KQkq -");
    const Outcome outcome = console.end("show");
    EXPECT_TRUE(outcome.output.ends_with("\nwhite to play\n\nWhite is Checkmated. Black wins.\n")) << outcome.output;
    EXPECT_EQ(outcome.status, 0);
}

TEST(Console, SearchesAFixedDepthWhileTheClockRuns) {
    const std::string mate_in_one = "8/8/8/8/8/5k2/p7/5K2 b - -";
    Session console("ply 1");
    EXPECT_EQ(console.answer("nm"), "score is: 1000000\n");
    console.answer("hint; setboard " + mate_in_one);
    EXPECT_EQ(console.answer("nm"), "score is: 9998\n");
    EXPECT_EQ(console.position(), mate_in_one + '\n');
}

}  // namespace
}  // namespace varn
