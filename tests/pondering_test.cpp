// Thinking on the opponent's time: what stops the search on the second thread and what doesn't, whose clock it runs by,
// and long random dialogues, which a thread sanitizer watches.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <thread>

#include "dialogue.h"
#include "frontend/numbers.h"
#include "frontend/pondering.h"
#include "search_helpers.h"

namespace varn {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// Catches what this process says on standard output, so that it can be asked for piece by piece while another thread
/// goes on talking.
class Ear {
public:
    Ear() : file_(std::tmpfile()), standard_output_(dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        dup2(fileno(file_), STDOUT_FILENO);
    }
    ~Ear() {
        std::fflush(stdout);
        dup2(standard_output_, STDOUT_FILENO);
        close(standard_output_);
        std::fclose(file_);
    }
    Ear(const Ear&) = delete;
    Ear& operator=(const Ear&) = delete;

    /// The whole lines since the last call.
    std::string lines() {
        std::fflush(stdout);
        struct stat status = {};
        fstat(fileno(file_), &status);
        std::string text(static_cast<std::size_t>(status.st_size - heard_), '\0');
        text.resize(static_cast<std::size_t>(pread(fileno(file_), text.data(), text.size(), heard_)));
        text.resize(text.rfind('\n') + 1);
        heard_ += static_cast<off_t>(text.size());
        return text;
    }

private:
    std::FILE* file_;
    int standard_output_;
    off_t heard_ = 0;
};

/// Without the lines that a search prints, which all begin with a blank.
std::string without_search_lines(std::string_view text) {
    std::string rest;
    for (const std::string& line : split(text, "\n")) {
        if (!line.empty() && line.front() != ' ') rest += line + '\n';
    }
    return rest;
}

/// As `legal_moves` has it, but sharing nothing with a search that may be running.
std::vector<Move> private_legal_moves(Game& game) {
    MoveList list;
    list.count = 0;
    add_all(&game, &list);
    std::vector<Move> moves = moves_of(list);
    std::erase_if(moves, [&](Move move) { return !is_legal(&game, move); });
    return moves;
}

/// The protocol in this process. While it lives standard output is its own: what a test finds it says afterwards.
class Session {
public:
    explicit Session(std::unique_ptr<Game> game) : protocol(start_protocol(std::move(game))) {}
    ~Session() { xboard_step(protocol, "force\n"); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    std::string say(const std::string& line) {
        xboard_step(protocol, line + '\n');
        return without_search_lines(ear_.lines());
    }

    Protocol protocol;

private:
    Ear ear_;
};

class Ponder : public SearchTest {};

// --- Stopping -------------------------------------------------------------------------------------------------------

TEST_F(Ponder, IsStoppedByWhateverTouchesTheSearch) {
    const std::map<std::string, bool> goes_on = {
        {"go", false},   {"hint", false},   {"new", false},   {"result *", false},   {"RESULT", false},
        {"undo", false}, {"remove", false}, {"force", false}, {"easy", false},       {"hard", true},
        {"post", true},  {"nopost", true},  {"sd 50", true},  {"level 9 5 0", true}, {"otim 1", true},
        {"", true},      {"ping", true},    {"a1a8", true},   {"protover 2", true},  {"accepted x", true},
        {"?", true},     {"white", true},   {"black", true},  {"computer", true},    {"random", true},
    };
    std::map<std::string, bool> seen;
    std::map<std::string, std::int32_t> limits;
    {
        Session session(new_game(false));
        for (const auto& [line, expected] : goes_on) {
            for (const char* preparation : {"new", "level 40 5 0", "hard", "time 2", "e2e4"}) session.say(preparation);
            const bool began = is_pondering();
            session.say(line);
            seen[line] = is_pondering();
            if (began && !expected) limits[line] = time_limit_ms;
        }
    }
    EXPECT_EQ(seen, goes_on);
    EXPECT_EQ(limits.size(), 9U);  // all of them had something to stop
    for (const auto& [line, limit] : limits) EXPECT_EQ(limit, 0) << "not the limit of the engine's own moves: " << line;
}

TEST_F(Ponder, EndsWithTheGame) {
    auto game = game_from("k7/7r/8/8/8/8/R7/7K w - -");
    game->fifty = 97;
    bool before = false, after = true;
    std::string said;
    {
        Session session(std::move(game));
        for (const char* line : {"level 40 5 0", "time 2", "h1g1"}) session.say(line);
        before = is_pondering();
        said = session.say("a2b2");
        after = is_pondering();
    }
    EXPECT_TRUE(before);
    EXPECT_EQ(said, "1/2-1/2 {Draw by 50 move rule}\n");
    EXPECT_FALSE(after);
}

// --- The clock ------------------------------------------------------------------------------------------------------

TEST_F(Ponder, AHitIsAnsweredWhenItsTimeIsUsedUp) {
    Partner partner;
    Process& engine = partner.process();
    const auto expected_move = [&] {
        engine.read_until("pondering: ");
        return engine.read_until("\n");
    };
    const auto time_of_answer = [&](const std::string& line) {
        const auto started = steady_clock::now();
        engine.send(line);
        engine.read_until("move ");
        return std::chrono::duration_cast<milliseconds>(steady_clock::now() - started);
    };
    constexpr milliseconds limit(2000), a_little(20);
    engine.send("level 40 5 0\ntime 8002\ne2e4\n");
    // The first hit comes without a `time` line: the search has what the last move had, from now on.
    EXPECT_GE(time_of_answer(expected_move()), limit - a_little);
    // The second comes so long behind such a line that all of its time is used up.
    const std::string hit = expected_move();
    engine.send("time 7602\n");  // of 38 moves
    std::this_thread::sleep_for(limit + 10 * a_little);
    EXPECT_LE(time_of_answer(hit), limit - a_little);
}

// --- Random dialogues -----------------------------------------------------------------------------------------------

/// A client that says anything at any time, and knows by a game of its own what must come of it.
class RandomClient {
public:
    explicit RandomClient(std::uint64_t seed) : random_(seed) {
        say("level 40 5 0", "level");
        say("time 1", "time");
        begin_game("new");
    }

    void say_something();
    /// The first answer that wasn't as it should have been, or what else was wrong then.
    const std::string& fault() const { return fault_; }
    /// How often each kind of line met a search.
    const std::map<std::string, int>& met_search() const { return met_search_; }

private:
    bool one_in(std::uint64_t cases) { return random_.below(cases) == 0; }
    std::string any(std::initializer_list<const char*> texts) { return texts.begin()[random_.below(texts.size())]; }
    void say(const std::string& line, const std::string& kind);
    void check(std::string_view expected);

    void begin_game(const std::string& line);
    void play();
    void take_time();
    void ask_for_move();
    void ask_for_hint();
    void take_back(const std::string& line, int moves);
    std::string reply();
    std::string pondering();

    RandomSource random_;
    const Game start_ = *new_game(false);
    std::unique_ptr<Game> game_ = std::make_unique<Game>(start_);
    bool forced_ = false, allowed_ = true, posting_ = false;
    std::optional<Move> pondered_;
    std::string line_, answer_, fault_;
    std::map<std::string, int> met_search_;
    Session session_{std::make_unique<Game>(start_)};
};

/// Waits before as a client may: mostly not at all.
void RandomClient::say(const std::string& line, const std::string& kind) {
    if (one_in(3)) std::this_thread::sleep_for(std::chrono::microseconds(random_.below(3000)));
    if (pondered_) ++met_search_[kind];
    line_ = line;
    answer_ = session_.say(line);
}

void RandomClient::check(std::string_view expected) {
    if (!fault_.empty()) return;
    const Game& game = *session_.protocol.game;
    if (answer_ != expected) fault_ = "\"" + answer_ + "\" instead of \"" + std::string(expected) + '"';
    if (!same_game(game, *game_)) fault_ += ", the engine has " + position_text(&game);
    if (is_pondering() != pondered_.has_value()) fault_ += ", pondering is " + std::to_string(is_pondering());
    if (!fault_.empty()) fault_ = line_ + ": " + fault_ + " in " + position_text(game_.get());
}

void RandomClient::say_something() {
    const std::string result = result_text(*game_);
    const std::uint64_t choice = random_.below(100);
    if (choice == 0 || (!result.empty() && choice < 50)) {
        begin_game(any({"new", "result 1-0 {White mates}", "RESULT"}));
    } else if (choice < 50) {
        play();
    } else if (choice < 60) {
        ask_for_hint();
    } else if (choice < 65) {
        ask_for_move();
    } else if (choice < 75) {
        choice < 70 ? take_back("undo", 1) : take_back("remove", 2);
    } else if (choice < 80) {
        say("ping 1", "ping");
        check(result.empty() ? "Illegal Move: ????\n" : result);
    } else {
        const std::string line = any({"", " ", "?", "otim 1", "level 40 5 0", "level 0 5 0", "level x", "sd 4", "hard",
                                      "hard", "hard", "easy", "force", "post", "nopost", "nopost"});
        say(line, line);
        if (line == "hard" || line == "easy") allowed_ = line == "hard";
        if (line == "post" || line == "nopost") posting_ = line == "post";
        if (line == "force") forced_ = true;
        if (line == "easy" || line == "force") pondered_.reset();
        check("");
    }
}

void RandomClient::begin_game(const std::string& line) {
    say(line, line);
    pondered_.reset();
    forced_ = posting_ = false;
    *game_ = start_;
    check("");
    // Mostly a search that ends by itself before long: so many more lines can be said.
    say("sd " + any({"1", "2", "3", "4", "4", "5", "99"}), "sd");
    check("");
}

void RandomClient::play() {
    if (one_in(2)) take_time();
    const std::string before = result_text(*game_);
    const std::vector<Move> moves = private_legal_moves(*game_);
    Move move = moves.empty() ? Move{} : moves[random_.below(moves.size())];
    if (pondered_ && one_in(2)) move = *pondered_;
    say(move_text(move), pondered_ == move ? "hit" : "miss");
    pondered_.reset();
    if (!before.empty()) return check(before);
    play_move(move, game_.get());
    const std::string after = result_text(*game_);
    if (!after.empty() || forced_) return check(after);
    std::string expected = reply();
    const std::string end = result_text(*game_);
    expected += !end.empty() || !allowed_ ? end : pondering();
    check(expected);
}

void RandomClient::take_time() {
    const int centiseconds = static_cast<int>(random_.below(60));
    say("time " + std::to_string(centiseconds), "time");
    const bool told = answer_.starts_with("got time: " + std::to_string(10 * centiseconds - 20) + "\nturns left = ") &&
                      answer_.ends_with(" milliseconds for search.\n");
    check(told ? answer_ : "the time");
}

void RandomClient::ask_for_move() {
    if (private_legal_moves(*game_).empty()) return;  // the process would end
    say("go", "go");
    pondered_.reset();
    forced_ = false;
    check(reply());
}

void RandomClient::ask_for_hint() {
    if (posting_) return;  // the hint would begin with the search's lines
    say("hint", "hint");
    pondered_.reset();
    std::string expected = result_text(*game_);
    if (expected.empty()) expected = "Hint: a legal move";
    for (const Move move : private_legal_moves(*game_)) {
        const std::string san = san_text(move, game_.get());
        const std::string hint = "Hint: " + std::string(san.size() < 5 ? 5 - san.size() : 0, ' ') + san + '\n';
        if (hint == answer_) expected = hint;
    }
    check(expected);
}

void RandomClient::take_back(const std::string& line, int moves) {
    say(line, line);
    pondered_.reset();
    const Game played = *game_;
    *game_ = start_;
    for (int i = 0; i < played.move_counter - moves; ++i) play_move(played.game_moves[i], game_.get());
    check("");
}

/// The engine's move, out of its game; it must follow from the client's.
std::string RandomClient::reply() {
    const Game& game = *session_.protocol.game;
    if (game.move_counter != game_->move_counter + 1) return "a move";
    const Move reply = game.game_moves[game.move_counter - 1];
    if (!is_valid_move(game_.get(), reply)) return "a legal move";
    play_move(reply, game_.get());
    return "move " + move_text(reply) + '\n';
}

/// What is said behind a move where pondering is allowed: whether it begins depends on what the search expects.
std::string RandomClient::pondering() {
    std::string enabled = "pondering enabled\n";
    const std::string begins = "i am going to try to ponder\npondering: ";
    const std::size_t found = answer_.find(begins);
    if (found == std::string::npos) return enabled;
    const Move move = parse_move(answer_.substr(found + begins.size()), game_.get());
    if (!is_valid_move(game_.get(), move)) return enabled + begins + "a legal move";
    pondered_ = move;
    return enabled + begins + move_text(move) + '\n';
}

TEST_F(Ponder, RandomDialoguesLeaveTheRightGame) {
    const char* wanted = std::getenv("VARN_PONDER_LINES");
    std::string_view number = wanted != nullptr ? wanted : "2500";
    const int lines = take_number(number).value_or(0);
    std::string fault;
    std::map<std::string, int> met_search;
    {
        RandomClient client(static_cast<std::uint64_t>(lines));
        for (int i = 0; i < lines && client.fault().empty(); ++i) client.say_something();
        fault = client.fault();
        met_search = client.met_search();
    }
    EXPECT_EQ(fault, "");
    for (const char* kind : {"hit", "miss", "time", "go", "hint", "new", "RESULT", "undo", "remove", "force", "easy"}) {
        EXPECT_GT(met_search[kind], 0) << kind;
    }
}

TEST_F(Ponder, BurstsOfAnythingAreOutlived) {
    constexpr const char* lines[] = {"e2e4", "d2d4", "g1f3",  "e7e5", "g8f6",   "b1c3",   "undo",       "remove",
                                     "go",   "hint", "easy",  "hard", "force",  "new",    "time 1",     "time 2",
                                     "post", "sd 2", "sd 99", "ping", "result", "nopost", "level 1 0 0"};
    RandomSource random(5);
    for (int burst = 0; burst < 4; ++burst) {
        std::string input = "xboard\ntime 1\n";
        for (int i = 0; i < 200; ++i) {
            const std::uint64_t choice = random.below(std::size(lines) + 2);
            if (choice < std::size(lines)) {
                input += lines[choice];
            } else {
                for (std::uint64_t left = random.below(600); left > 0; --left)
                    input += static_cast<char>(random.next());
            }
            input += '\n';
        }
        const Outcome outcome = run_console(input + (burst % 2 == 0 ? "quit\n" : "e2"));
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        EXPECT_NE(outcome.output.find("pondering: "), std::string::npos);
    }
}

}  // namespace
}  // namespace varn
