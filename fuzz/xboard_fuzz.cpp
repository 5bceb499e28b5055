// The lines of the protocol, as fast as they come, with searches on the second thread in between.
#include <optional>

#include "board/game.h"
#include "frame.h"
#include "xboard/pondering.h"
#include "frontend/take_back.h"
#include "xboard/xboard.h"
#include "search/clock.h"
#include "search/settings.h"

namespace {

std::optional<varn::Protocol> protocol;

}  // namespace

void run_input(std::string_view input) {
    constexpr int short_search_ms = 1;
    auto game = varn::new_game(false);
    varn::set_base_position(*game);
    protocol = varn::start_protocol(std::move(game));
    varn::time_limit_ms = short_search_ms;
    varn::run_to_exit(
        [](std::string_view lines) {
            while (!lines.empty()) {
                const std::string_view line = lines.substr(0, lines.find('\n') + 1);
                const std::string_view taken = line.empty() ? lines : line;
                // A search on this thread must be short; the one on the other thread has the time that it has.
                if (!varn::is_pondering()) varn::time_limit_ms = short_search_ms;
                if (!taken.starts_with("time ")) varn::xboard_step(*protocol, taken);
                lines.remove_prefix(taken.size());
            }
        },
        input);
    varn::stop_pondering();
    protocol.reset();
}
