#include "pgn.h"

#include <algorithm>

namespace varn {

namespace {

constexpr std::string_view blanks = " \t\r\n\v\f";

bool is_result(std::string_view word) {
    return word == "1-0" || word == "0-1" || word == "1/2-1/2" || word == "1/2" || word == "*";
}

/// Removes a move number and its dots.
std::string_view without_number(std::string_view word) {
    const std::size_t digits = word.find_first_not_of("0123456789");
    if (digits == std::string_view::npos) return {};
    if (word[digits] != '.') return word;
    return word.substr(std::min(word.find_first_not_of('.', digits), word.size()));
}

/// Annotations and en-passant marks separated from their move.
bool is_annotation(std::string_view word) {
    return word == "e.p." || word == "ep" || word.find_first_not_of("!?+-=~#/") == std::string_view::npos;
}

}  // namespace

bool PgnReader::next_line() {
    // Lines starting with an escape character are skipped.
    do {
        if (!std::getline(input_, line_)) return false;
    } while (line_.starts_with('%'));
    rest_ = line_;
    if (rest_.starts_with("\xEF\xBB\xBF")) rest_.remove_prefix(3);  // byte order mark
    return true;
}

/// Skips to the next nonblank character; false if there is none.
bool PgnReader::skip_blanks() {
    for (;;) {
        rest_.remove_prefix(std::min(rest_.find_first_not_of(blanks), rest_.size()));
        if (!rest_.empty()) return true;
        if (!next_line()) return false;
    }
}

bool PgnReader::begins_game() const { return rest_.size() == line_.size() && rest_.starts_with("[Event "); }

void PgnReader::read_tag(PgnGame& game) {
    if (rest_.starts_with("[FEN ") || rest_.starts_with("[SetUp \"1\"")) game.starts_from_position = true;
    bool quoted = false;
    std::size_t end = 1;
    for (; end < rest_.size() && (quoted || rest_[end] != ']'); ++end) {
        if (rest_[end] == '"') quoted = !quoted;
        if (rest_[end] == '\\') ++end;
    }
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
}

/// Skips a comment in braces; false if it isn't closed.
bool PgnReader::skip_comment() {
    for (std::size_t end = rest_.find('}'); end == std::string_view::npos; end = rest_.find('}')) {
        if (!next_line() || begins_game()) return false;
    }
    rest_.remove_prefix(rest_.find('}') + 1);
    return true;
}

std::string_view PgnReader::take_word() {
    constexpr std::string_view ends = " \t\r\n\v\f{}()[];";
    const std::size_t length = std::min(std::max<std::size_t>(1, rest_.find_first_of(ends)), rest_.size());
    const std::string_view word = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return word;
}

std::optional<PgnGame> PgnReader::next() {
    if (!skip_blanks()) return std::nullopt;
    PgnGame game;
    game.number = ++games_;
    bool in_moves = false;
    int variations = 0;  // nesting depth
    while (skip_blanks()) {
        switch (rest_.front()) {
            case '[':
                if (in_moves && (variations == 0 || begins_game())) {
                    if (variations != 0) game.problem = "unterminated variation";
                    return game;
                }
                read_tag(game);
                continue;
            case '{':
                if (skip_comment()) continue;
                game.problem = "unterminated comment";
                return game;
            case ';': rest_ = {}; continue;
            case '(': ++variations; break;
            case ')': variations = std::max(0, variations - 1); break;
            default: break;
        }
        in_moves = true;
        const std::string_view word = take_word();
        if (word == "(" || word == ")" || word.starts_with('$') || variations != 0) continue;
        if (is_result(word)) return game;
        const std::string_view move = without_number(word);
        if (!is_annotation(move)) game.moves.emplace_back(move);
    }
    if (variations != 0) game.problem = "unterminated variation";
    return game;
}

}  // namespace varn
