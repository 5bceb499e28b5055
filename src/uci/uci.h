// The UCI front end. The main thread reads and executes commands at once, even while the search thread runs.
#pragma once

#include <memory>
#include <string_view>

#include "eval/evaluate.h"
#include "frontend/book.h"
#include "uci/go.h"
#include "uci/options.h"

namespace varn {

/// State of the front end. The search belongs to the search thread while that is running.
struct Uci {
    std::unique_ptr<Search> search = new_search();
    Options options = standard_options();
    Book book;
    bool debug = false;
    std::unique_ptr<Game> game = new_game();
    int first_move_number = 1;  // move number of the base position
    int plies_played = 0;
    bool from_start = true;  // the game began in the starting position: book moves apply
    EvalContext eval;        // used by `eval`
    GoJob job;
};

/// Allocates the tables; returns false if memory is short.
bool start_uci(Uci& uci);

/// Executes a line, with or without its newline. Returns false on `quit`.
bool uci_step(Uci& uci, std::string_view line);

/// Executes lines until `quit` or the end of input.
void uci_loop(Uci& uci);

}  // namespace varn
