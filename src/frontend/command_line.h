// Matching of input lines with commands, for all front ends.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace varn {

/// How much of a line must equal the command's text. Lines keep their newline.
enum class Match : std::uint8_t { whole_line, beginning };

constexpr bool fits(std::string_view line, std::string_view text, Match match) {
    return match == Match::whole_line ? line == text : line.starts_with(text);
}

inline constexpr std::string_view blanks = " \t\n\v\f\r";

constexpr std::string_view without_leading_blanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(blanks), text.size()));
}

/// Removes and returns the first word of the text, skipping blanks; empty if there is none.
constexpr std::string_view take_word(std::string_view& text) {
    text = without_leading_blanks(text);
    const std::string_view word = text.substr(0, text.find_first_of(blanks));
    text.remove_prefix(word.size());
    return word;
}

/// Removes everything up to and including the word, and returns the part before it; all of the text if the word is
/// missing.
constexpr std::string_view take_before(std::string_view& text, std::string_view word) {
    const std::string_view whole = text;
    std::string_view taken = take_word(text);
    while (!taken.empty() && taken != word) taken = take_word(text);
    return whole.substr(0, whole.size() - text.size() - taken.size());
}

}  // namespace varn
