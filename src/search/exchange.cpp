#include "search/exchange.h"

#include <algorithm>

#include "board/attacks.h"

namespace varn {

namespace {

constexpr int no_square = -1;

/// The square of side S's cheapest man among the attackers; a king counts only while no enemy attacks the square.
template <Side S> int cheapest_attacker(const Game& g, Bitboard attackers) {
    for (const Bitboard men : {pawns_of<S>(g), knights_of<S>(g), bishops_of<S>(g), rooks_of<S>(g), queens_of<S>(g)}) {
        if ((men & attackers) != 0) return first_one(men & attackers);
    }
    const bool king_attacks = (king_of<S>(g) & attackers) != 0;
    const bool defended = (pieces_of<other(S)>(g) & attackers) != 0;
    return king_attacks && !defended ? king_square_of<S>(g) : no_square;
}

int cheapest_attacker(const Game& g, Bitboard attackers, Side side) {
    return side == Side::white ? cheapest_attacker<Side::white>(g, attackers)
                               : cheapest_attacker<Side::black>(g, attackers);
}

/// The attackers left when the man on `square` has captured: those behind it join in, but nothing joins behind a king.
Bitboard without(const Game& g, Bitboard attackers, int square, int target) {
    attackers &= not_bit(square);
    return man_of(g.cells[square]) == king ? attackers : add_xray(&g, square, target, attackers);
}

}  // namespace

int exchange_value(const Game* game, Move move) {
    if (move.kind == kind_en_passant) return 0;

    // Entry k is the balance after k + 1 captures. No man captures twice, so there is room for every man on the board.
    const Game& g = *game;
    Table<std::int32_t, square_count + 1> gain;
    gain[0] = -signed_piece_values[g.cells[move.to]];
    Bitboard attackers = without(g, attackers_of(game, move.to), move.from, move.to);
    int on_target = g.cells[move.from];
    Side side = other(side_to_move(g));
    int captures = 1;
    while (attackers != 0) {
        const int square = cheapest_attacker(g, attackers, side);
        if (square == no_square) break;
        gain[captures] = gain[captures - 1] - signed_piece_values[on_target];
        attackers = without(g, attackers, square, move.to);
        on_target = g.cells[square];
        side = other(side);
        ++captures;
    }

    // Back from the end: the side that made a capture could have refrained from it.
    for (int k = captures - 1; k >= 1; --k) {
        side = other(side);
        gain[k - 1] = side == Side::white ? std::max(gain[k - 1], gain[k]) : std::min(gain[k - 1], gain[k]);
    }
    return gain[0];
}

}  // namespace varn
