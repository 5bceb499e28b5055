#include "frontend/startup.h"

#include <chrono>
#include <cstdlib>
#include <new>

#include "base/output.h"
#include "board/zobrist.h"

namespace varn {

namespace {

/// May run on any thread; flushes all output first.
[[noreturn]] void exit_out_of_memory() {
    say_text("error: out of memory.\n");
    std::_Exit(1);
}

constexpr const char* book_file_name = "book.dat";

}  // namespace

std::uint64_t clock_seed() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::nanoseconds(now).count());
}

void set_up_process() {
    std::set_new_handler(exit_out_of_memory);
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
    if (load_book(engine->book, book_file_name, clock_seed()) == BookFault::too_long) {
        say("%s has more than %d rows: the rest is left out.\n", book_file_name, book_capacity);
    }
    allocate_tables(*engine);
    start_game(*engine);
    return engine;
}

}  // namespace varn
