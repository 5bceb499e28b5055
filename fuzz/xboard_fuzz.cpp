// xboard input, sent without pauses while searches run on the second thread.
#include <optional>

#include "frame.h"
#include "xboard/xboard.h"

namespace {

std::optional<varn::Protocol> protocol;

}  // namespace

void run_input(std::string_view input) {
    varn::Engine& engine = varn::fresh_engine();
    protocol.emplace(engine);
    varn::run_to_exit(
        [](std::string_view lines) {
            constexpr int short_search_ms = 1;
            auto& time_limit_ms = protocol->engine.search->clock.time_limit_ms;
            time_limit_ms = short_search_ms;
            while (!lines.empty()) {
                const std::string_view line = lines.substr(0, lines.find('\n') + 1);
                const std::string_view taken = line.empty() ? lines : line;
                // Searches on this thread must be short; a pondering search keeps its limit.
                if (!varn::is_pondering(protocol->pondering)) time_limit_ms = short_search_ms;
                if (!taken.starts_with("time ")) varn::xboard_step(*protocol, taken);
                lines.remove_prefix(taken.size());
            }
        },
        input);
    varn::stop_pondering(protocol->pondering, engine);
    protocol.reset();
}
