// The opening book: a text file of lines of play, loaded as a whole and searched by prefix. A line is a sequence of
// moves from the starting position, so transpositions aren't found. Each row counts once: moves that occur in more rows
// are played more often. Rows with the same prefix must be adjacent, as in a sorted file.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/random.h"
#include "board/game.h"

namespace varn {

inline constexpr int book_capacity = 10000;  // rows
inline constexpr int book_row_length = 99;   // characters; longer lines are split

/// A row is a sequence of moves in coordinate notation, four characters each without separators, up to a comma or the
/// end of the line.
struct Book {
    std::vector<std::string> rows;  // without line ends
    RandomSource random = RandomSource(0);
};

enum class BookFault : std::uint8_t { none, no_file, too_long };

/// Loads the file, replacing the previous book, and seeds the choice of moves. Rows beyond the capacity are ignored.
BookFault load_book(Book& book, const std::string& file_name, std::uint64_t seed);

/// A random move among the rows that continue the game, weighted by their number. None if no row fits, the chosen row
/// ends here or its move is illegal, or more than 21 moves have been played. The choice is among as many rows as fit,
/// counted from the first of them: if they aren't adjacent another row's move may be chosen, and is played if legal.
std::optional<Move> book_move(Book& book, const Game& game);

}  // namespace varn
