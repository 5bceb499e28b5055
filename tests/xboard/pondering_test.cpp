// Pondering: what stops it and what doesn't, its clock, and long random dialogues for the thread sanitizer.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <map>
#include <set>
#include <thread>

#include "dialogue.h"
#include "frontend/numbers.h"
#include "positions.h"
#include "small_engine.h"
#include "xboard/pondering.h"

namespace varn {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// Without search output, whose lines begin with a blank.
std::string without_search_lines(std::string_view text) {
    std::string rest;
    for (const std::string& line : split(text, "\n")) {
        if (!line.empty() && line.front() != ' ') rest += line + '\n';
    }
    return rest;
}

/// The protocol in this process. Standard output is captured while it exists.
class Session {
public:
    explicit Session(const Game& game = *new_game()) {
        *engine.game = game;
        start_from_read_position(engine);
        engine.search->clock.time_limit_ms = 1 << 30;
        testing::internal::CaptureStdout();
    }
    ~Session() {
        xboard_step(protocol, "force\n");
        testing::internal::GetCapturedStdout();
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    std::string say(const std::string& line) {
        xboard_step(protocol, line + '\n');
        const std::string said = testing::internal::GetCapturedStdout();
        testing::internal::CaptureStdout();
        return without_search_lines(said);
    }

    SmallEngine engine;
    Protocol protocol = Protocol(engine);
};

/// Whether pondering is active.
bool is_pondering(const Session& session) { return is_pondering(session.protocol.pondering); }

// --- Stopping -------------------------------------------------------------------------------------------------------

TEST(Ponder, IsStoppedByCommandsThatTouchTheSearch) {
    const std::set<std::string> stopping = {"go",   "hint",   "new",   "result *", "RESULT",
                                            "undo", "remove", "force", "easy"};
    std::set<std::string> lines = {"hard",  "post",  "nopost", "sd 50",   "level 9 5 0", "otim 1",
                                   "",      "ping",  "a1a8",   "?",       "protover 2",  "accepted x",
                                   "white", "black", "random", "computer"};
    lines.insert(stopping.begin(), stopping.end());
    std::set<std::string> began, stopped, with_another_limit;
    {
        Session session;
        const auto limit = [&session] { return session.engine.search->clock.time_limit_ms.load(); };
        for (const std::string& line : lines) {
            for (const char* preparation : {"new", "level 40 5 0", "hard", "time 40"}) session.say(preparation);
            const std::int32_t own = limit();
            session.say("e2e4");
            if (is_pondering(session) && own > 0 && limit() > own) began.insert(line);
            session.say(line);
            if (!is_pondering(session)) stopped.insert(line);
            if (!is_pondering(session) && limit() != own) with_another_limit.insert(line);
        }
    }
    EXPECT_EQ(began, lines);
    EXPECT_EQ(stopped, stopping);
    EXPECT_EQ(with_another_limit, std::set<std::string>()) << "not the limit of the engine's own moves";
}

TEST(Ponder, EndsWithTheGame) {
    auto game = game_from("k7/7r/8/8/8/8/R7/7K w - -");
    game->fifty = 97;
    std::vector<bool> pondering;
    std::string said;
    {
        Session session(*game);
        for (const char* line : {"level 40 5 0", "time 2", "h1g1", "a2b2"}) {
            said = session.say(line);
            pondering.push_back(is_pondering(session));
        }
    }
    EXPECT_EQ(pondering, (std::vector{false, false, true, false}));
    EXPECT_EQ(said, "1/2-1/2 {Draw by 50 move rule}\n");
}

// --- The clock ------------------------------------------------------------------------------------------------------

TEST(Ponder, HitsAndMissesKeepToTheTime) {
    // A search looks at the clock every 16384 nodes, and sanitizers take long for them.
    const milliseconds limit(400), slack(std::string_view(VARN_SANITIZERS).empty() ? 250 : 2500);
    std::map<std::string, milliseconds> shortest;
    const auto is_in_time = [&](const auto& answer) {
        const milliseconds due(std::stoi(answer.first));
        return answer.second >= due - milliseconds(25) && answer.second <= due + slack;
    };
    for (int attempt = 0; attempt < 5; ++attempt) {
        Partner partner;
        Process& engine = partner.process();
        const auto game = new_game();
        std::string expected = "e2e4\n";
        const auto answer = [&](const std::string& kind, const std::string& line) {
            if (line.empty()) return;  // a stopped search doesn't always expect a reply
            const auto started = steady_clock::now();
            engine.send(line);
            engine.read_until("move ");
            const auto taken = std::chrono::duration_cast<milliseconds>(steady_clock::now() - started);
            shortest[kind] = std::min(taken, shortest.contains(kind) ? shortest[kind] : taken);
            engine.send("ping\n");
            const std::string said = engine.read_until("????\n");
            play_move(*game, parse_move(*game, line.substr(0, line.size() - 1)));
            play_move(*game, parse_move(*game, said.substr(0, said.find('\n'))));
            const std::size_t found = said.find("pondering: ");
            expected = found == std::string::npos ? "" : said.substr(found + 11, said.find('\n', found) - found - 10);
        };
        engine.send("level 40 5 0\ntime 1602\n");
        answer("400 in the first search", expected);
        answer("400 after a hit, by the last budget", expected);
        engine.send("time 1522\n");  // for 38 moves
        std::this_thread::sleep_for(limit * 3 / 4);
        answer("100 after a hit near its time", expected);
        engine.send("time 1482\n");
        std::this_thread::sleep_for(limit + milliseconds(50));
        answer("0 after a hit past its time", expected);
        engine.send("time 362\n");  // for 36 moves
        std::vector<Move> others = every_legal_move(*game);
        std::erase_if(others, [&](Move move) { return move_text(move) + '\n' == expected; });
        answer("100 after a miss, by the latest budget", expected.empty() ? "" : move_text(others.at(0)) + '\n');
        if (shortest.size() == 5 && std::ranges::all_of(shortest, is_in_time)) return;
    }
    EXPECT_EQ(shortest.size(), 5U);
    for (const auto& answer : shortest)
        EXPECT_TRUE(is_in_time(answer)) << answer.first << ": " << answer.second.count();
}

// --- What a search leaves for the next ------------------------------------------------------------------------------

/// Each search must find what the one before it left, on whichever thread and in whichever game position that was.
TEST(Ponder, SearchesFollowEachOtherAsInThink) {
    RandomSource random(5);
    std::string lines, fault;
    std::vector<std::uint32_t> searched, expected;  // nodes of the last iteration of each search
    {
        Session session;
        SmallEngine plain;
        SearchListener listener;
        std::atomic<std::size_t> finished = 0;
        session.protocol.listener.search_finished = [&](double) {
            searched.push_back(session.engine.search->nodes);
            ++finished;
        };
        listener.search_finished = [&](double) { expected.push_back(plain.search->nodes); };
        std::optional<Move> pondered, result;
        const auto search_on = [&](const Game& game) {
            return think(*plain.search, game, {.depth = plain.ply_limit}, listener);
        };
        const auto say = [&](const std::string& line) {
            lines += line + "; ";
            session.say(line);
        };
        const auto set_depth = [&] {
            plain.ply_limit = 1 + static_cast<int>(random.below(3));
            say("sd " + std::to_string(plain.ply_limit));
        };
        const auto play = [&](Move move) {
            Game& game = *plain.game;
            say(move_text(move));
            play_move(game, move);
            const bool is_hit = pondered == move;
            pondered.reset();
            if (protocol_status(game) != GameStatus::goes_on) return;
            play_move(game, is_hit ? *result : *search_on(game));
            pondered = protocol_status(game) == GameStatus::goes_on ? plain.search->predicted_move : std::nullopt;
            if (pondered) result = search_on(*after(game, *pondered));
        };
        set_depth();
        for (int i = 0; i < 300 && fault.empty(); ++i) {
            Game& game = *plain.game;
            const std::uint64_t choice = random.below(16);
            const bool is_over = protocol_status(game) != GameStatus::goes_on;
            if (is_over || choice < 5) pondered.reset();
            if (is_over || choice == 0) {
                say("new");
                start_game(plain);
                set_depth();
            } else if (choice < 3) {
                say("hint");
                search_on(game);
            } else if (choice == 3) {
                say("undo");
                take_back_moves(plain, 1);
            } else if (choice == 4) {
                say("go");
                play_move(game, *search_on(game));
            } else if (choice < 7) {
                set_depth();
            } else {
                const std::vector<Move> legal = every_legal_move(game);
                play(pondered && random.below(3) != 0 ? *pondered : legal[random.below(legal.size())]);
            }
            const auto deadline = steady_clock::now() + std::chrono::seconds(30);
            while (finished < expected.size() && steady_clock::now() < deadline)
                std::this_thread::sleep_for(std::chrono::microseconds(100));
            const bool is_right = searched == expected && same_game(*session.engine.game, *plain.game) &&
                                  is_pondering(session) == pondered.has_value();
            if (!is_right) fault = lines;
        }
    }
    EXPECT_EQ(fault, "");
    EXPECT_EQ(searched, expected);
    EXPECT_GT(searched.size(), 200U);
}

// --- Random dialogues -----------------------------------------------------------------------------------------------

/// A client that sends random commands at random times and checks the answers with a game of its own.
class RandomClient {
public:
    explicit RandomClient(std::uint64_t seed) : random_(seed) {
        say("level 40 5 0", "level");
        say("time 1", "time");
        begin_game("new");
    }

    /// The first wrong answer, or other error.
    std::string fault;
    /// How often each kind of line arrived during a search.
    std::map<std::string, int> met_search;

    void say_something() {
        const std::string result = result_text(*game_);
        const std::uint64_t choice = random_.below(100);
        if (choice == 0 || (!result.empty() && choice < 50)) {
            begin_game(any({"new", "result 1-0 {White mates}", "RESULT"}));
        } else if (choice < 50) {
            play();
        } else if (choice < 60 && !posting_) {  // search output would precede the hint
            stop("hint");
            check(result.empty() && answer_.starts_with("Hint: ") ? answer_ : result);
        } else if (choice < 65 && !every_legal_move(*game_).empty()) {  // else the process exits
            stop("go");
            forced_ = false;
            check(reply());
        } else if (choice < 75) {
            choice < 70 ? take_back("undo", 1) : take_back("remove", 2);
        } else if (choice < 80) {
            say("ping 1", "ping");
            check(result.empty() ? "Illegal Move: ????\n" : result);
        } else {
            set(any({"", " ", "?", "otim 1", "level 40 5 0", "level 0 5 0", "level x", "sd 4", "hard", "hard", "hard",
                     "easy", "force", "post", "nopost", "nopost"}));
        }
    }

private:
    bool one_in(std::uint64_t cases) { return random_.below(cases) == 0; }
    std::string any(std::initializer_list<const char*> texts) { return texts.begin()[random_.below(texts.size())]; }

    /// Random delay, mostly none.
    void say(const std::string& line, const std::string& kind) {
        if (one_in(3)) std::this_thread::sleep_for(std::chrono::microseconds(random_.below(3000)));
        if (pondered_) ++met_search[kind];
        line_ = line;
        answer_ = session_.say(line);
    }

    /// A line that stops the search.
    void stop(const std::string& line) {
        say(line, line);
        pondered_.reset();
    }

    void check(std::string_view expected) {
        if (!fault.empty()) return;
        const Game& game = *session_.engine.game;
        if (answer_ != expected) fault = "\"" + answer_ + "\" instead of \"" + std::string(expected) + '"';
        if (!same_game(game, *game_)) fault += ", the engine has " + position_text(game);
        if (is_pondering(session_) != pondered_.has_value()) {
            fault += ", pondering is " + std::to_string(is_pondering(session_));
        }
        if (pondered_) {
            Game next = *game_;
            play_move(next, *pondered_);
            if (!same_game(session_.protocol.pondering.ponder_game, next)) fault += ", another game is pondered";
        }
        if (!fault.empty()) fault = line_ + ": " + fault + " in " + position_text(*game_);
    }

    void set(const std::string& line) {
        say(line, line);
        if (line == "hard" || line == "easy") allowed_ = line == "hard";
        if (line == "post" || line == "nopost") posting_ = line == "post";
        if (line == "force") forced_ = true;
        if (line == "easy" || line == "force") pondered_.reset();
        check("");
    }

    void begin_game(const std::string& line) {
        stop(line);
        forced_ = posting_ = false;
        *game_ = start_;
        check("");
        const Protocol& protocol = session_.protocol;
        const bool is_reset = session_.engine.ply_limit == 99 && session_.engine.book_enabled;
        if (!is_reset || protocol.force_mode || protocol.post_thinking) fault += " settings of the last game";
        // Mostly short searches, so that more lines can be sent.
        set("sd " + any({"1", "2", "3", "4", "4", "5", "99"}));
    }

    void play() {
        if (one_in(2)) say("time " + std::to_string(random_.below(60)), "time");
        const std::string before = result_text(*game_);
        const std::vector<Move> moves = every_legal_move(*game_);
        Move move = moves.empty() ? Move{} : moves[random_.below(moves.size())];
        if (pondered_ && one_in(2)) move = *pondered_;
        say(move_text(move), pondered_ == move ? "hit" : "miss");
        pondered_.reset();
        if (!before.empty()) return check(before);
        play_move(*game_, move);
        const std::string after = result_text(*game_);
        if (!after.empty() || forced_) return check(after);
        std::string expected = reply();
        const std::string end = result_text(*game_);
        expected += !end.empty() || !allowed_ ? end : pondering();
        check(expected);
    }

    void take_back(const std::string& line, int moves) {
        stop(line);
        const Game played = *game_;
        *game_ = start_;
        for (int i = 0; i < played.move_counter - moves; ++i) play_move(*game_, played.game_moves[i]);
        check("");
    }

    /// The engine's move, taken from its game, which must extend the client's.
    std::string reply() {
        const Game& game = *session_.engine.game;
        const Move reply = game.game_moves[game_->move_counter];
        if (game.move_counter != game_->move_counter + 1 || !is_valid_move(*game_, reply)) return "a legal move";
        play_move(*game_, reply);
        return "move " + move_text(reply) + '\n';
    }

    /// The output after a move if pondering is on: it depends on whether the search has an expected reply.
    std::string pondering() {
        std::string enabled = "pondering enabled\n";
        const std::string begins = "i am going to try to ponder\npondering: ";
        const std::size_t found = answer_.find(begins);
        if (found == std::string::npos) return enabled;
        const Move move = parse_move(*game_, answer_.substr(found + begins.size()));
        if (!is_valid_move(*game_, move)) return "a legal move";
        pondered_ = move;
        return enabled + begins + move_text(move) + '\n';
    }

    RandomSource random_;
    const Game start_ = *new_game();
    std::unique_ptr<Game> game_ = std::make_unique<Game>(start_);
    bool forced_ = false, allowed_ = true, posting_ = false;
    std::optional<Move> pondered_;
    std::string line_, answer_;
    Session session_;
};

TEST(Ponder, RandomDialoguesKeepTheGameCorrect) {
    const char* wanted = std::getenv("VARN_PONDER_LINES");
    std::string_view number = wanted != nullptr ? wanted : "2500";
    const int lines = take_number(number).value_or(0);
    std::string fault;
    std::map<std::string, int> met_search;
    {
        RandomClient client(static_cast<std::uint64_t>(lines));
        for (int i = 0; i < lines && client.fault.empty(); ++i) client.say_something();
        fault = client.fault;
        met_search = client.met_search;
    }
    EXPECT_EQ(fault, "");
    for (const char* kind : {"hit", "miss", "time", "go", "hint", "new", "RESULT", "undo", "remove", "force", "easy"}) {
        EXPECT_GT(met_search[kind], 0) << kind;
    }
}

}  // namespace
}  // namespace varn
