// Games in PGN as they come from anywhere: comments, variations, annotations, either line end, tags in any number, and
// text that breaks off.
#pragma once

#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varn {

struct PgnGame {
    long number = 0;                    // in its file, from 1
    bool starts_from_position = false;  // its tags set up a position
    std::vector<std::string> moves;     // of the main line, as written, without numbers and annotations
    std::string problem;                // why its text ends too early; empty where it doesn't
};

/// Reads a stream game by game. A line that begins with an "Event" tag begins a game, whatever was open before it.
class PgnReader {
public:
    explicit PgnReader(std::istream& input) : input_(input) {}

    /// The next game, or none at the end of the stream.
    std::optional<PgnGame> next();

private:
    bool next_line();
    bool skip_blanks();
    bool begins_game() const;
    void read_tag(PgnGame& game);
    bool skip_comment();
    std::string_view take_word();

    std::istream& input_;
    std::string line_;
    std::string_view rest_;  // of the line
    long games_ = 0;
};

}  // namespace varn
