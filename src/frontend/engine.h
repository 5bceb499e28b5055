// The engine as driven by a front end: search, book and the current game.
#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "board/position.h"
#include "frontend/book.h"
#include "frontend/configuration.h"
#include "search/think.h"

namespace varn {

struct Engine {
    Configuration configuration;
    std::unique_ptr<Search> search = new_search();
    std::int32_t ply_limit = deepest_iteration;  // depth limit set by the user

    Book book;
    bool book_enabled = false;  // try the opening book before searching

    std::unique_ptr<Game> game;
    // Moves are taken back by replaying the game from here.
    Game base_position;       // the starting position, or one set from text
    std::vector<int> passes;  // numbers of moves played before each pass, ascending
};

/// Allocates the search tables in the configured sizes. If memory is short the process ends with a message and status
/// 1.
void allocate_tables(Engine& engine);

/// Starts a new game from the starting position and clears the search tables; the book setting is kept.
void start_game(Engine& engine);

/// Sets the position from text, clears the search tables and switches the book off. Prints what is wrong with the text;
/// an invalid character in the board field ends the process with status 1.
void set_game_position(Engine& engine, std::string_view text);

/// Makes the position read into the game its base position. The book is switched off and the search tables are cleared,
/// since they might contain the same keys.
void start_from_read_position(Engine& engine);

/// Passes the turn without a move. Changes `zobrist_key` but not the lock.
void pass_turn(Engine& engine);

/// Replays the game from its base position without its last `taken_back` moves and any passes after the remaining ones;
/// without all moves if there are fewer. Clears the search tables as for a new game.
void take_back_moves(Engine& engine, int taken_back);

/// The engine's move: from the book, or from a search that reports to the listener. None if there is no legal move. If
/// the book has no move it is switched off.
std::optional<Move> choose_move(Engine& engine, const Game& game, const SearchListener& listener);

/// Prints the remarks; an invalid piece ends the process with status 1.
void print_remarks(const PositionRemarks& remarks);

}  // namespace varn
