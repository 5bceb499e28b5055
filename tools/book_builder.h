// Builds a book from games: lines that were played often enough become rows.
#pragma once

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "pgn.h"

namespace varn {

/// The moves played from a position, and their numbers of games.
struct BookNode {
    long games = 0;
    std::map<std::string, BookNode> moves;  // by coordinate notation
};

/// Counts of the games read.
struct BookCounts {
    long used = 0;
    long set_up = 0;      // didn't start from the starting position
    long unreadable = 0;  // an illegal move, or truncated before enough was read
};

/// Adds the first `plies` moves of every game to the tree; unreadable games are reported on `complaints` with `name`
/// and their number. Lines end before promotions, which rows can't express.
BookCounts add_games(std::istream& pgn, const std::string& name, int plies, BookNode& root, std::ostream& complaints);

/// The sorted rows of all lines shared by at least `fewest_games` games, each ended by a comma. A row stands for one
/// game or, if there would be more than `most_rows`, for `games_per_row` games, which is set accordingly.
std::vector<std::string> book_rows(const BookNode& root, long fewest_games, std::size_t most_rows, long& games_per_row);

}  // namespace varn
