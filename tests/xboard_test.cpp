// The protocol as a chess program meets it: transcripts of the real process, byte for byte but for the engine's choice
// of moves, its clock, and whatever a client may do to it.
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <regex>

#include "board/attacks.h"
#include "board/notation.h"
#include "dialogue.h"
#include "frontend/time_control.h"
#include "positions.h"
#include "search/clock.h"

namespace varn {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

std::string repeated(int times, std::string_view text) {
    std::string all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
}

/// Moves of a game from the start that goes on for so many plies: without captures and checks, and with pawn moves only
/// where the fifty-move rule comes near, if at all.
enum class Pawns : std::uint8_t { stay, save_the_game };
std::vector<Move> shuffling_game(int plies, Pawns pawns) {
    constexpr unsigned near = 90;
    RandomSource random(static_cast<std::uint64_t>(plies));
    auto game = new_game(false);
    std::vector<Move> moves;
    while (std::ssize(moves) < plies) {
        const bool save = pawns == Pawns::save_the_game && game->fifty > near;
        auto candidates = legal_moves(*game);
        std::erase_if(candidates, [&](Move move) {
            const bool of_pawn = man_of(game->cells[move.from]) == pawn;
            return game->cells[move.to] != no_piece || of_pawn != save;
        });
        const Move move = candidates.at(random.below(std::max<std::size_t>(1, candidates.size())));
        Game next = *game;
        play_move(move, &next);
        const bool ends_early = std::ssize(moves) + 1 < plies && game_result(&next) != GameResult::none;
        if (ends_early || in_check(&next)) continue;
        *game = next;
        moves.push_back(move);
    }
    return moves;
}

// --- What the engine says about itself ------------------------------------------------------------------------------

TEST(Xboard, TellsItsFeaturesAndIsSilentAboutSettings) {
    Partner partner;
    partner.expect("> protover 1; protover 0; protover -2; protover x; protover \n");
    for (const char* line : {"protover 2\n", "protover 3\n", "protover  99 x\n"}) {
        partner.process().send(line);
        EXPECT_EQ(partner.process().read_until("done=1\n"), features) << line;
    }
    partner.expect(
        "> computer; hard; easy; ?; rating; white; black; random; force; post; nopost; otim 100; otim x; accepted x; "
        "acceptedx; rejected x; rejected; name Somebody; sd 3; sd x; level x; level ; time x; time ; new; RESULT; "
        "result; result 1-0 {White mates}; resulting; RESULTS\n");
    partner.expect("> ;  ; \t\r; \f\v ; force; ; ;   \n");
}

TEST(Xboard, TakesAnyOtherLineForAMove) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"ping 1", "????"},
        {"draw", "d2a7"},
        {"edit", "??a3"},
        {"setboard x", "????"},
        {"usermove e2e4", "e1e2"},
        {"e2e5", "e2e5"},
        {"E2E5", "e2e5"},
        {"e2", "e2??"},
        {"e2x9", "e2h7"},
        {"e7e5", "e7e5"},
        {"e1g1", "e1g1"},
        {"e7e8q", "e7e8q"},
        {" e2e5 e2e4", "e2e5"},
        {"e2-e4", "e2??"},
        {"e2 e4", "e2??"},
        {"new ", "????"},
        {"New", "????"},
        {" new", "????"},
        {"quit\r", "a3a3"},
        {"%s%n%d", "??e6"},
        {"\x01\xff\x80\xfe", "????"},
        {"time5", "????"},
        {"sd", "????"},
        {"Q", "????"},
    };
    Partner partner("", default_files());
    for (const auto& [line, shown] : cases) {
        EXPECT_EQ(partner.answer(line), "Illegal Move: " + std::string(shown) + '\n') << line;
    }
    EXPECT_EQ(partner.answer(std::string("e2\0e4", 5)), "Illegal Move: e2h2\n");
    // A line that is too long counts as several.
    partner.process().send(std::string(255, 'x') + std::string(255, ' ') + std::string(255, 'y') + "force\ne2e4\n");
    EXPECT_EQ(partner.answer(std::string(250, ' ') + "e7e5"), "Illegal Move: h6h6\nIllegal Move: a6a6\n");
    EXPECT_EQ(partner.answer("  g1f3  and more"), "");
}

// --- The clock ------------------------------------------------------------------------------------------------------

TEST(Xboard, PlansFortyMovesBeforeAnyLevel) {
    Partner().expect(R"(> time 30000
got time: 299980
turns left = 0
allocating 7499 milliseconds for search.
)");
}

TEST(Xboard, SharesItsTimeAmongTheMoves) {
    constexpr std::int32_t most = INT32_MAX;
    struct Case {
        std::string levels;  // with a bar between them
        int answers;         // moves played since
        std::int32_t centiseconds;
        long long remaining;
        std::int32_t turns, allocated, in_force;
    };
    const Case cases[] = {
        {"40 5 0", 0, 30000, 299980, 40, 7499, 7499},
        {"40 5 0", 38, 30000, 299980, 2, 149990, 149990},
        {"40 5 0", 39, 30000, 299980, 40, 7499, 7499},
        {"40 0:30 0", 77, 3000, 29980, 2, 14990, 14990},
        {"2 1 0", 1, 3000, 29980, 2, 14990, 14990},
        {"1 5 0", 0, 100, 980, 1, 980, 882},
        {"1 5 0", 1, 100, 980, 0, 980, 882},
        {"1 5 0", 7, 100, 980, -6, 980, 882},
        {"-3 5 0", 0, 100, 980, -3, 980, 882},
        {"40 5 0|0 5 12", 0, 30000, 299980, 40, 21949, 21949},
        {"40 5 0|0 5 0", 45, 30000, 299980, 34, 9949, 9949},
        {"40 5 0|0 2:30 5", 0, 30000, 299980, 40, 9949, 9949},
        {"40 5 0|0 5", 0, 60, 580, 40, 10, 10},
        {"40 5 0|0 5 0", 0, 180, 1780, 40, 10, 10},
        {"40 5 0|0 5 0", 0, 183, 1810, 40, 10, 10},
        {"40 5 0|0 5 0", 0, 186, 1840, 40, 11, 11},
        {"40 5 0|0 5 12", 0, 100, 980, 40, 11982, 882},
        {"40 5 0|0 5 -12", 0, 100, 980, 40, 10, 10},
        {"40 5 0|0 5 2147483647", 0, 100, 980, 40, most, 882},
        {"40 5 0", 0, 3, 10, 40, 10, 9},
        {"40 5 0", 0, 2, 0, 40, 10, 0},
        {"40 5 0", 0, 0, -20, 40, 10, 0},
        {"40 5 0|0 5 0", 0, -99999, -1000010, 40, 10, 0},
        {"1 5 0", 0, most, 21474836450, 1, most, most},
        {"1 5 0", 0, INT32_MIN, -21474836500, 1, 10, 0},
        {"40 5 0|x|:1|", 0, 30000, 299980, 40, 7499, 7499},
        {"  40  5   0  and more", 0, 30000, 299980, 40, 7499, 7499},
    };
    for (const Case& c : cases) {
        for (const std::string& level : split(c.levels, "|")) set_level(level);
        for (int i = 0; i < c.answers; ++i) count_turn();
        const std::uint32_t before = clock_ms();
        testing::internal::CaptureStdout();
        allocate_time(c.centiseconds);
        const std::string said = testing::internal::GetCapturedStdout();
        EXPECT_EQ(said, "got time: " + std::to_string(c.remaining) + "\nturns left = " + std::to_string(c.turns) +
                            "\nallocating " + std::to_string(c.allocated) + " milliseconds for search.\n");
        EXPECT_EQ(time_limit_ms, c.in_force) << c.levels << ' ' << c.answers << ' ' << c.centiseconds;
        EXPECT_LE(clock_start_ms - before, clock_ms() - before) << "the budget counts from the line";
    }
}

TEST(Xboard, CountsItsAnswersButNotItsOpening) {
    Partner partner;
    const auto turns = [&](std::string_view lines) {
        const std::string text = partner.answer(std::string(lines) + "; time 1");
        return text.substr(text.rfind("turns left"));
    };
    const std::string tail = "\nallocating 10 milliseconds for search.\n";
    EXPECT_EQ(turns("level 3 5 0"), "turns left = 3" + tail);
    EXPECT_EQ(turns("go"), "turns left = 3" + tail);
    EXPECT_EQ(turns("new; e2e4"), "turns left = 2" + tail);
    EXPECT_EQ(turns("new; d2d4"), "turns left = 3" + tail);  // a new game leaves the control as it was
    EXPECT_EQ(turns("force; undo; undo"), "turns left = 3" + tail);
}

// --- How a game goes and ends ---------------------------------------------------------------------------------------

TEST(Xboard, SaysHowAGameEnds) {
    struct Case {
        std::string console, lines;
        GameResult result;
        int times;  // that the result is told
    };
    const Case cases[] = {
        {"", "f2f3; e7e5; g2g4; d8h4; e1f2; hint; ; x", GameResult::black_mates, 4},
        {"", "e2e4; e7e5; d1h5; b8c6; f1c4; g8f6; h5f7; a7a6", GameResult::white_mates, 2},
        {"", "g1f3; g8f6; f3g1; f6g8; g1f3; g8f6; f3g1; f6g8; e2e4", GameResult::repetition, 2},
        {"",
         "e2e3; a7a5; d1h5; a8a6; h5a5; h7h5; h2h4; a6h6; a5c7; f7f6; c7d7; e8f7; d7b7; d8d3; b7b8; d3h7; b8c8; "
         "f7g6; c8e6; e6e5",
         GameResult::stalemate, 2},
        {"setboard 8/8/8/8/2k5/8/3p4/4K1N1 w - -\n", "e1d2; c4d4", GameResult::insufficient_material, 2},
    };
    for (const auto& [console, lines, result, times] : cases) {
        Partner partner(console);
        EXPECT_EQ(partner.answer("force; " + lines), repeated(times, result_text(result)));
        // A game that has ended goes on where a move is taken back, and a new one begins.
        EXPECT_EQ(partner.answer("undo; x"), "Illegal Move: ????\n");
        EXPECT_EQ(partner.answer("result *; force; e2e4; e2e4"), "Illegal Move: e2e4\n");
    }
}

TEST(Xboard, EndsALongGameAsADraw) {
    const std::tuple<int, Pawns, GameResult, std::string> games[] = {
        {100, Pawns::stay, GameResult::fifty_moves, "x; e2e4; hint; ; x"},
        {max_game_moves, Pawns::save_the_game, GameResult::full_record, "x; go; hint; ; x"},
    };
    for (const auto& [plies, pawns, result, lines] : games) {
        const std::string text(result_text(result));
        Partner partner;
        partner.answer("force");
        std::string said;
        for (const Move move : shuffling_game(plies, pawns)) {
            EXPECT_EQ(said, "");
            said = partner.answer(move_text(move));
        }
        EXPECT_EQ(said, text);
        EXPECT_EQ(partner.answer(lines), repeated(4, text));
        EXPECT_EQ(partner.answer("remove; x"), "Illegal Move: ????\n");
    }
}

TEST(Xboard, AMateComesBeforeEveryDraw) {
    const std::tuple<std::string_view, std::uint8_t, GameResult> cases[] = {
        {"6kR/5pp1/8/8/8/8/8/K3R3 b - -", 0, GameResult::none},
        {"4R1k1/5ppp/8/8/8/8/8/K7 b - -", 100, GameResult::white_mates},
        {"k7/8/8/8/8/8/5PPP/4r1K1 w - -", 100, GameResult::black_mates},
        {"k7/2Q5/8/8/8/8/8/K7 b - -", 100, GameResult::stalemate},
        {"k7/8/8/8/8/8/8/KR6 w - -", 99, GameResult::none},
        {"k7/8/8/8/8/8/8/KR6 w - -", 100, GameResult::fifty_moves},
        {"k7/8/8/8/8/8/8/KB5n w - -", 100, GameResult::fifty_moves},
        {"k7/8/8/8/8/8/8/KB5n w - -", 0, GameResult::insufficient_material},
        {"k7/8/8/8/8/8/8/KNN5 w - -", 0, GameResult::none},
    };
    for (const auto& [text, fifty, result] : cases) {
        const auto game = game_from(text);
        game->fifty = fifty;
        EXPECT_EQ(game_result(game.get()), result) << text << " " << int{fifty};
    }
}

TEST(Xboard, EndsAGameByItsOwnMove) {
    const std::array<std::string, 4> cases[] = {
        {"k7/7R/1K6/8/8/8/8/8 b - -", "a8b8", "h7h8", "1-0 {White mates}\n"},
        {"k7/8/K7/8/8/8/7B/1q6 b - -", "b1b6", "a6b6", "1/2-1/2 {Stalemate}\n"},
        {"k7/8/8/8/8/7K/8/1R6 w - -", "b1b8", "a8b8", "1/2-1/2 {Draw by insufficient materal}\n"},
    };
    for (const auto& [text, move, reply, result] : cases) {
        Partner partner("setboard " + text + '\n');
        EXPECT_EQ(partner.answer("sd 3; " + move + "; x"), "move " + reply + '\n' + repeated(2, result));
        const bool finished_by_rule = result.find("Draw") != std::string::npos;
        if (finished_by_rule) continue;
        partner.process().send("go\n");  // there is no move
        const Outcome outcome = partner.process().finish();
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.status, 0);
    }
}

TEST(Xboard, TakesMovesBackAndPlaysWhicheverSideIsToMove) {
    Partner partner;
    partner.expect(
        "> force; e2e4; e7e5; g1f3; undo; f1c4; remove; e7e5; c7c5; remove; remove; undo; e2e4; e7e5\n"
        "Illegal Move: c7c5\n");
    const std::string reply = partner.answer("sd 1; go");
    EXPECT_TRUE(std::regex_match(reply, std::regex("move [a-h][1-8][a-h][1-8]\n"))) << reply;
    EXPECT_EQ(partner.answer("undo; " + reply.substr(5, 4) + "; easy; force").substr(0, 5), "move ");
}

TEST(Xboard, SaysWhatItThinksInThreeColumnsLess) {
    Partner partner;
    EXPECT_EQ(partner.answer("new; sd 2; easy; e2e4").substr(0, 5), "move ");
    const std::string said = partner.answer("new; sd 2; post; go; nopost; go");
    const std::regex shape(
        "(  [12] +-?\\d+ +0 +\\d+      {0,3}[A-Za-h][^ \n]* [^\n]*\n)+move [a-h1-8]{4}\nmove [a-h1-8]{4}\n");
    EXPECT_TRUE(std::regex_match(said, shape)) << said;
    EXPECT_TRUE(std::regex_match(partner.answer("hint"), std::regex("Hint: +[^ \n]+\n")));
}

TEST(Xboard, AnswersFromItsBookWithoutThinking) {
    Files files = default_files();
    files["book.dat"] = "e2e4e7e5g1f3\ne2e4e7e5g1f3\n";
    Partner partner("", files);
    partner.expect(
        "> time 999999999; new; post; e2e4; hint\ngot time: 9999999970\nturns left = 0\n"
        "allocating 249999999 milliseconds for search.\nmove e7e5\npondering enabled\nHint:   Nf3\n");
    partner.expect("> new; easy; e2e4; remove; go; remove\nmove e7e5\nmove e2e4\n");
}

// --- Clients that misbehave -----------------------------------------------------------------------------------------

enum class Closed : std::uint8_t { input, output, both };

TEST(Xboard, EndsWhenItsClientIsGone) {
    struct Stage {
        std::string sent, awaited;
        bool searching;  // on the thread that reads: the end of the input is then seen behind the answer
    };
    const Stage stages[] = {
        {"xboard\n", "Varn> \n", false},
        {"xboard\ne2e", "Varn> \n", false},
        {"xboard\nnew\n" + std::string(5000, 'x') + "\n", "h6h6\n", false},
        {"xboard\nforce\ne2e4\nprotover 2\n", "done=1\n", false},
        {"xboard\ntime 400000000\npost\ne2e4\n", "  5 ", true},
        {"xboard\ntime 1\ne2e4\n", "pondering: ", false},
        {"xboard\ntime 1\ne2e4\ntime 40000000\n", "pondering: ", false},
    };
    for (const Stage& stage : stages) {
        for (const Closed closed : {Closed::input, Closed::output, Closed::both}) {
            if (stage.searching && closed == Closed::input) continue;
            Process engine;
            engine.send(stage.sent);
            engine.read_until(stage.awaited);
            if (closed != Closed::output) engine.close_input();
            if (closed != Closed::input) engine.close_output();
            const Outcome outcome = engine.finish(std::chrono::seconds(60));
            EXPECT_EQ(outcome.status, 0) << stage.sent << static_cast<int>(closed) << outcome.output;
        }
    }
}

TEST(Xboard, AnswersAllOfAnInputThatHasEnded) {
    const Outcome outcome = run_console("xboard\ntime 100\nsd 4\ne2e4\nforce\nundo\nundo\nping\nquit");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(std::regex_search(outcome.output, std::regex("move [a-h1-8]{4}\npondering enabled\n")))
        << outcome.output;
    EXPECT_TRUE(outcome.output.ends_with("Illegal Move: ????\nIllegal Move: a3a3\n")) << outcome.output;
}

TEST(Xboard, IsNotInterrupted) {
    Partner partner;
    partner.answer("sd 9; post");
    partner.process().send_signal(SIGINT);
    EXPECT_EQ(partner.answer("ping"), "Illegal Move: ????\n");
    partner.process().send("e2e4\n");
    for (const char* stage : {"  1 ", "move ", "pondering: "}) {
        partner.process().read_until(stage);
        partner.process().send_signal(SIGINT);
    }
    partner.answer("nopost");
    partner.process().send("quit\n");
    EXPECT_EQ(partner.process().finish().status, 0);

    Process console;
    console.read_until("Varn> ");
    console.send_signal(SIGINT);
    EXPECT_EQ(console.finish().status, -SIGINT);
}

TEST(Xboard, WithoutASecondThreadItEndsWithAMessage) {
    Partner partner;
    partner.process().limit_memory(8U << 20U);  // half of what the thread asks for
    partner.process().send("sd 2\ne2e4\n");
    const Outcome outcome = partner.process().finish();
    EXPECT_TRUE(outcome.output.ends_with("i am going to try to ponder\nerror: cannot start new search thread\n"))
        << outcome.output;
    EXPECT_EQ(outcome.status, 1);
}

// --- A whole game ---------------------------------------------------------------------------------------------------

TEST(Xboard, PlaysItselfUnderAClock) {
    constexpr int moves_per_control = 10, plies = 160;
    static constexpr milliseconds base(500);
    constexpr milliseconds hold_up(5000);  // a busy machine may hold both sides up for a while
    struct Player {
        Partner partner;
        milliseconds clock = base;

        Process& engine() { return partner.process(); }
        std::string time_left() const { return std::to_string(clock.count() / 10) + '\n'; }
    };
    Player white, black;
    for (Player* player : {&white, &black}) player->partner.answer("new; level 10 0:01 0");
    black.partner.answer("easy");
    auto game = new_game(false);
    std::string line = "go\n", result;
    for (int ply = 0; ply < plies && result.empty(); ++ply) {
        Player& mover = ply % 2 == 0 ? white : black;
        Player& waiting = ply % 2 == 0 ? black : white;
        const auto started = steady_clock::now();
        mover.engine().send("time " + mover.time_left() + "otim " + waiting.time_left() + line);
        mover.engine().read_until("move ");
        line = mover.engine().read_until("\n");
        mover.clock -= std::chrono::duration_cast<milliseconds>(steady_clock::now() - started);
        EXPECT_GE(mover.clock, -hold_up) << "lost on time at ply " << ply;
        mover.clock = std::max(mover.clock, milliseconds(10));
        if (ply / 2 % moves_per_control == moves_per_control - 1) mover.clock += base;

        const Move move = parse_move(line, game.get());
        ASSERT_TRUE(is_valid_move(game.get(), move)) << line << position_text(game.get());
        play_move(move, game.get());
        result = result_text(*game);
        if (result.empty()) continue;
        EXPECT_EQ(mover.engine().read_until("}\n"), result);
        waiting.engine().send(line);
        EXPECT_TRUE(waiting.engine().read_until("}\n").ends_with(result));
    }
    for (Player* player : {&white, &black}) {
        player->engine().send("quit\n");
        EXPECT_EQ(player->engine().finish().status, 0);
    }
}

}  // namespace
}  // namespace varn
