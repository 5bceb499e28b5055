// Scores: centipawns for the side to move, with mates at both ends of the range.
#pragma once

namespace varn {

inline constexpr int mate_score = 9999;
inline constexpr int no_score = -99990;      // no move searched yet
inline constexpr int abort_score = 1000000;  // the search was stopped: not a score
inline constexpr int full_window = 19998;    // root window without aspiration: -full_window..full_window

/// Being mated `line_ply` moves from the root scores line_ply - 9999. Scores of 9499..9999 of either sign are mates.
constexpr bool is_mate_score(int score) {
    constexpr int nearest = mate_score;
    constexpr int farthest = mate_score - 500;
    return (score >= farthest && score <= nearest) || (score >= -nearest && score <= -farthest);
}

}  // namespace varn
