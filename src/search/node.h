// Node entry: counts nodes and checks the limits.
#pragma once

#include "search/record.h"

namespace varn {

/// Stops the search if its node or time limit is reached. Returns whether it may continue.
bool check_limits(Search& s);

/// Whether the search may continue. The limits are checked only every so many nodes: see `clock_interval_mask`.
inline bool clock_ok(Search& s) {
    if (!is_running(s.clock)) return false;
    return (s.nodes & s.clock_interval_mask) != 0 || check_limits(s);
}

/// Counts a node and returns whether to search it. After a stop nodes are no longer counted, so that a node limit is
/// exact.
inline bool enter_node(Search& s) {
    if (!is_running(s.clock)) return false;
    ++s.nodes;
    return (s.nodes & s.clock_interval_mask) != 0 || check_limits(s);
}

}  // namespace varn
