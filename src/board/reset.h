// The one seam through which the board sets something off in higher rooms: what else starts afresh when a game or a
// position does. The search fills it in at start-up; until then every hook does nothing.
#pragma once

namespace varn {

enum class KeepTables : bool { no, yes };

struct ResetHooks {
    void (*allocate_tables)();              // the hash tables come into being at the configured sizes
    void (*game_started)();                 // a game stands at the starting position: clear what a search remembers
    void (*position_set)(KeepTables keep);  // a position was set from text: the book is off, and what a search
                                            // remembers is cleared unless `keep` is yes
};

extern ResetHooks reset_hooks;

}  // namespace varn
