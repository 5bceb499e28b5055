#include "kpk_check.h"

#include <algorithm>
#include <bitset>
#include <cstdio>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/number.h"

namespace varn {

namespace {

/// A set of positions, indexed by the squares of the three pieces.
using Positions = std::bitset<std::size_t{square_count} * square_count * square_count>;
/// The boxes that a line of the file may represent.
using Readings = std::vector<Pattern>;

/// Calls `visit(index)` for each position of the box while it returns true; returns whether it always did.
template <typename Visit> bool all_positions(const Pattern& box, Visit visit) {
    for (Bitboard kings = box.squares[white_king_field]; kings != 0;) {
        const int white_king = pop_first(kings);
        for (Bitboard pawns = box.squares[white_pawn_field]; pawns != 0;) {
            const int pawn = pop_first(pawns);
            for (Bitboard others = box.squares[black_king_field]; others != 0;) {
                const int index = (white_king * square_count + pawn) * square_count + pop_first(others);
                if (!visit(static_cast<std::size_t>(index))) return false;
            }
        }
    }
    return true;
}

bool lies_within(const Pattern& box, const Positions& positions) {
    return all_positions(box, [&](std::size_t index) { return positions[index]; });
}

void take_out(Positions& positions, const Pattern& box) {
    all_positions(box, [&](std::size_t index) {
        positions.reset(index);
        return true;
    });
}

std::optional<std::uint32_t> half_of(std::string_view digits) {
    const bool is_plain = digits.size() == 1 || !digits.starts_with('0');
    return is_plain ? read_number<std::uint32_t>(digits) : std::nullopt;
}

/// All boards that a number may represent: its halves are written without a separator.
std::vector<Bitboard> readings_of(std::string_view digits) {
    std::vector<Bitboard> boards;
    if (const auto low = half_of(digits)) boards.push_back(*low);
    for (std::size_t high_digits = 1; high_digits < digits.size(); ++high_digits) {
        const auto high = half_of(digits.substr(0, high_digits));
        const auto low = half_of(digits.substr(high_digits));
        if (high && *high != 0 && low) boards.push_back(Bitboard{*high} << 32 | *low);
    }
    return boards;
}

/// The possible boxes of a line that contain only these positions.
Readings boxes_of(const std::string (&numbers)[field_count], const Positions& positions) {
    Readings boxes;
    for (const Bitboard white_king : readings_of(numbers[0])) {
        for (const Bitboard pawn : readings_of(numbers[1])) {
            for (const Bitboard black_king : readings_of(numbers[2])) {
                const Pattern box = {{white_king, pawn, black_king}};
                const bool is_empty = std::ranges::find(box.squares, Bitboard{0}) != box.squares.end();
                if (!is_empty && lies_within(box, positions)) boxes.push_back(box);
            }
        }
    }
    return boxes;
}

/// Removes the positions of lines with a single reading, and those lines; false if they overlap.
bool settle(std::vector<Readings>& lines, Positions& left) {
    for (const Readings& readings : lines) {
        if (readings.size() != 1) continue;
        if (!lies_within(readings.front(), left)) return false;
        take_out(left, readings.front());
    }
    std::erase_if(lines, [](const Readings& readings) { return readings.size() == 1; });
    return true;
}

/// Whether a reading of each line can be chosen so that together they contain each remaining position exactly once.
/// Unique readings are settled first, then alternatives are tried.
bool can_cover(std::vector<Readings> lines, Positions left) {
    for (std::size_t before = 0; before != lines.size();) {
        before = lines.size();
        if (!settle(lines, left)) return false;
        for (Readings& readings : lines) {
            std::erase_if(readings, [&](const Pattern& box) { return !lies_within(box, left); });
        }
    }
    if (lines.empty()) return left.none();
    const Readings doubtful = lines.back();
    return std::ranges::any_of(doubtful, [&](const Pattern& box) {
        lines.back() = {box};
        return can_cover(lines, left);
    });
}

bool complain(const char* file_name, std::size_t line, const char* text) {
    std::printf("%s, line %zu: %s\n", file_name, line, text);
    return false;
}

}  // namespace

bool covers_exactly(const char* file_name, std::span<const Pattern> drawn) {
    Positions positions;
    for (const Pattern& position : drawn) {
        all_positions(position, [&](std::size_t index) { return positions.set(index), true; });
    }
    std::ifstream file(file_name);
    if (!file) {
        std::printf("can't open %s\n", file_name);
        return false;
    }
    std::size_t count = 0;
    std::string side;
    if (!(file >> count >> side) || side != "w") return complain(file_name, 1, "neither a number of boxes nor a side");

    std::vector<Readings> lines;
    std::string numbers[field_count], result;
    while (file >> numbers[0] >> numbers[1] >> numbers[2] >> result) {
        lines.push_back(boxes_of(numbers, positions));
        if (result != "0") return complain(file_name, lines.size() + 1, "another result than 0");
        if (lines.back().empty()) return complain(file_name, lines.size() + 1, "no box of the positions");
    }
    if (lines.size() != count)
        return complain(file_name, lines.size() + 1, "here the boxes end, and that isn't their number");
    const bool is_exact = can_cover(lines, positions);
    std::printf("%s: %zu boxes %s exactly the %zu positions, each once\n", file_name, count,
                is_exact ? "hold" : "don't hold", positions.count());
    return is_exact;
}

}  // namespace varn
