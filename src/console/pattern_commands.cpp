#include "console/pattern_commands.h"

#include "base/output.h"
#include "patterns/kpk_placements.h"

namespace varn {

void print_placements(Console& console, const CommandLine&) {
    print_kpk_script(*console.engine.game);
    start_from_read_position(console.engine);
}

void anneal_placements(Console& console, const CommandLine&) {
    Engine& engine = console.engine;
    bool was_read = false;
    anneal_kpk(console.patterns, *engine.game, [&](const PositionRemarks& remarks) {
        print_remarks(remarks);
        was_read = true;
    });
    if (!console.patterns.is_written) say_text("the patterns are kept: kpkbb tries again to write them.\n");
    // If no position was read the game is unchanged and moves can still be taken back.
    if (was_read) start_from_read_position(engine);
}

}  // namespace varn
