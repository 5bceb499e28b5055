// Builders of the large geometric tables, evaluated at compile time.
#include "board/geometry.h"

#include <initializer_list>

namespace varn {

namespace {

struct Step {
    int ranks;
    int files;
};

constexpr Table<Step, direction_count> direction_steps = {
    {{0, 0}, {1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, 1}, {1, -1}, {-1, 1}, {-1, -1}}};

/// A family of parallel lines: its bit order and one of the two steps along it.
struct LineFamily {
    const PerSquare<std::uint8_t>* map;
    Step along;
};

constexpr auto plain_map = per_square<std::uint8_t>([](int sq) { return sq; });
constexpr LineFamily rank_family = {&plain_map, {0, 1}};
constexpr LineFamily file_family = {&r90_map, {1, 0}};
constexpr LineFamily r45f_family = {&r45f_map, {1, -1}};
constexpr LineFamily r45b_family = {&r45b_map, {1, 1}};

constexpr Step reversed(Step s) { return {-s.ranks, -s.files}; }

/// The line through a square: its first bit on the family's board, and its length.
struct Line {
    int first_bit;
    int length;
};

constexpr Line line_through(const LineFamily& family, int square) {
    Line line = {(*family.map)[square], 1};
    for (const Step along : {family.along, reversed(family.along)}) {
        for (Bitboard next = step(square, along.ranks, along.files); next != 0;
             next = step(first_one(next), along.ranks, along.files)) {
            const int bit = (*family.map)[first_one(next)];
            line.first_bit = bit < line.first_bit ? bit : line.first_bit;
            ++line.length;
        }
    }
    return line;
}

constexpr PerSquare<LineIndex> line_indices(const LineFamily& family) {
    PerSquare<LineIndex> indices{};
    for (int sq = 0; sq < square_count; ++sq) {
        const Line line = line_through(family, sq);
        // A line of one or two squares has no inner squares: its mask is 0, and any valid shift will do.
        const bool has_inner_squares = line.length > 2;
        indices[sq] = {
            static_cast<std::uint8_t>(has_inner_squares ? line.first_bit + 1 : 0),
            static_cast<std::uint8_t>(has_inner_squares ? (1 << (line.length - 2)) - 1 : 0),
        };
    }
    return indices;
}

constexpr LineAttacks line_attacks(const LineFamily& family) {
    LineAttacks attacks{};
    for (int sq = 0; sq < square_count; ++sq) {
        const Line line = line_through(family, sq);
        const int patterns = line.length > 2 ? 1 << (line.length - 2) : 1;
        for (int pattern = 0; pattern < patterns; ++pattern) {
            const Bitboard occupied_line = static_cast<Bitboard>(pattern) << 1;
            Bitboard reached = 0;
            for (const Step along : {family.along, reversed(family.along)}) {
                Bitboard next = step(sq, along.ranks, along.files);
                while (next != 0) {
                    reached |= next;
                    const int target = first_one(next);
                    if ((occupied_line >> ((*family.map)[target] - line.first_bit) & 1) != 0) break;
                    next = step(target, along.ranks, along.files);
                }
            }
            attacks[sq][pattern] = reached;
        }
    }
    return attacks;
}

constexpr Table<PerSquare<Bitboard>, direction_count> build_rays() {
    Table<PerSquare<Bitboard>, direction_count> built{};
    for (int direction = north; direction <= south_east; ++direction) {
        const Step along = direction_steps[direction];
        for (int sq = 0; sq < square_count; ++sq) {
            for (Bitboard next = step(sq, along.ranks, along.files); next != 0;
                 next = step(first_one(next), along.ranks, along.files)) {
                built[direction][sq] |= next;
            }
        }
    }
    return built;
}

constexpr PerSquare<PerSquare<Direction>> build_directions() {
    const auto ray_table = build_rays();
    PerSquare<PerSquare<Direction>> built{};
    for (int direction = north; direction <= south_east; ++direction) {
        for (int sq = 0; sq < square_count; ++sq) {
            Bitboard ray = ray_table[direction][sq];
            while (ray != 0) built[sq][pop_first(ray)] = static_cast<Direction>(direction);
        }
    }
    return built;
}

constexpr PerSquare<Bitboard> union_of_rays(Direction first, Direction last) {
    const auto ray_table = build_rays();
    PerSquare<Bitboard> lines{};
    for (int direction = first; direction <= last; ++direction) {
        for (int sq = 0; sq < square_count; ++sq) lines[sq] |= ray_table[direction][sq];
    }
    return lines;
}

}  // namespace

constinit const PerSquare<LineIndex> rank_line = line_indices(rank_family);
constinit const PerSquare<LineIndex> file_line = line_indices(file_family);
constinit const PerSquare<LineIndex> r45f_line = line_indices(r45f_family);
constinit const PerSquare<LineIndex> r45b_line = line_indices(r45b_family);

constinit const LineAttacks rank_attacks = line_attacks(rank_family);
constinit const LineAttacks file_attacks = line_attacks(file_family);
constinit const LineAttacks r45f_attacks = line_attacks(r45f_family);
constinit const LineAttacks r45b_attacks = line_attacks(r45b_family);

constinit const Table<PerSquare<Bitboard>, direction_count> rays = build_rays();
constinit const PerSquare<Bitboard> straight_lines = union_of_rays(north, east);
constinit const PerSquare<Bitboard> diagonal_lines = union_of_rays(north_west, south_east);
constinit const PerSquare<PerSquare<Direction>> direction_table = build_directions();

}  // namespace varn
