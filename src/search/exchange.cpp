#include "search/exchange.h"

#include <algorithm>

#include "board/attacks.h"
#include "board/game_sides.h"

namespace varn {

namespace {

/// The least valuable attackers of side S. The king counts only if the enemy has no attacker left.
template <Side S> Bitboard cheapest_attacker(const Game& g, Bitboard attackers) {
    if ((pieces_of<S>(g) & attackers) == 0) return 0;
    for (const Bitboard pieces :
         {pawns_of<S>(g), knights_of<S>(g), bishops_of<S>(g), rooks_of<S>(g), queens_of<S>(g)}) {
        if ((pieces & attackers) != 0) return pieces & attackers;
    }
    const bool defended = (pieces_of<other(S)>(g) & attackers) != 0;
    return defended ? 0 : king_of<S>(g) & attackers;
}

/// The attackers that remain after the piece on `square` has captured, x-ray attackers included. A king opens no x-ray.
Bitboard without(const Game& g, Bitboard attackers, int square, int target) {
    attackers &= not_bit(square);
    return type_of(g.cells[square]) == king ? attackers : add_xray(g, square, target, attackers);
}

/// What side S gains by capturing a piece worth `prize` on the target; never negative, since S may decline. A gain of
/// `enough` or more need not be exact.
template <Side S> int gain_of_capturing(const Game& g, Bitboard attackers, int target, int prize, int enough) {
    const Bitboard cheapest = cheapest_attacker<S>(g, attackers);
    if (cheapest == 0) return 0;
    const int square = first_one(cheapest);
    const int risked = piece_values[g.cells[square]];
    if (prize - risked >= enough) return enough;
    const int loss = gain_of_capturing<other(S)>(g, without(g, attackers, square, target), target, risked, prize);
    return std::max(0, prize - loss);
}

/// The first capture is forced.
template <Side S> int gain_of(const Game& g, Move move, int least) {
    const Bitboard attackers = without(g, attackers_of(g, move.to), move.from, move.to);
    const int prize = piece_values[g.cells[move.to]];
    return prize -
           gain_of_capturing<other(S)>(g, attackers, move.to, piece_values[g.cells[move.from]], prize - least + 1);
}

}  // namespace

int exchange_gain(const Game& game, Move move, int least) {
    if (move.kind == kind_en_passant) return 0;
    return game.turn == Side::white ? gain_of<Side::white>(game, move, least) : gain_of<Side::black>(game, move, least);
}

}  // namespace varn
