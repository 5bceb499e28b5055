#include "patterns/pattern_files.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <string_view>

#include "base/file.h"
#include "base/output.h"

namespace varn {

namespace {

enum class Reading : std::uint8_t { no_number, zero, other };

/// The number at the beginning of the text, after blanks and a sign.
Reading read_result(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    if (text.starts_with('+')) text.remove_prefix(1);
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::invalid_argument) return Reading::no_number;
    return error == std::errc() && number == 0 ? Reading::zero : Reading::other;
}

void read_line(std::string_view line, Game& game, const PositionReader& position_read, std::vector<Pattern>& drawn) {
    const std::size_t tab = line.find('\t');
    if (tab == std::string_view::npos) return;
    const Reading result = read_result(line.substr(tab + 1));
    if (result == Reading::no_number) return;
    position_read(set_position(game, line.substr(0, tab)));
    if (result == Reading::zero) drawn.push_back({{game.w_king, game.w_pawns, game.b_king}});
}

std::string file_text(const PatternList& list) {
    std::string text = std::to_string(list.count()) + (list.side == 0 ? " w\n" : " b\n");
    for (const Pattern& pattern : in_order(list)) {
        for (const Bitboard board : pattern.squares) text += board_number(board) + ' ';
        text += std::to_string(list.result) + '\n';
    }
    return text;
}

}  // namespace

std::optional<LoadedPositions> load_positions(const char* file_name, Game& game, const PositionReader& position_read) {
    const File file = open_for_reading(file_name);
    if (file == nullptr) return std::nullopt;
    LoadedPositions positions;
    char line[80];
    for (; std::fgets(line, sizeof line, file.get()) != nullptr; ++positions.lines) {
        read_line(line, game, position_read, positions.drawn);
    }
    return positions;
}

bool can_dump_patterns(const std::string& file_name, const PatternList& list) {
    return can_write_whole_file(file_name, file_text(list));
}

bool dump_patterns(const std::string& file_name, const PatternList& list) {
    if (!write_whole_file(file_name, file_text(list))) {
        say_text(cannot_dump_text);
        return false;
    }
    say("finished dumping %s\n", file_name.c_str());
    return true;
}

std::optional<std::string> rescue_patterns(const std::string& file_name, const PatternList& list) {
    std::error_code none;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(none);
    return none ? std::nullopt : write_new_file((folder / file_name).string() + '.', file_text(list));
}

std::string board_number(Bitboard board) {
    const auto high = static_cast<std::uint32_t>(board >> 32);
    return (high != 0 ? std::to_string(high) : "") + std::to_string(static_cast<std::uint32_t>(board));
}

}  // namespace varn
