// What every node of the tree begins with.
#pragma once

#include "search/record.h"

namespace varn {

/// Whether the search may go on. Reads the time once in 16384 nodes only.
inline bool clock_ok(Search& s) {
    constexpr std::uint32_t clock_interval_mask = 0x3fff;
    if (!is_running(s.clock)) return false;
    return (s.nodes & clock_interval_mask) != 0 || clock_ok_now(s.clock);
}

}  // namespace varn
