// Dialogues with either front end: transcripts, and sessions of the xboard protocol.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/version.h"
#include "process.h"
#include "tables.h"
#include "xboard/xboard.h"

namespace varn {

/// Plays a transcript: lines that begin with "> " are typed, and `answer` must return the lines after them.
template <typename Answer> void expect_transcript(const std::string& transcript, Answer answer) {
    for (std::size_t start = 0, end; start < transcript.size(); start = end) {
        const std::size_t line_end = transcript.find('\n', start);
        end = std::min(transcript.find("\n> ", line_end), transcript.size() - 1) + 1;
        const std::string typed = transcript.substr(start + 2, line_end - start - 2);
        EXPECT_EQ(answer(typed), transcript.substr(line_end + 1, end - line_end - 1)) << typed;
    }
}

/// Replaces "{program}" by the program's name and version.
inline std::string with_program_name(std::string text) {
    constexpr std::string_view name = "{program}";
    for (std::size_t at; (at = text.find(name)) != std::string::npos;) text.replace(at, name.size(), program_name);
    return text;
}

/// Calls `play(title, transcript)` for each transcript of a file; each follows its title line.
template <typename Play> void for_each_transcript(const std::string& name, Play play) {
    std::ifstream file(VARN_TEST_FOLDER "/transcripts/" + name);
    const std::string text = '\n' + std::string(std::istreambuf_iterator<char>(file), {});
    const std::vector<std::string> sections = split(text.substr(0, text.size() - 1), "\n=== ");
    ASSERT_GT(sections.size(), 1U) << name;
    for (auto section = sections.begin() + 1; section != sections.end(); ++section) {
        const std::size_t title_end = section->find('\n');
        play(section->substr(0, title_end), with_program_name(section->substr(title_end + 1)) + '\n');
    }
}

inline const std::string features =
    with_program_name("feature analyse=0\nfeature setboard=0\nfeature myname=\"{program}\"\nfeature done=1\n");

/// The protocol's message for a game status.
inline std::string result_text(const Game& game) {
    switch (protocol_status(game)) {
        case GameStatus::goes_on: return "";
        case GameStatus::mate: return game.turn == Side::white ? "0-1 {Black mates}\n" : "1-0 {White mates}\n";
        case GameStatus::stalemate: return "1/2-1/2 {Stalemate}\n";
        case GameStatus::fifty_moves: return "1/2-1/2 {Draw by 50 move rule}\n";
        case GameStatus::insufficient_material: return "1/2-1/2 {Draw by insufficient materal}\n";
        case GameStatus::full_record: return "1/2-1/2 {Draw by game length}\n";
        default: return "1/2-1/2 {Draw by repetition}\n";
    }
}

/// The engine under the xboard protocol, after some lines at the console.
class Partner {
public:
    explicit Partner(std::string_view console_lines = "", const Files& files = default_files()) : process_(files) {
        process_.send(console_lines);
        process_.send("xboard\n");
        EXPECT_TRUE(answer("").ends_with("Varn> \n"));
    }

    /// The answer to the lines (separated by "; "). A request for the features marks the end.
    std::string answer(std::string_view lines) {
        for (const std::string& line : split(lines, "; ")) process_.send(line + '\n');
        process_.send("protover 2\n");
        std::string text = process_.read_until("feature done=1\n");
        EXPECT_TRUE(text.ends_with(features)) << text;
        text.resize(text.size() - std::min(text.size(), features.size()));
        return text;
    }

    void expect(const std::string& transcript) {
        expect_transcript(transcript, [this](const std::string& typed) { return answer(typed); });
    }

    Process& process() { return process_; }

private:
    Process process_;
};

}  // namespace varn
