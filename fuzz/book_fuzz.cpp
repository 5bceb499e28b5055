// Book files: whatever the file contains, the book gives legal moves or none.
#include <cstdlib>

#include "board/legality.h"
#include "board/make.h"
#include "frame.h"
#include "frontend/book.h"

void run_input(std::string_view input) {
    varn::write_file("book.dat", input);
    varn::Book book;
    varn::load_book(book, "book.dat", input.size());
    const auto game = varn::new_game();
    while (const auto move = varn::book_move(book, *game)) {
        if (!varn::is_valid_move(*game, *move)) std::abort();
        varn::play_move(*game, *move);
    }
}
