// The opening book: a text file of lines of play, loaded whole at start-up and asked by prefix. A line is a string of
// moves from the starting position, so a position that came about by another order of moves isn't found. Every row
// counts once: a move that stands in more rows is played more often.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/random.h"
#include "board/game.h"

namespace varn {

inline constexpr int book_capacity = 10000;  // rows
inline constexpr int book_row_length = 99;   // characters; a longer line becomes two rows

/// Reads the file, if it is there, in place of what was loaded before. Rows beyond the capacity are left out, with a
/// line that says so. Called before any search, and never again: the rows are the process's.
void load_book(const char* file_name = "book.dat");

/// Rows in use.
int book_line_count();

/// A row's moves are in coordinate form, four characters each, nothing between them; a comma or the line's end ends
/// them.
const std::string& book_line(int row);

/// A move that some row has after the moves of the game, drawn at random by the number of rows; none where no row fits,
/// the drawn row ends here or its move can't be played, or more than 21 moves were played.
std::optional<Move> book_move(const Game& game, RandomSource& random);

}  // namespace varn
