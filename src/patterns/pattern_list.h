// A list of boxes that covers a set of positions, and the two moves that reshape it without changing that set: a merge
// of two boxes and a split of one.
//
// The order of the list is given by stamps: the list is sorted by ascending stamp, and a box that moves to the end gets
// the next stamp. In memory the boxes are stored in arbitrary order, so that one can be picked at random.
//
// A merge needs the boxes that are equal in two of their three fields. For each field left out, the boxes equal in the
// other two form a group, a linked list by ascending stamp. Boxes know their groups, which are looked up only when
// squares change.
#pragma once

#include <span>
#include <vector>

#include "patterns/chance.h"
#include "patterns/pattern.h"

namespace varn {

/// Index of a box or group. A box keeps its place until boxes are merged.
using BoxPlace = std::uint32_t;
using GroupPlace = std::uint32_t;
inline constexpr std::uint32_t no_place = ~std::uint32_t{0};

/// A box and its links in its groups, by the field that the group leaves out.
struct alignas(64) Box {
    Pattern pattern;
    Table<BoxPlace, field_count> previous;
    Table<BoxPlace, field_count> next;
    Table<GroupPlace, field_count> group;
};
static_assert(sizeof(Box) == 64);

/// A free group has `first` equal to `no_place`.
struct Group {
    BoxPlace first;
    BoxPlace last;
    GroupPlace next;  // next in the bucket, or next free group
};

/// Hash index of the groups that leave out one field, keyed by the other two.
struct GroupIndex {
    std::vector<Group> groups;
    GroupPlace first_free = no_place;
    std::vector<GroupPlace> buckets;
};

struct PatternList {
    /// Takes the boxes in order. `capacity` is the maximum number of boxes, at least their current number.
    PatternList(std::span<const Pattern> patterns, std::uint64_t capacity);

    std::uint32_t count() const { return static_cast<std::uint32_t>(boxes.size()); }

    std::uint64_t capacity;
    std::int32_t side = 0;    // 0: the positions have white to move
    std::int32_t result = 0;  // shared by all positions
    std::vector<Box> boxes;
    std::vector<std::uint64_t> stamps;  // by box place
    std::uint64_t next_stamp = 0;
    Table<GroupIndex, field_count> indexes;  // by the field left out
};

/// The boxes in list order.
std::vector<Pattern> in_order(const PatternList& list);

/// Goes through the group of the box at `place`, in list order, and selects each box with a probability of 1/2, 1/3 or
/// 1/4 (drawn first), at most two. Two selected boxes are merged, with both sets of squares in the field left out, and
/// moved to the end of the list. A single selected box moves there.
void merge_patterns(PatternList& list, BoxPlace place, Field left_out, Choices& choices);

/// Selects squares of one field, lowest first, each with a probability of 1/2 or 1/3 (drawn first), but never all. The
/// box keeps these; a new box with the rest is appended. Does nothing if none was selected, if the field has one
/// square, or if the list is full.
void split_pattern(PatternList& list, BoxPlace place, Field field, Choices& choices);

}  // namespace varn
