// A book out of games: which lines were played often enough, as rows for the engine's book.
#pragma once

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "pgn.h"

namespace varn {

/// The moves played from a position, and in how many games.
struct BookNode {
    long games = 0;
    std::map<std::string, BookNode> moves;  // by coordinate text
};

/// What became of the games read.
struct BookCounts {
    long used = 0;
    long set_up = 0;      // from a position: no line of play from the start
    long unreadable = 0;  // a move that can't be played, or text that breaks off before enough was read
};

/// Adds the first `plies` moves of every game to the tree; names on `complaints` each game that can't be read, as
/// `name` and its number. A row has no room for the letter of a promotion: a line ends before one.
BookCounts add_games(std::istream& pgn, const std::string& name, int plies, BookNode& root, std::ostream& complaints);

/// The rows of all lines that at least `fewest_games` games share, sorted, each closed by a comma. A row stands for a
/// game, or where there would be more than `most_rows`, for the number of games that `games_per_row` is set to.
std::vector<std::string> book_rows(const BookNode& root, long fewest_games, std::size_t most_rows, long& games_per_row);

}  // namespace varn
