#include "frontend/suite.h"

#include <filesystem>
#include <fstream>
#include <optional>

#include "base/output.h"
#include "board/notation.h"
#include "frontend/game_report.h"

namespace varn {

namespace {

/// What a run says, here and in its log. Each text reaches the log at once: a position may end the process.
class Report {
public:
    explicit Report(const std::string& log_name) : log_(log_name, std::ios::binary) {}

    bool is_open() const { return log_.is_open(); }
    void say_here_and_log(const std::string& here, const std::string& in_log) {
        say_text(here);
        log_ << in_log << std::flush;
    }
    void say_both(const std::string& text) { say_here_and_log(text, text); }
    /// Whether the log holds all that was said.
    bool close() {
        log_.close();
        return !log_.fail();
    }

private:
    std::ofstream log_;
};

/// The next line, of any length, with its newline.
std::optional<std::string> next_line(std::istream& suite) {
    std::string line;
    if (!std::getline(suite, line)) return std::nullopt;
    if (!suite.eof()) line += '\n';
    return line;
}

/// What a folder says, for one, only once it is read.
bool can_be_read(std::ifstream& suite) {
    if (!suite.is_open()) return false;
    suite.peek();
    return !suite.bad();
}

/// A run over a suite: the engine that plays it and whoever hears its searches.
struct SuiteRun {
    Engine& engine;
    const SearchListener& listener;
    Report& report;
    Game& game;
};

/// The move that the engine gives for the position of a line; none, with the reason said, where it can't give one.
std::optional<Move> move_for(SuiteRun& run, const std::string& line) {
    print_remarks(set_position(run.game, line));
    clear_for_position(*run.engine.search);
    if (!is_playable(run.game)) {
        run.report.say_both(std::string(unplayable_text));
        return std::nullopt;
    }
    const auto move = choose_move(run.engine, run.game, run.listener);
    if (!move) run.report.say_both(std::string(status_text(console_status(run.game), run.game.turn)));
    return move;
}

bool solves(SuiteRun& run, const std::string& line) {
    const auto move = move_for(run, line);
    return move && line.find(san_text(run.game, *move)) != std::string::npos;
}

void play_suite(SuiteRun& run, std::istream& suite) {
    Report& report = run.report;
    int n = 0;
    int solved = 0;
    const auto score = [&] { return std::to_string(solved) + '/' + std::to_string(n) + " problems solved.\n\n"; };
    while (const auto line = next_line(suite)) {
        const std::string number = std::to_string(++n);
        report.say_both("\nTest position #" + number + ": " + *line);
        if (solves(run, *line)) {
            ++solved;
            report.say_both("Test #" + number + ": Success!\n");
        } else {
            // Kept: docs/compatibility.md#spelling-of-texts
            report.say_here_and_log("Test #" + number + ": Failure.\n", "Test #" + number + ": Failure!\n");
        }
        report.say_both('\n' + score());
    }
    report.say_both("Test suite complete.\n  " + score());
}

}  // namespace

void run_suite(Engine& engine, const std::string& suite_name, const std::string& log_name,
               const SearchListener& listener) {
    engine.book_enabled = false;
    std::error_code unknown;  // a file that isn't there is no other file either
    if (std::filesystem::equivalent(suite_name, log_name, unknown)) {
        say_text("error: the log would overwrite the test suite. cannot run test suite.\n");
        return;
    }
    std::ifstream suite(suite_name, std::ios::binary);
    Report report(log_name);
    if (!can_be_read(suite) || !report.is_open()) {
        say_text("error: unknown file error. cannot run test suite.\n");
        return;
    }
    const auto game = new_game();
    SuiteRun run = {engine, listener, report, *game};
    play_suite(run, suite);
    if (suite.bad()) say_text("error: the test suite could not be read to its end.\n");
    if (!report.close()) say_text("error: the log could not be written to its end.\n");
}

}  // namespace varn
