// The UCI front end: transcripts of the real process, games as clients send them, and termination.
#include <gtest/gtest.h>

#include <cctype>
#include <csignal>
#include <map>
#include <regex>

#include "board/draws.h"
#include "board/fen.h"
#include "dialogue.h"
#include "frontend/perft.h"
#include "uci/session.h"
#include "uci/uci.h"

namespace varn {
namespace {

class UciProcess : public Process {
public:
    UciProcess()
        : Process({{"odd.dat", "a2a4h7h5b2b4,Odd\n"}, {"other.dat", "h2h4,Other\n"}, {"my value book", "g2g4,Third\n"}},
                  VARN_UCI_EXECUTABLE) {}

    /// The answer to the lines (separated by "; "). If they start a search, which must end by itself or by the last
    /// line, up to `bestmove`. Machine-dependent numbers are removed.
    std::string answer(const std::string& lines) {
        const std::vector<std::string> typed = split(lines, "; ");
        for (const std::string& line : typed) send(line + '\n');
        const std::string& last = typed.back();
        const bool is_count = last.find("perft ") != std::string::npos && std::isdigit(last.back()) != 0;
        std::string said;
        if (is_count) said = read_until("Nodes searched");
        if (!is_count && lines.find("go ") != std::string::npos) said = read_until("bestmove ");
        send("isready\n");
        constexpr std::string_view end = "readyok\n";
        said += read_until(std::string(end));
        said.resize(said.size() - end.size());
        static const std::regex numbers("nodes \\d+ nps \\d+ hashfull \\d+ time \\d+");
        static const std::regex largest_hash("(name Hash .* max) \\d+");
        return std::regex_replace(std::regex_replace(said, numbers, "nodes _ nps _ hashfull _ time _"), largest_hash,
                                  "$1 _");
    }
};

TEST(UciProcess, MatchesItsTranscripts) {
    for_each_transcript("uci.txt", [](const std::string& title, const std::string& transcript) {
        SCOPED_TRACE(title);
        UciProcess process;
        expect_transcript(transcript, [&](const std::string& typed) { return process.answer(typed); });
        process.send("quit\n");
        const Outcome outcome = process.finish();
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.status, 0);
    });
}

TEST(UciProcess, IsSilentAtStartAndExitsAtEndOfInput) {
    for (const char* end : {"", "quit", "quit\n", "\n \t\nquit now\n", "unknown\nquit\n"}) {
        UciProcess process;
        process.send(end);
        process.close_input();
        const Outcome outcome = process.finish();
        EXPECT_EQ(outcome.output, "") << end;
        EXPECT_EQ(outcome.status, 0) << end;
    }
}

TEST(UciProcess, QuittingDuringASearchStillSendsTheMove) {
    for (const char* go : {"go infinite", "go ponder wtime 1000 btime 1000", "go movetime 100000", "go"}) {
        for (const bool quits : {false, true}) {
            UciProcess process;
            process.send(std::string(go) + '\n');
            process.read_until("info depth 3 ");
            process.send("isready\n");
            process.read_until("readyok\n");
            const auto ended = std::chrono::steady_clock::now();
            if (quits) process.send("quit\n");
            if (!quits) process.close_input();
            const Outcome outcome = process.finish();
            EXPECT_LT(std::chrono::steady_clock::now() - ended, std::chrono::seconds(5));
            EXPECT_EQ(answers_in(outcome.output).size(), 1U) << outcome.output;
            EXPECT_EQ(outcome.status, 0) << go;
        }
    }
}

TEST(UciProcess, ExitsWhenItsReaderIsGone) {
    UciProcess process;
    process.send("go infinite\n");
    process.read_until("info depth 3 ");
    process.close_output();
    process.send("isready\nquit\n");
    const int status = process.finish().status;
    EXPECT_TRUE(status == 0 || status == -SIGPIPE) << status;
}

TEST(UciProcess, SurvivesArbitraryBytes) {
    UciProcess process;
    process.send(std::string("\0go\0\n\xff\xfe\x80\n%s%n\n;\n", 16));
    process.send("position startpos moves" + std::string((1 << 20) + 10, ' ') + "e2e4\n");
    process.send(std::string("position startpos moves e2e4\r\nd\r\n"));
    EXPECT_NE(process.answer("").find("Fen: rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq - 0 1\n"),
              std::string::npos);
}

// --- Games ----------------------------------------------------------------------------------------------------------

/// The FEN shown by the front end.
std::string shown_fen(UciSession& session) {
    const std::string said = session.answer("d");
    const std::size_t start = said.find("Fen: ");
    return start == std::string::npos ? said : said.substr(start + 5, said.find('\n', start) - start - 5);
}

/// A random game with many repetitions; `seen` counts the occurrences of each position.
struct LongGame {
    std::unique_ptr<Game> game = new_game();
    std::string moves;
    std::map<std::string, int> seen = {{position_text(*game), 1}};
    int plies = 0;
};

bool play_random_move(LongGame& played, RandomSource& random) {
    Game& game = *played.game;
    std::vector<Move> moves = every_legal_move(game);
    const auto ends_game = [&](Move move) { return every_legal_move(*after(game, move)).empty(); };
    const auto is_final = [&](Move move) { return after(game, move)->fifty == 0; };
    std::erase_if(moves, ends_game);
    if (moves.empty()) return false;
    // So many plies are only possible with few irreversible moves.
    if (random.next() % 64 != 0 && !std::ranges::all_of(moves, is_final)) std::erase_if(moves, is_final);
    moves.resize(std::min<std::size_t>(moves.size(), 3));
    const Move move = moves[random.next() % moves.size()];
    make_move(game, move);
    ++played.seen[position_text(game)];
    played.moves += ' ' + move_text(move);
    ++played.plies;
    return true;
}

TEST(UciPosition, GamesOfAnyLengthKeepTheirRepetitions) {
    UciSession session;
    RandomSource random(77);
    LongGame played;
    int thirds = 0;
    std::vector<int> lengths = {1, 2, 255};
    for (int past = -15; past < 15; ++past) lengths.insert(lengths.end(), {max_game_moves + past, 3000 + past});
    std::ranges::sort(lengths);
    for (const int length : lengths) {
        while (played.plies < length) ASSERT_TRUE(play_random_move(played, random));
        EXPECT_EQ(session.answer("position startpos moves" + played.moves), "");
        const Game& game = *session.uci.game;
        EXPECT_EQ(shown_fen(session), fen_text(*played.game, 1 + length / 2));
        EXPECT_EQ(game.fifty, played.game->fifty);
        // The halfmove clock saturates at 255.
        if (game.fifty < 255) {
            EXPECT_EQ(is_repetition(game), played.seen[position_text(game)] > 1) << length;
            EXPECT_EQ(is_third_repetition(game), played.seen[position_text(game)] > 2) << length;
            for (const Move move : every_legal_move(game)) {
                const auto child = after(game, move);
                const auto found = played.seen.find(position_text(*child));
                const bool is_drawn = draw_after_move(game, move);
                EXPECT_EQ(is_drawn, child->fifty >= fifty_move_limit || found != played.seen.end()) << length;
            }
        }
        thirds += is_third_repetition(game) ? 1 : 0;
        const std::string said = session.search("go nodes 2000");
        EXPECT_TRUE(is_valid_move(game, parse_move(game, best_move_in(said)))) << said;
    }
    EXPECT_GT(thirds, 2);
}

TEST(UciPosition, PerftCountsByRootMove) {
    UciSession session;
    for (const KnownPosition& known : known_positions) {
        for (const int depth : {1, 3}) {
            session.send("position fen " + known.text + (depth == 1 ? "; perft " : "; go perft ") +
                         std::to_string(depth));
            finish_search(session.uci);
            std::string expected;
            auto game = game_from(known.text);
            for (const Move move : every_legal_move(*game)) {
                expected +=
                    move_text(move) + ": " + std::to_string(count_leaves(*after(*game, move), depth - 1)) + '\n';
            }
            expected += "\nNodes searched: " + std::to_string(count_leaves(*game, depth)) + '\n';
            EXPECT_EQ(session.said(), expected) << known.text;
        }
    }
    session.send("perft 40; isready; stop");
    finish_search(session.uci);
    EXPECT_TRUE(session.said().ends_with("readyok\ninfo string the count was stopped\n"));
    for (const char* line : {"perft", "perft x", "perft -1", "perft 500", "go perft"}) {
        EXPECT_EQ(session.answer(line), "info string perft needs a number of plies\n") << line;
    }
}

TEST(UciArguments, AreAnsweredOrRefused) {
    const std::pair<std::string, int> cases[] = {{"--version", 0}, {"--help", 0},     {"bench 1", 0},
                                                 {"bench 0", 2},   {"bench 51", 2},   {"bench x", 2},
                                                 {"bench 1 1", 2}, {"--nonsense", 2}, {"--help x", 2}};
    const auto run = [](const std::string& arguments) {
        Process shell({}, "/bin/sh");
        shell.send(VARN_UCI_EXECUTABLE " " + arguments + " 2>/dev/null </dev/null\n");
        shell.close_input();
        return shell.finish();
    };
    for (const auto& [arguments, status] : cases) EXPECT_EQ(run(arguments).status, status) << arguments;
    const std::string bench = run("bench 4").output;
    EXPECT_NE(bench.find("\n136113 nodes "), std::string::npos) << bench;
}

}  // namespace
}  // namespace varn
