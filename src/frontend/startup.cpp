#include "frontend/startup.h"

#include <chrono>
#include <cstdlib>
#include <new>

#include "board/output.h"
#include "board/zobrist.h"
#include "frontend/book.h"
#include "frontend/configuration.h"
#include "frontend/take_back.h"
#include "search/settings.h"
#include "search/think.h"

namespace varn {

namespace {

/// On whichever thread: nothing is left unwritten that the process had said or logged.
[[noreturn]] void end_without_memory() {
    say_text("error: out of memory.\n");
    std::_Exit(1);
}

}  // namespace

void build_tables() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    draw_hash_numbers(static_cast<std::uint64_t>(std::chrono::nanoseconds(now).count()));
    install_reset_hooks();
    load_book();
    book_hook = book_move;
}

std::unique_ptr<Game> start_up() {
    std::set_new_handler(end_without_memory);
    read_configuration();
    build_tables();
    auto game = new_game(true);
    set_base_position(*game);
    return game;
}

}  // namespace varn
