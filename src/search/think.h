// The entry to the search: given a game, which move? Deepens one ply at a time until the clock or the last depth ends
// it, and tells its listener what it finds as it goes.
#pragma once

#include <optional>

#include "search/search.h"

namespace varn {

inline constexpr int deepest_iteration = 50;

/// What bounds a search beside its clock.
struct SearchLimits {
    int depth = deepest_iteration;  // the last iteration; a number outside 1..50 becomes the nearest in it
    bool clock_runs = false;        // the caller has started the clock, to be able to stop it before the search begins
};

/// The engine's move, or none where there is no legal one. A forced move comes at once, without a search. Leaves the
/// expected reply in `predicted_move`.
std::optional<Move> think(Search& s, const Game& game, const SearchLimits& limits, const SearchListener& listener);

/// One search of the root with a window round `centre`, and a second with the full window if that fails.
int root_search(Search& s, Game& game, int centre, int depth);

}  // namespace varn
