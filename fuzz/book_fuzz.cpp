// The book's file: whatever it holds, the book gives legal moves or none.
#include <cstdlib>

#include "board/legality.h"
#include "board/make.h"
#include "frame.h"
#include "frontend/book.h"

void run_input(std::string_view input) {
    varn::write_file("book.dat", input);
    varn::load_book();
    const auto game = varn::new_game();
    varn::RandomSource random(input.size());
    while (const auto move = varn::book_move(*game, random)) {
        if (!varn::is_valid_move(*game, *move)) std::abort();
        varn::play_move(*game, *move);
    }
}
