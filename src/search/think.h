// The entry to the search for every caller: given a game, which move? Deepens one ply at a time until the clock or the
// last depth ends it, and says what it thinks as it goes.
#pragma once

#include <optional>

#include "search/search.h"

namespace varn {

/// Asked for a legal move before any search while `book_enabled` is 1; gives none, and clears `book_enabled`, where the
/// book has no move. Whoever owns a book sets it; until then there is none.
extern std::optional<Move> (*book_hook)(Game* game);

// The reply that the last search expects, the second move of its main line, if `predicted_valid` is 1.
extern Move predicted_move;
extern std::int32_t predicted_valid;

/// The engine's move, or null where there is no legal one. The game is unchanged on return. The move stands in storage
/// that the search owns, valid until the next call.
const Move* think(Game* game);
/// The same on a clock that the caller has started, for another thread than the caller's: whatever the caller does to
/// the clock meanwhile holds, also before the search has begun.
const Move* think_on_running_clock(Game* game);

/// One search of the root with a window round `centre`, and a second with the full window if that fails.
int root_search(Game* game, int centre, int depth);

/// One line of output: depth, score, time in hundredths of a second, nodes, and the main line.
void print_search_line(const Game* game, int depth, std::uint32_t centiseconds, int score);

}  // namespace varn
