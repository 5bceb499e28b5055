#include "frontend/startup.h"

#include <chrono>

#include "board/zobrist.h"
#include "frontend/book.h"
#include "frontend/configuration.h"
#include "frontend/take_back.h"
#include "search/settings.h"
#include "search/think.h"

namespace varn {

void build_tables() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    draw_hash_numbers(static_cast<std::uint64_t>(std::chrono::nanoseconds(now).count()));
    install_reset_hooks();
    load_book();
    book_hook = book_move;
}

std::unique_ptr<Game> start_up() {
    read_configuration();
    build_tables();
    auto game = new_game(true);
    set_base_position(*game);
    return game;
}

}  // namespace varn
