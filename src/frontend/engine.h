// What a front end drives: the engine with its search, its book and the game that is played.
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
    std::int32_t ply_limit = deepest_iteration;  // the last iteration of a search, as the user asked for it

    Book book;
    bool book_enabled = false;  // the opening book is asked before any search

    std::unique_ptr<Game> game;
    // Taking moves back is playing the game again from where it began.
    Game base_position;       // a fresh game, or one set from text
    std::vector<int> passes;  // ascending: how many moves had been played when the turn was passed
};

/// Allocates the search's tables at the configured sizes. Too little memory ends the process with a message and
/// status 1.
void allocate_tables(Engine& engine);

/// A fresh game at the starting position; what the search remembers of the last one is cleared, the book is as it was.
void start_game(Engine& engine);

/// Sets the game's position from text and clears what the search remembers; the book goes off. Prints what is wrong
/// with the text; a foreign character in its board field ends the process with status 1.
void set_game_position(Engine& engine, std::string_view text);

/// The game goes on from the position that was read into it: there its moves start, without the book, and the search
/// remembers nothing that might carry the same keys.
void start_from_read_position(Engine& engine);

/// The other side is to move, with no move made. It changes `zobrist_key` and not the lock.
void pass_turn(Engine& engine);

/// The game again from its base position, less its last `taken_back` moves and what was done after those that are left;
/// less all of them where it has no more. What the search remembers is cleared as for a new game.
void take_back_moves(Engine& engine, int taken_back);

/// The engine's move for a game: the book's, or that of a search that tells the listener what it finds. None where
/// there is no legal move. The book goes off, for good, where it has no move.
std::optional<Move> choose_move(Engine& engine, const Game& game, const SearchListener& listener);

/// Says what there is to say of a position's text; a foreign piece ends the process with status 1.
void print_remarks(const PositionRemarks& remarks);

}  // namespace varn
