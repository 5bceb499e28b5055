#include "frontend/pattern_commands.h"

#include "board/output.h"
#include "frontend/take_back.h"
#include "patterns/anneal.h"
#include "patterns/kpk_placements.h"

namespace varn {

void print_placements(Console& console, const CommandLine&) {
    print_kpk_script(console.game.get());
    set_base_position(*console.game);
}

void anneal_placements(Console& console, const CommandLine&) {
    const Game before = *console.game;
    anneal_kpk(console.game.get());
    if (patterns_are_unwritten()) say_text("the patterns are kept: kpkbb tries again to write them.\n");
    // Where no position was read the game goes on, and can be taken back as before.
    if (*console.game != before) set_base_position(*console.game);
}

}  // namespace varn
