#include "search/node.h"

namespace varn {

bool check_limits(Search& s) {
    if (s.nodes >= s.nodes_allowed) {
        stop_clock(s.clock);
        return false;
    }
    return (s.nodes & s.time_interval_mask) != 0 || clock_ok_now(s.clock);
}

}  // namespace varn
