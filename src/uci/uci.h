// The front end that speaks the Universal Chess Interface on standard input and output. The main thread reads and
// answers at once, whatever the search thread is at.
#pragma once

#include <memory>
#include <string_view>

#include "eval/evaluate.h"
#include "frontend/book.h"
#include "uci/go.h"
#include "uci/options.h"

namespace varn {

/// What the front end keeps between lines. The search belongs to the search thread while that is at work.
struct Uci {
    std::unique_ptr<Search> search = new_search();
    bool tables_are_real = false;
    Options options = standard_options();
    Book book;
    bool debug = false;
    std::unique_ptr<Game> game = new_game();
    int first_move_number = 1;  // of the position that the game began with
    int plies_played = 0;
    bool from_start = true;  // it began with the starting position: the book may know it
    EvalContext eval;        // of `eval`
    GoJob job;
};

/// Allocates the tables; false where there isn't memory enough.
bool start_uci(Uci& uci);

/// Carries out a line, with or without its newline; returns whether the front end goes on.
bool uci_step(Uci& uci, std::string_view line);

/// Reads and carries out lines until `quit` or the end of the input.
void uci_loop(Uci& uci);

}  // namespace varn
