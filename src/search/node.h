// What every node of the tree begins with.
#pragma once

#include "search/record.h"

namespace varn {

/// Stops the search where its nodes or its time are used up; returns whether it may go on.
bool look_at_limits(Search& s);

/// Whether the search may go on. The limits are looked at as often as the interval says.
inline bool clock_ok(Search& s) {
    if (!is_running(s.clock)) return false;
    return (s.nodes & s.clock_interval_mask) != 0 || look_at_limits(s);
}

/// Counts a node and returns whether it may be searched. Nodes that a stopped search still comes to aren't counted, so
/// that a limit on nodes is exact.
inline bool enter_node(Search& s) {
    if (!is_running(s.clock)) return false;
    ++s.nodes;
    return (s.nodes & s.clock_interval_mask) != 0 || look_at_limits(s);
}

}  // namespace varn
