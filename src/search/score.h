// What a score means: centipawns for the side to move, with mates at the ends of the range.
#pragma once

namespace varn {

inline constexpr int mate_score = 9999;
inline constexpr int no_score = -99990;      // of a node that has searched nothing yet
inline constexpr int abort_score = 1000000;  // of a stopped search: passed up the line, never a position's value
inline constexpr int full_window = 19998;    // of either sign: the root's window without expectations

/// A side mated `line_ply` moves from the root scores line_ply - 9999; the mate band is 9499..9999 of either sign.
constexpr bool is_mate_score(int score) {
    constexpr int nearest = mate_score;
    constexpr int farthest = mate_score - 500;
    return (score >= farthest && score <= nearest) || (score >= -nearest && score <= -farthest);
}

}  // namespace varn
