// PGN reader: accepts comments, variations, annotations, any line ends and tags, and truncated text.
#pragma once

#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varn {

struct PgnGame {
    long number = 0;                    // within its file, from 1
    bool starts_from_position = false;  // the tags set up a position
    std::vector<std::string> moves;     // main line as written, without numbers and annotations
    std::string problem;                // why the text is incomplete, or empty
};

/// Reads games from a stream. An "Event" tag always starts a new game.
class PgnReader {
public:
    explicit PgnReader(std::istream& input) : input_(input) {}

    /// The next game; none at the end of the stream.
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
    std::string_view rest_;  // of the current line
    long games_ = 0;
};

}  // namespace varn
