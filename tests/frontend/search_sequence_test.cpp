// Sessions of the console, compared with a plain search by the same rules: the same scores, nodes, lines and moves,
// whatever was searched, stopped, played, taken back or set before. What one command leaves behind is what the next one
// must find: both hash tables, the pawn table, history, killers, the last score, the main line.

#include <gtest/gtest.h>
#include <unistd.h>

#include <regex>

#include "console/console.h"
#include "frontend/game_report.h"
#include "search/plain_search.h"

namespace varn {
namespace {

/// What the searches decide: rows without the time, and moves.
std::string search_output(const std::string& text) {
    static const std::regex row("^ *(\\d+) +(-?\\d+) +\\d+ +(\\d+) +(\\d+)"), prompt("^Varn> "), blanks(" +");
    static const std::regex wanted("\\d.*|my move is.*|I recommend.*|score is.*");
    std::string output;
    for (const std::string& line : split(text, "\n")) {
        std::string plain = std::regex_replace(line, prompt, "");
        plain = std::regex_replace(std::regex_replace(plain, row, "$1 $2 $3 $4"), blanks, " ");
        if (plain.ends_with(' ')) plain.pop_back();
        if (std::regex_match(plain, wanted)) output += plain + '\n';
    }
    return output;
}

/// The console in this process, and what it must do.
class Session {
public:
    explicit Session(const TableSizes& sizes) : plain_(sizes) {
        engine_.configuration.tables = sizes;
        allocate_tables(engine_);
        start_game(engine_);
        int ends[2] = {};
        EXPECT_EQ(pipe(ends), 0);
        dup2(ends[0], STDIN_FILENO);
        close(ends[0]);
        input_ = ends[1];
        std::clearerr(stdin);
    }
    ~Session() { close(input_); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    bool is_hurried() const { return plain_.time_is_up; }
    Game game() const { return game_after(turns_); }
    /// The game with its last moves taken back, and passes after the remaining ones.
    Game game_before(std::uint64_t moves) const { return game_after(turns_before(moves)); }

    void say(const std::string& lines) {
        for (const std::string& line : split(lines, "; ")) {
            said_ += line + '\n';
            plain_.rows.clear();
            follow(line.substr(0, line.find(' ')), line.substr(std::min(line.size(), line.find(' ') + 1)));
            ASSERT_EQ(search_output(printed([&] { carry_out(line); })), plain_.rows) << said_;
            ASSERT_EQ(engine_.search->nodes, plain_.nodes) << said_;
            ASSERT_EQ(engine_.search->predicted_move, expected_reply_) << said_;
            ASSERT_TRUE(same_game(*engine_.game, game())) << said_;
        }
    }

private:
    using Turns = std::vector<std::optional<Move>>;  // moves and passes

    Game game_after(const Turns& turns) const {
        Game game = base_;
        for (const auto& move : turns) {
            if (move) {
                play_move(game, *move);
            } else {
                game.turn = other(game.turn);
                game.zobrist_key ^= zobrist_side_number;
            }
        }
        return game;
    }

    Turns turns_before(std::uint64_t moves) const {
        Turns turns = turns_;
        const auto drop_passes = [&] {
            while (!turns.empty() && !turns.back()) turns.pop_back();
        };
        for (drop_passes(); moves > 0 && !turns.empty(); --moves, drop_passes()) turns.pop_back();
        return turns;
    }

    /// "nodes" and a number is a search that ends there; all else is for the console.
    void carry_out(const std::string& line) {
        if (line.starts_with("nodes ")) {
            think(*engine_.search, *engine_.game, {.nodes = std::stoull(line.substr(6))}, console_.listener);
        } else {
            const std::string typed = line + '\n';
            EXPECT_EQ(write(input_, typed.data(), typed.size()), std::ssize(typed));
            console_step(console_);
        }
    }

    void follow(const std::string& word, const std::string& argument) {
        if (word == "ply") {
            ply_limit_ = std::stoi(argument);
        } else if (word == "time") {
            plain_.time_is_up = argument == "0";
        } else if (word == "back") {
            turns_ = turns_before(std::stoul(argument));
            plain_.clear();
        } else if (word == "new") {
            begin(*new_game());
            plain_.clear();
        } else if (word == "setboard") {
            Game set = game();
            set_position(set, argument);
            begin(set);
            plain_.clear();
            plain_.clear_killer_counts();
        } else if (word == "sides") {
            const bool cancels = !turns_.empty() && !turns_.back();
            cancels ? turns_.pop_back() : turns_.push_back(std::nullopt);
        } else if (word == "nm") {
            plain_.rows += "score is: " + std::to_string(plain_.search_on(game(), 7)) + '\n';
        } else if (word == "nodes") {
            choose(50, std::stoull(argument));
        } else if (word == "hint") {
            const Move move = choose();
            plain_.rows += "I recommend: " + san_text(game(), move) + " (" + move_text(move) + ")\n";
        } else {
            turns_.push_back(parse_move(game(), word));
            if (game().turn == Side::white || every_legal_move(game()).empty()) return;
            const Move reply = choose();
            plain_.rows += "my move is: " + move_text(reply) + '\n';
            turns_.push_back(reply);
        }
    }

    void begin(const Game& game) {
        base_ = game;
        turns_.clear();
    }

    Move choose() { return choose(ply_limit_, no_node_limit); }
    Move choose(int depth, std::uint64_t nodes) {
        const std::vector<Move> legal = every_legal_move(game());
        expected_reply_.reset();
        if (legal.size() == 1) return legal[0];
        const std::vector<Move> line = plain_.think(game(), depth, nodes);
        if (line.size() > 1 && is_valid_move(*after(game(), line[0]), line[1])) expected_reply_ = line[1];
        return line.empty() ? legal[0] : line[0];
    }

    Engine engine_;
    Console console_ = start_console(engine_);
    PlainSearch plain_;
    Game base_ = *new_game();
    Turns turns_;
    std::optional<Move> expected_reply_;
    int ply_limit_ = deepest_iteration, input_ = -1;
    std::string said_;
};

/// Endings, and positions where a side is a rook ahead: trades are encouraged from there on.
constexpr const char* more_positions[] = {
    "8/8/4k3/8/2p5/8/1P2K3/8 w - -", "8/P7/8/4k3/8/8/4K2p/8 b - -", "7k/8/8/4K3/8/8/6R1/8 w - -",
    "1k1r4/ppp2bpp/5n2/8/8/5N2/PPP2BPP/1K1RR3 w - -", "r3r1k1/pp3bpp/5n2/8/8/5N2/PP3BPP/1K2R3 b - -"};

/// Lines that can be said in this session.
std::string any_lines(RandomSource& random, const Session& session) {
    const Game game = session.game();
    const std::vector<Move> legal = every_legal_move(game);
    const std::string short_ply = "ply " + std::to_string(1 + random.below(4));
    const std::string ply = session.is_hurried() ? "ply 50" : short_ply;
    const std::uint64_t choice = random.below(20), back = random.below(4);
    if (legal.empty() || choice < 3) {
        const std::uint64_t any = random.below(known_positions.size() + std::size(more_positions));
        return ply + "; setboard " +
               (any < known_positions.size() ? known_positions[any].text
                                             : more_positions[any - known_positions.size()]);
    }
    if (choice == 3) return ply + "; new";
    if (choice == 4 && !in_check(game)) return "sides";
    if (choice == 5 && console_status(session.game_before(back)) == GameStatus::goes_on) {
        return "back " + std::to_string(back);
    }
    if (choice == 6) return "time 0; ply 50";
    if (choice == 7) return "time " + std::string(back == 0 ? "-1; " : "100000000; ") + short_ply;  // -1 is 49 days
    if (choice == 8 && (session.is_hurried() || popcount(occupied(game)) < 6)) return "nm";
    if (choice == 9) return "nodes " + std::to_string(1 + random.below(3000));
    return choice < 14 ? "hint" : move_text(legal[random.below(legal.size())]);
}

TEST(SearchSequence, TellsWhatThePlainSearchTells) {
    RandomSource random(16);
    for (const TableSizes& sizes : {TableSizes{18, 1 << 22, 1 << 16}, TableSizes{8, 40 * 300, 16 * 20}}) {
        Session session(sizes);
        session.say("nm; ply -5; setboard 4k3/8/8/8/8/8/8/4KB2 w - -; hint; ply 0; hint; ply 99; hint; ply 3");
        // `nm` clears nothing itself: it finds what taking back and setting a position leave.
        const std::string set = "setboard " + std::string(more_positions[0]);
        session.say(set + "; ply 8; hint; nm; back 0; nm; hint; " + set + "; nm; ply 3");
        for (int i = 0; i < 100 && !testing::Test::HasFailure(); ++i) session.say(any_lines(random, session));
    }
}

}  // namespace
}  // namespace varn
