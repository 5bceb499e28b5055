// The book's file: whatever it holds, the book gives legal moves or none.
#include <cstdlib>

#include "board/legality.h"
#include "board/make.h"
#include "frame.h"
#include "frontend/book.h"
#include "search/settings.h"

void run_input(std::string_view input) {
    varn::write_file("book.dat", input);
    varn::load_book();
    auto game = varn::new_game(false);
    varn::book_enabled = 1;
    while (const auto move = varn::book_move(game.get())) {
        if (!varn::is_valid_move(game.get(), *move)) std::abort();
        varn::play_move(*move, game.get());
    }
    if (varn::book_enabled != 0) std::abort();
}
