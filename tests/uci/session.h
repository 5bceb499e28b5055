// The UCI front end in this process, with its output parsed.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "positions.h"
#include "search/score.h"
#include "uci/uci.h"

namespace varn {

/// An `info` line of a search.
struct InfoLine {
    int depth = 0;
    int selective_depth = 0;
    int line_number = 0;
    bool is_mate = false;
    int score = 0;  // centipawns or moves to mate
    bool is_bound = false;
    std::uint64_t nodes = 0, nodes_per_second = 0, milliseconds = 0;
    std::vector<std::string> pv;

    /// Orders scores for the side to move.
    int value() const { return !is_mate ? score : score > 0 ? mate_score - score : -mate_score - score; }
};

inline InfoLine info_line(const std::string& line) {
    InfoLine info;
    std::istringstream words(line);
    for (std::string word; words >> word;) {
        if (word == "depth") words >> info.depth;
        if (word == "seldepth") words >> info.selective_depth;
        if (word == "multipv") words >> info.line_number;
        if (word == "nodes") words >> info.nodes;
        if (word == "nps") words >> info.nodes_per_second;
        if (word == "time") words >> info.milliseconds;
        if (word == "lowerbound" || word == "upperbound") info.is_bound = true;
        if (word == "score") {
            words >> word >> info.score;
            info.is_mate = word == "mate";
        }
        if (word == "pv") {
            while (words >> word) info.pv.push_back(word);
        }
    }
    return info;
}

/// The `info` lines of searches, without `currmove` lines.
inline std::vector<InfoLine> info_lines(std::string_view said) {
    std::vector<InfoLine> infos;
    for (const std::string& line : split(said, "\n")) {
        const bool is_told = line.starts_with("info depth") && line.find(" currmove ") == std::string::npos;
        if (is_told) infos.push_back(info_line(line));
    }
    return infos;
}

/// The lines of the last iteration, one per principal variation, best first.
inline std::vector<InfoLine> last_lines(std::string_view said) {
    std::vector<InfoLine> last;
    for (const InfoLine& info : info_lines(said)) {
        if (info.line_number == 1) last.clear();
        last.push_back(info);
    }
    return last;
}

/// The `bestmove` lines.
inline std::vector<std::string> answers_in(std::string_view said) {
    std::vector<std::string> answers = split(said, "\n");
    std::erase_if(answers, [](const std::string& line) { return !line.starts_with("bestmove "); });
    return answers;
}

/// The move of the only `bestmove` line.
inline std::string best_move_in(std::string_view said) {
    const std::vector<std::string> answers = answers_in(said);
    EXPECT_EQ(answers.size(), 1U) << said;
    return answers.empty() ? "" : split(answers[0], " ")[1];
}

inline constexpr TableSizes small_tables = {.hash_bits = 16, .qhash_bytes = 1 << 20, .phash_bytes = 1 << 16};

/// The front end with small tables. While it exists standard output is redirected to a file; if the test fails all of
/// it is printed.
class UciSession {
public:
    explicit UciSession(const TableSizes& sizes = small_tables) {
        if (allocate_tables(*uci.search, sizes) != TableFault::none) throw std::runtime_error("no memory");
        static_cast<void>(std::fflush(stdout));
        std::string name = "/tmp/varn-said-XXXXXX";
        file_ = mkstemp(name.data());
        output_ = dup(STDOUT_FILENO);
        if (file_ < 0 || output_ < 0) throw std::system_error(errno, std::generic_category(), name);
        unlink(name.c_str());
        dup2(file_, STDOUT_FILENO);
    }
    ~UciSession() {
        finish_search(uci);
        static_cast<void>(std::fflush(stdout));
        dup2(output_, STDOUT_FILENO);
        close(output_);
        said();
        if (testing::Test::HasFailure()) std::cout << all_ << std::flush;
        close(file_);
    }
    UciSession(const UciSession&) = delete;
    UciSession& operator=(const UciSession&) = delete;

    /// Executes the lines (separated by "; ") without waiting.
    void send(std::string_view lines) {
        for (const std::string& line : split(lines, "; ")) uci_step(uci, line);
    }

    /// The output since the last call.
    std::string said() {
        char buffer[1 << 14];
        const std::size_t before = all_.size();
        for (ssize_t length; (length = pread(file_, buffer, sizeof buffer, static_cast<off_t>(all_.size()))) > 0;) {
            all_.append(buffer, static_cast<std::size_t>(length));
        }
        unheard_ += all_.substr(before);
        return std::exchange(unheard_, {});
    }

    /// The same, once it contains the text; throws on timeout.
    std::string said_with(std::string_view text) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(2);
        std::string heard = said();
        while (heard.find(text) == std::string::npos) {
            if (std::chrono::steady_clock::now() > deadline)
                throw std::runtime_error("no \"" + std::string(text) + '"');
            std::this_thread::sleep_for(std::chrono::microseconds(200));
            heard += said();
        }
        return heard;
    }

    /// The answer to the lines.
    std::string answer(std::string_view lines) {
        said();
        send(lines);
        return said();
    }

    /// The answer to lines that end with a terminating search, up to its `bestmove`.
    std::string search(std::string_view lines) {
        said();
        send(lines);
        std::string heard = said_with("bestmove ");
        join_thread(uci.job.thread);
        return heard + said();
    }

    Uci uci;

private:
    int file_, output_;
    std::string all_, unheard_;
};

}  // namespace varn
