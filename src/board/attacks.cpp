#include "board/attacks.h"

namespace varn {

namespace {

Bitboard straight_sliders(const Game& g) { return g.w_rooks | g.b_rooks | g.w_queens | g.b_queens; }
Bitboard diagonal_sliders(const Game& g) { return g.w_bishops | g.b_bishops | g.w_queens | g.b_queens; }

}  // namespace

Bitboard attackers_of(const Game* game, int square) {
    const Game& g = *game;
    Bitboard attackers = pawn_attacks<Side::white>[square] & g.b_pawns;
    attackers |= pawn_attacks<Side::black>[square] & g.w_pawns;
    attackers |= knight_moves[square] & (g.w_knights | g.b_knights);
    attackers |= king_moves[square] & (g.w_king | g.b_king);
    attackers |= rook_reach(g, square) & straight_sliders(g);
    attackers |= bishop_reach(g, square) & diagonal_sliders(g);
    return attackers;
}

Bitboard add_xray(const Game* game, int square, int target, Bitboard set) {
    const Game& g = *game;
    // The men of interest lie on the ray that leads on from the target through the square.
    const Direction away = direction_table[target][square];
    Bitboard sliders = 0;
    switch (away) {
        case no_direction: return set;
        case north:
        case south: sliders = file_reach(g, square) & straight_sliders(g); break;
        case west:
        case east: sliders = rank_reach(g, square) & straight_sliders(g); break;
        case north_west:
        case south_east: sliders = r45b_reach(g, square) & diagonal_sliders(g); break;
        case north_east:
        case south_west: sliders = r45f_reach(g, square) & diagonal_sliders(g); break;
    }
    return set | (sliders & rays[away][square]);
}

}  // namespace varn
