#include "frontend/startup.h"

#include <chrono>
#include <cstdlib>
#include <new>

#include "base/output.h"
#include "board/zobrist.h"
#include "frontend/book.h"

namespace varn {

namespace {

/// On whichever thread: nothing is left unwritten that the process had said or logged.
[[noreturn]] void end_without_memory() {
    say_text("error: out of memory.\n");
    std::_Exit(1);
}

std::uint64_t clock_seed() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::nanoseconds(now).count());
}

}  // namespace

void set_up_process() {
    std::set_new_handler(end_without_memory);
    set_up_output();
    draw_hash_numbers(clock_seed());
}

std::unique_ptr<Engine> start_up() {
    auto engine = std::make_unique<Engine>();
    const auto configuration = read_configuration();
    if (!configuration) {
        say_text("error:  varn.ini cannot be found.\n");
        std::exit(1);
    }
    engine->configuration = *configuration;
    engine->book_random = RandomSource(clock_seed());
    load_book();
    allocate_tables(*engine);
    start_game(*engine);
    return engine;
}

}  // namespace varn
