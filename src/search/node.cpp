#include "search/node.h"

namespace varn {

bool look_at_limits(Search& s) {
    if (s.nodes >= s.nodes_allowed) {
        stop_clock(s.clock);
        return false;
    }
    return (s.nodes & usual_clock_interval) != 0 || clock_ok_now(s.clock);
}

}  // namespace varn
