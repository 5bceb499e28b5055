#include "patterns/pattern_list.h"

#include <algorithm>
#include <bit>
#include <numeric>

namespace varn {

namespace {

constexpr Field all_fields[] = {white_king_field, white_pawn_field, black_king_field};

// --- Groups --------------------------------------------------------------------------------------------------------

/// The two fields that identify a group.
constexpr Field one_key(Field left_out) { return left_out == white_king_field ? white_pawn_field : white_king_field; }
constexpr Field other_key(Field left_out) { return left_out == black_king_field ? white_pawn_field : black_king_field; }

bool same_group(const Pattern& a, const Pattern& b, Field left_out) {
    return a.squares[one_key(left_out)] == b.squares[one_key(left_out)] &&
           a.squares[other_key(left_out)] == b.squares[other_key(left_out)];
}

GroupPlace& bucket_of(GroupIndex& index, const Pattern& pattern, Field left_out) {
    const std::uint64_t mixed = (pattern.squares[one_key(left_out)] * 0x9E3779B97F4A7C15ULL) ^
                                std::rotl(pattern.squares[other_key(left_out)] * 0xC2B2AE3D27D4EB4FULL, 32);
    return index.buckets[mixed * 0xD6E8FEB86659FD93ULL >> (64 - std::countr_zero(index.buckets.size()))];
}

GroupPlace new_group(GroupIndex& index, GroupPlace& bucket) {
    GroupPlace group = index.first_free;
    if (group == no_place) {
        group = static_cast<GroupPlace>(index.groups.size());
        index.groups.emplace_back();
    } else {
        index.first_free = index.groups[group].next;
    }
    index.groups[group] = {no_place, no_place, bucket};
    bucket = group;
    return group;
}

/// `bucket` is the hash bucket of the group.
void free_group(GroupIndex& index, GroupPlace group, GroupPlace& bucket) {
    GroupPlace* link = &bucket;
    while (*link != group) link = &index.groups[*link].next;
    *link = index.groups[group].next;
    index.groups[group] = {no_place, no_place, index.first_free};
    index.first_free = group;
}

/// The group of boxes that equal the pattern in the other two fields; a new empty one if there is none.
GroupPlace find_group(PatternList& list, const Pattern& pattern, Field left_out) {
    GroupIndex& index = list.indexes[left_out];
    GroupPlace& bucket = bucket_of(index, pattern, left_out);
    for (GroupPlace group = bucket; group != no_place; group = index.groups[group].next) {
        if (same_group(list.boxes[index.groups[group].first].pattern, pattern, left_out)) return group;
    }
    return new_group(index, bucket);
}

// --- Links ---------------------------------------------------------------------------------------------------------

BoxPlace& link_from(PatternList& list, BoxPlace previous, Group& group, Field left_out) {
    return previous == no_place ? group.first : list.boxes[previous].next[left_out];
}
BoxPlace& link_back_to(PatternList& list, BoxPlace next, Group& group, Field left_out) {
    return next == no_place ? group.last : list.boxes[next].previous[left_out];
}

/// Links the box's neighbours in a group to `place`.
void point_neighbours(PatternList& list, const Box& box, Group& group, Field left_out, BoxPlace place) {
    link_from(list, box.previous[left_out], group, left_out) = place;
    link_back_to(list, box.next[left_out], group, left_out) = place;
}

/// Inserts the box into its group after `previous`.
void insert(PatternList& list, BoxPlace place, BoxPlace previous, Group& group, Field left_out) {
    Box& box = list.boxes[place];
    box.previous[left_out] = previous;
    box.next[left_out] = link_from(list, previous, group, left_out);
    point_neighbours(list, box, group, left_out, place);
}

/// Unlinks the box from its group, which may become empty.
void take_out(PatternList& list, BoxPlace place, Group& group, Field left_out) {
    const Box& box = list.boxes[place];
    link_from(list, box.previous[left_out], group, left_out) = box.next[left_out];
    link_back_to(list, box.next[left_out], group, left_out) = box.previous[left_out];
}

/// Removes the box from its group; its squares must still be those of the group.
void leave_group(PatternList& list, BoxPlace place, Field left_out) {
    GroupIndex& index = list.indexes[left_out];
    const Box& box = list.boxes[place];
    const GroupPlace group = box.group[left_out];
    take_out(list, place, index.groups[group], left_out);
    if (index.groups[group].first == no_place) free_group(index, group, bucket_of(index, box.pattern, left_out));
}

/// Adds the box to the group of its squares, ordered by stamp.
void join_group(PatternList& list, BoxPlace place, Field left_out) {
    const GroupPlace found = find_group(list, list.boxes[place].pattern, left_out);
    list.boxes[place].group[left_out] = found;
    Group& group = list.indexes[left_out].groups[found];
    BoxPlace previous = group.last;
    while (previous != no_place && list.stamps[previous] > list.stamps[place]) {
        previous = list.boxes[previous].previous[left_out];
    }
    insert(list, place, previous, group, left_out);
}

// --- Boxes ---------------------------------------------------------------------------------------------------------

/// Moves the box to the end of the list and of its groups.
inline void move_to_end(PatternList& list, BoxPlace place) {
    list.stamps[place] = list.next_stamp++;
    for (const Field field : all_fields) {
        const Box& box = list.boxes[place];
        if (box.next[field] == no_place) continue;
        Group& group = list.indexes[field].groups[box.group[field]];
        take_out(list, place, group, field);
        insert(list, place, group.last, group, field);
    }
}

void append(PatternList& list, const Pattern& pattern) {
    const BoxPlace place = list.count();
    list.boxes.push_back({pattern, {}, {}, {}});
    list.stamps.push_back(list.next_stamp++);
    for (const Field field : all_fields) join_group(list, place, field);
}

/// Removes a box; the last one in memory moves to its place.
void remove(PatternList& list, BoxPlace place) {
    for (const Field field : all_fields) leave_group(list, place, field);
    const BoxPlace last = list.count() - 1;
    if (place != last) {
        const Box& moved = list.boxes[last];
        for (const Field field : all_fields) {
            point_neighbours(list, moved, list.indexes[field].groups[moved.group[field]], field, place);
        }
        list.boxes[place] = moved;
        list.stamps[place] = list.stamps[last];
    }
    list.boxes.pop_back();
    list.stamps.pop_back();
}

/// Sets the squares of one field and updates the groups that depend on it.
void set_squares(PatternList& list, BoxPlace place, Field field, Bitboard squares) {
    for (const Field left_out : all_fields) {
        if (left_out != field) leave_group(list, place, left_out);
    }
    list.boxes[place].pattern.squares[field] = squares;
    for (const Field left_out : all_fields) {
        if (left_out != field) join_group(list, place, left_out);
    }
}

void unite(PatternList& list, BoxPlace kept, BoxPlace removed, Field field) {
    move_to_end(list, kept);
    set_squares(list, kept, field,
                list.boxes[kept].pattern.squares[field] | list.boxes[removed].pattern.squares[field]);
    remove(list, removed);
}

/// Some of the squares, but never all of them.
Bitboard choose_squares(Bitboard squares, Choices& choices) {
    const std::uint32_t chance = 2 + choices.below(2);
    Bitboard chosen = 0;
    int left = popcount(squares) - 1;
    while (left > 0 && squares != 0) {
        const int square = pop_first(squares);
        if (choices.below(chance) != 0) continue;
        chosen |= bit_mask(square);
        --left;
    }
    return chosen;
}

}  // namespace

PatternList::PatternList(std::span<const Pattern> patterns, std::uint64_t room) : capacity(room) {
    boxes.reserve(patterns.size());
    stamps.reserve(patterns.size());
    for (GroupIndex& index : indexes) index.buckets.assign(std::bit_ceil(patterns.size() + 2), no_place);
    for (const Pattern& pattern : patterns) append(*this, pattern);
}

std::vector<Pattern> in_order(const PatternList& list) {
    std::vector<BoxPlace> places(list.count());
    std::iota(places.begin(), places.end(), BoxPlace{0});
    std::ranges::sort(places, {}, [&](BoxPlace place) { return list.stamps[place]; });
    std::vector<Pattern> patterns;
    patterns.reserve(places.size());
    for (const BoxPlace place : places) patterns.push_back(list.boxes[place].pattern);
    return patterns;
}

void merge_patterns(PatternList& list, BoxPlace place, Field left_out, Choices& choices) {
    const std::uint32_t chance = 2 + choices.below(3);
    const Box& box = list.boxes[place];
    const bool is_first = box.previous[left_out] == no_place;
    BoxPlace taken = no_place;
    for (BoxPlace candidate = is_first ? place : list.indexes[left_out].groups[box.group[left_out]].first;
         candidate != no_place; candidate = list.boxes[candidate].next[left_out]) {
        if (choices.below(chance) != 0) continue;
        if (taken != no_place) return unite(list, taken, candidate, left_out);
        taken = candidate;
    }
    if (taken != no_place) move_to_end(list, taken);
}

void split_pattern(PatternList& list, BoxPlace place, Field field, Choices& choices) {
    const Pattern whole = list.boxes[place].pattern;
    const Bitboard kept = choose_squares(whole.squares[field], choices);
    if (kept == 0 || list.count() == list.capacity) return;
    set_squares(list, place, field, kept);
    Pattern rest = whole;
    rest.squares[field] &= ~kept;
    append(list, rest);
}

}  // namespace varn
