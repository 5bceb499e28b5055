#include "frontend/suite.h"

#include <cstdio>
#include <filesystem>
#include <optional>

#include "base/file.h"
#include "base/output.h"
#include "board/notation.h"
#include "frontend/game_report.h"
#include "frontend/input.h"

namespace varn {

namespace {

/// Output of a run, on standard output and in the log. Every text is flushed to the log: a position may end the
/// process.
class Report {
public:
    explicit Report(const std::string& log_name)
        : log_(open_for_writing(log_name.c_str(), Devices::terminals_and_null)) {}

    bool is_open() const { return log_ != nullptr; }
    void say_here_and_log(const std::string& here, const std::string& in_log) {
        say_text(here);
        const bool written = std::fwrite(in_log.data(), 1, in_log.size(), log_.get()) == in_log.size();
        is_complete_ = std::fflush(log_.get()) == 0 && written && is_complete_;
    }
    void say_both(const std::string& text) { say_here_and_log(text, text); }
    /// Returns whether the log was written completely.
    bool close() { return std::fclose(log_.release()) == 0 && is_complete_; }

private:
    File log_;
    bool is_complete_ = true;
};

/// The next line with its newline. Lines longer than `longest_line` are read only just beyond that.
std::optional<std::string> next_line(std::FILE* suite) {
    std::string line;
    while (line.size() <= longest_line && !line.ends_with('\n')) {
        const int c = std::getc(suite);
        if (c == EOF) break;
        line += static_cast<char>(c);
    }
    return line.empty() ? std::nullopt : std::optional(line);
}

/// State of a run.
struct SuiteRun {
    Engine& engine;
    const SearchListener& listener;
    Report& report;
    Game& game;
};

/// The engine's move for a line's position; none, with a message, if there is none.
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

void play_suite(SuiteRun& run, std::FILE* suite) {
    Report& report = run.report;
    int n = 0;
    int solved = 0;
    const auto score = [&] { return std::to_string(solved) + '/' + std::to_string(n) + " problems solved.\n\n"; };
    while (const auto line = next_line(suite)) {
        const std::string number = std::to_string(++n);
        if (line->size() > longest_line) {
            report.say_both("error: line " + number + " of the test suite is too long.\n");
            return;
        }
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
    std::error_code unknown;  // a missing log is not the suite
    if (std::filesystem::equivalent(suite_name, log_name, unknown)) {
        say_text("error: the log would overwrite the test suite. cannot run test suite.\n");
        return;
    }
    const File suite = open_for_reading(suite_name.c_str(), Devices::terminals_and_null);
    Report report(log_name);
    if (suite == nullptr || !report.is_open()) {
        say_text("error: unknown file error. cannot run test suite.\n");
        return;
    }
    const auto game = new_game();
    SuiteRun run = {engine, listener, report, *game};
    play_suite(run, suite.get());
    if (std::ferror(suite.get()) != 0) say_text("error: the test suite could not be read to its end.\n");
    if (!report.close()) say_text("error: the log could not be written to its end.\n");
}

}  // namespace varn
