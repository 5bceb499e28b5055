// The entry to the search: given a game, which move? Deepens one ply at a time until the clock or the last depth ends
// it, and tells its listener what it finds as it goes.
#pragma once

#include <limits>
#include <optional>
#include <vector>

#include "search/search.h"

namespace varn {

inline constexpr int deepest_iteration = 50;

/// What bounds a search beside its clock.
struct SearchLimits {
    int depth = deepest_iteration;  // the last iteration; a number outside 1..50 becomes the nearest in it
    std::uint64_t nodes = std::numeric_limits<std::uint64_t>::max();
    int mate = 0;                 // other than 0: ends with the iteration that finds a mate in so many moves
    int lines = 1;                // so many best lines, each with a first move of its own
    std::vector<Move> only = {};  // the root's moves are restricted to these legal ones; none: all of them
    std::uint32_t clock_interval = usual_clock_interval;  // nodes between looks at the time, a power of two, less one
    bool clock_runs = false;     // the caller has started the clock, to be able to stop it before the search begins
    bool search_forced = false;  // also a position with one legal move is searched
};

/// The engine's move, or none where there is no legal one. A forced move comes at once, without a search. Leaves the
/// expected reply in `predicted_move`.
std::optional<Move> think(Search& s, const Game& game, const SearchLimits& limits, const SearchListener& listener);

/// One search of the root with a window round `centre`, and a second with the full window if that fails.
int root_search(Search& s, Game& game, int centre, int depth);

}  // namespace varn
