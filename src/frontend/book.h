// The opening book: a text file of lines of play, loaded whole and asked by prefix. A line is a string of moves from
// the starting position, so a position that came about by another order of moves isn't found. Every row counts once: a
// move that stands in more rows is played more often. Rows with the same beginning stand together, as in a sorted file.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/random.h"
#include "board/game.h"

namespace varn {

inline constexpr int book_capacity = 10000;  // rows
inline constexpr int book_row_length = 99;   // characters; a longer line becomes two rows

/// A row's moves are in coordinate form, four characters each, nothing between them; a comma or the line's end ends
/// them.
struct Book {
    std::vector<std::string> rows;  // without their line ends
    RandomSource random = RandomSource(0);
};

enum class BookFault : std::uint8_t { none, no_file, too_long };

/// Reads the file in place of what was loaded before. Rows beyond the capacity are left out. Seeds the choice among
/// candidates.
BookFault load_book(Book& book, const std::string& file_name, std::uint64_t seed);

/// A move that some row has after the moves of the game, drawn at random by the number of rows; none where no row fits,
/// the drawn row ends here or its move can't be played, or more than 21 moves were played. The draw is over as many
/// rows as fit, from the first of them on: where they don't stand together, another row's move may come up, and is
/// played if it is legal.
std::optional<Move> book_move(Book& book, const Game& game);

}  // namespace varn
