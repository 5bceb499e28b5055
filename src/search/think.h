// Entry point of the search: iterative deepening until a limit is reached, with progress reported to the listener.
#pragma once

#include <limits>
#include <optional>
#include <vector>

#include "search/search.h"

namespace varn {

inline constexpr int deepest_iteration = 50;

/// Limits of a search besides its clock.
struct SearchLimits {
    int depth = deepest_iteration;  // last iteration, clamped to 1..50
    std::uint64_t nodes = std::numeric_limits<std::uint64_t>::max();
    int mate = 0;                                         // if not 0: stop when a mate in so many moves is found
    int lines = 1;                                        // number of best lines with different first moves
    std::vector<Move> only = {};                          // root moves to search, all legal; empty: all moves
    std::uint32_t clock_interval = usual_clock_interval;  // mask: nodes between time checks, a power of two minus one
    bool clock_runs = false;     // the caller has started the clock, so that it can stop it early
    bool search_forced = false;  // search even if only one move is legal
};

/// The best move, or none if there is no legal move. A forced move is returned at once. Leaves the expected reply in
/// `predicted_move`.
std::optional<Move> think(Search& s, const Game& game, const SearchLimits& limits, const SearchListener& listener);

/// Aspiration search: a window around `centre`, then a re-search with the full window if it fails.
int root_search(Search& s, Game& game, int centre, int depth);

}  // namespace varn
