#include "frontend/suite.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

#include "board/notation.h"
#include "board/output.h"
#include "board/position.h"
#include "board/report.h"
#include "search/settings.h"
#include "search/think.h"

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

/// The move that the engine gives for the position of a line; none, with the reason said, where it can't give one.
std::optional<Move> move_for(const std::string& line, Game* game, Report& report) {
    set_position(game, line, KeepTables::no);
    if (!is_playable(game)) {
        report.say_both(std::string(unplayable_text));
        return std::nullopt;
    }
    if (const Move* move = think(game)) return *move;
    report.say_both(game_status_text(game));
    return std::nullopt;
}

bool solves(const std::string& line, Game* game, Report& report) {
    const auto move = move_for(line, game, report);
    return move && line.find(san_text(*move, game)) != std::string::npos;
}

void play_suite(std::istream& suite, Report& report) {
    const auto game = new_game(false);
    int n = 0;
    int solved = 0;
    const auto score = [&] { return std::to_string(solved) + '/' + std::to_string(n) + " problems solved.\n\n"; };
    while (const auto line = next_line(suite)) {
        const std::string number = std::to_string(++n);
        report.say_both("\nTest position #" + number + ": " + *line);
        if (solves(*line, game.get(), report)) {
            ++solved;
            report.say_both("Test #" + number + ": Success!\n");
        } else {
            report.say_here_and_log("Test #" + number + ": Failure.\n", "Test #" + number + ": Failure!\n");
        }
        report.say_both('\n' + score());
    }
    report.say_both("Test suite complete.\n  " + score());
}

}  // namespace

void run_suite(const std::string& suite_name, const std::string& log_name) {
    book_enabled = 0;
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
    play_suite(suite, report);
    if (suite.bad()) say_text("error: the test suite could not be read to its end.\n");
    if (!report.close()) say_text("error: the log could not be written to its end.\n");
}

void run_test_suite(Console&, const CommandLine& line) {
    std::istringstream words{std::string(line.whole)};
    std::string command, suite_name, log_name, more;
    if (!(words >> command >> suite_name >> log_name) || words >> more) {
        ignore_line(line);
        return;
    }
    say("running test suite: %s\n", suite_name.c_str());
    run_suite(suite_name, log_name);
}

}  // namespace varn
