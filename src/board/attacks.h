// Attacks on a square: by one side, by both sides, and x-ray attacks.
#pragma once

#include "board/game_sides.h"
#include "board/geometry.h"

namespace varn {

// Attacks of a slider on `square` along one line, up to and including the first piece in both directions.
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

/// Whether side S attacks the square, king included. The piece on the square is ignored.
template <Side S> inline bool attacked_by(const Game& g, int square) {
    if ((king_moves[square] & king_of<S>(g)) != 0) return true;
    if ((pawn_attacks<other(S)>[square] & pawns_of<S>(g)) != 0) return true;
    if ((knight_moves[square] & knights_of<S>(g)) != 0) return true;
    // Attacks along a line are symmetric: look from the square.
    if ((rook_reach(g, square) & (rooks_of<S>(g) | queens_of<S>(g))) != 0) return true;
    return (bishop_reach(g, square) & (bishops_of<S>(g) | queens_of<S>(g))) != 0;
}
inline bool attacked_by_white(const Game& game, int square) { return attacked_by<Side::white>(game, square); }
inline bool attacked_by_black(const Game& game, int square) { return attacked_by<Side::black>(game, square); }

/// Whether the king of side S is in check.
template <Side S> inline bool king_attacked(const Game& g) { return attacked_by<other(S)>(g, king_square_of<S>(g)); }
inline bool white_in_check(const Game& game) { return king_attacked<Side::white>(game); }
inline bool black_in_check(const Game& game) { return king_attacked<Side::black>(game); }
/// Whether the side to move is in check.
inline bool in_check(const Game& game) {
    return game.turn == Side::black ? black_in_check(game) : white_in_check(game);
}

/// All pieces of both colours, kings included, that attack the square.
Bitboard attackers_of(const Game& game, int square);

/// Adds to `set` the x-ray attacker: the slider that attacks `target` through `square` once the piece on `square` has
/// left.
Bitboard add_xray(const Game& game, int square, int target, Bitboard set);

}  // namespace varn
