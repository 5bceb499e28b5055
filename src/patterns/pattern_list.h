// A list of boxes that covers a set of positions, and the two moves that reshape it without changing that set: two
// boxes become one, one box becomes two.
//
// The order of the list matters to the moves, but it isn't kept by place: a box carries a stamp, and the list is the
// boxes by rising stamp. What moves to the end of the list gets the next stamp. In memory the boxes lie side by side in
// any order, so that one of them is picked at random by its place.
//
// A merge looks for the boxes that are equal in two of their three fields. For each field to leave out, the boxes equal
// in the other two form a group, which is a linked list by rising stamp. A box knows its groups: they are looked up
// only when its squares change.
#pragma once

#include <span>
#include <vector>

#include "patterns/chance.h"
#include "patterns/pattern.h"

namespace varn {

/// The place of a box, or of a group, in memory. A place stays with its box until boxes are merged.
using BoxPlace = std::uint32_t;
using GroupPlace = std::uint32_t;
inline constexpr std::uint32_t no_place = ~std::uint32_t{0};

/// A box and its place in the groups, each by the field that the group leaves out.
struct alignas(64) Box {
    Pattern pattern;
    Table<BoxPlace, field_count> previous;
    Table<BoxPlace, field_count> next;
    Table<GroupPlace, field_count> group;
};
static_assert(sizeof(Box) == 64);

/// A free group has a `first` of `no_place`.
struct Group {
    BoxPlace first;
    BoxPlace last;
    GroupPlace next;  // in the same bucket, or the next free one
};

/// The groups that leave out one field, found by the other two.
struct GroupIndex {
    std::vector<Group> groups;
    GroupPlace first_free = no_place;
    std::vector<GroupPlace> buckets;
};

struct PatternList {
    /// The boxes in the order given; there is never room for more than `capacity`, which is at least their number.
    PatternList(std::span<const Pattern> patterns, std::uint64_t capacity);

    std::uint32_t count() const { return static_cast<std::uint32_t>(boxes.size()); }

    std::uint64_t capacity;
    std::int32_t side = 0;    // 0: the positions have white to move
    std::int32_t result = 0;  // shared by all positions
    std::vector<Box> boxes;
    std::vector<std::uint64_t> stamps;  // by the place of the box
    std::uint64_t next_stamp = 0;
    Table<GroupIndex, field_count> indexes;  // by the field left out
};

/// The boxes in the order of the list.
std::vector<Pattern> in_order(const PatternList& list);

/// Looks at the boxes that equal the one at `place` in all fields but one, itself among them, in the order of the list,
/// and takes each with a chance of one in 2, 3 or 4, which is chosen first, but two at most. Two boxes taken become
/// one, with the squares of both in the field left out; it stands at the end of the list. A box taken alone moves
/// there.
void merge_patterns(PatternList& list, BoxPlace place, Field left_out, Choices& choices);

/// Chooses squares of one field, the lowest first, each with a chance of one in 2 or 3, which is chosen first, and
/// never all of them. The box keeps these, and one with the rest is appended. Nothing changes where none was chosen, as
/// in a field with one square, or where the list has no room.
void split_pattern(PatternList& list, BoxPlace place, Field field, Choices& choices);

}  // namespace varn
