// Who attacks a square: the test by one side, the full set of both, and the sliders that join in when a piece leaves a
// line. All of these read the game and change nothing.
#pragma once

#include "board/game_sides.h"
#include "board/geometry.h"

namespace varn {

// What a slider on `square` reaches along one line, up to and including the first piece each way.
inline int line_index(Bitboard board, LineIndex line) { return static_cast<int>(board >> line.shift & line.mask); }
inline Bitboard rank_reach(const Game& g, int square) {
    return rank_attacks[square][line_index(occupied(g), rank_line[square])];
}
inline Bitboard file_reach(const Game& g, int square) {
    return file_attacks[square][line_index(g.r90, file_line[square])];
}
inline Bitboard r45f_reach(const Game& g, int square) {
    return r45f_attacks[square][line_index(g.r45f, r45f_line[square])];
}
inline Bitboard r45b_reach(const Game& g, int square) {
    return r45b_attacks[square][line_index(g.r45b, r45b_line[square])];
}
inline Bitboard rook_reach(const Game& g, int square) { return rank_reach(g, square) | file_reach(g, square); }
inline Bitboard bishop_reach(const Game& g, int square) { return r45f_reach(g, square) | r45b_reach(g, square); }

/// Whether a piece of side S, king included, attacks the square. What stands on the square doesn't matter.
template <Side S> inline bool attacked_by(const Game& g, int square) {
    if ((king_moves[square] & king_of<S>(g)) != 0) return true;
    if ((pawn_attacks<other(S)>[square] & pawns_of<S>(g)) != 0) return true;
    if ((knight_moves[square] & knights_of<S>(g)) != 0) return true;
    // Attack along a line is mutual: a slider reaches the square exactly if a slider on the square would reach it.
    if ((rook_reach(g, square) & (rooks_of<S>(g) | queens_of<S>(g))) != 0) return true;
    return (bishop_reach(g, square) & (bishops_of<S>(g) | queens_of<S>(g))) != 0;
}
inline bool attacked_by_white(const Game& game, int square) { return attacked_by<Side::white>(game, square); }
inline bool attacked_by_black(const Game& game, int square) { return attacked_by<Side::black>(game, square); }

/// Whether the king of side S is attacked.
template <Side S> inline bool king_attacked(const Game& g) { return attacked_by<other(S)>(g, king_square_of<S>(g)); }
inline bool white_in_check(const Game& game) { return king_attacked<Side::white>(game); }
inline bool black_in_check(const Game& game) { return king_attacked<Side::black>(game); }
/// Whether the side to move is in check.
inline bool in_check(const Game& game) {
    return game.turn == Side::black ? black_in_check(game) : white_in_check(game);
}

/// All pieces of both colours, kings included, that attack `square`.
Bitboard attackers_of(const Game& game, int square);

/// `set` with the pieces added that attack `target` through `square`: a piece on `square` has left the line towards
/// `target`, and the slider right behind it joins in.
Bitboard add_xray(const Game& game, int square, int target, Bitboard set);

}  // namespace varn
