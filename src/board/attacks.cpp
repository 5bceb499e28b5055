#include "board/attacks.h"

namespace varn {

namespace {

Bitboard straight_sliders(const Game& g) { return g.w_rooks | g.b_rooks | g.w_queens | g.b_queens; }
Bitboard diagonal_sliders(const Game& g) { return g.w_bishops | g.b_bishops | g.w_queens | g.b_queens; }

}  // namespace

Bitboard attackers_of(const Game& g, int square) {
    Bitboard attackers = g.b_pawns & pawn_attacks<Side::white>[square];
    attackers |= g.w_pawns & pawn_attacks<Side::black>[square];
    attackers |= knight_moves[square] & (g.w_knights | g.b_knights);
    attackers |= king_moves[square] & (g.w_king | g.b_king);
    attackers |= rook_reach(g, square) & straight_sliders(g);
    attackers |= bishop_reach(g, square) & diagonal_sliders(g);
    return attackers;
}

Bitboard add_xray(const Game& g, int square, int target, Bitboard set) {
    const Direction away = direction_table[target][square];
    const Bitboard behind = rays[away][square] & occupied(g);
    if (behind == 0) return set;
    const Bitboard first = bit_mask(leads_up(away) ? first_one(behind) : last_one(behind));
    return set | (first & (is_diagonal(away) ? diagonal_sliders(g) : straight_sliders(g)));
}

}  // namespace varn
