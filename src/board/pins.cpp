#include "board/pins.h"

#include <cassert>

#include "board/attacks.h"

namespace varn {

namespace {

/// Squares from a (exclusive) to b (inclusive); b alone if they share no line.
Bitboard ray_to(int a, int b) {
    const Direction direction = direction_table[a][b];
    return (rays[direction][a] & ~rays[direction][b]) | bit_mask(b);
}

template <Side S> Bitboard contact_checkers(const Game& g, int king_square) {
    constexpr Side them = other(S);
    return (king_moves[king_square] & king_of<them>(g)) | (pawn_attacks<S>[king_square] & pawns_of<them>(g)) |
           (knight_moves[king_square] & knights_of<them>(g));
}

/// Enemy sliders that would give check on an empty board.
template <Side S> Bitboard aligned_sliders(const Game& g, int king_square) {
    constexpr Side them = other(S);
    return (straight_lines[king_square] & (rooks_of<them>(g) | queens_of<them>(g))) |
           (diagonal_lines[king_square] & (bishops_of<them>(g) | queens_of<them>(g)));
}

bool only_one(Bitboard board) { return board != 0 && (board & (board - 1)) == 0; }

/// Tested on the board without both pawns: en passant can open two lines at once.
template <Side S> bool en_passant_is_legal(const Game& g, const Pins& pins, Move move) {
    const int victim = move.to - up<S>;
    if ((contact_checkers<S>(g, pins.king_square) & not_bit(victim)) != 0) return false;
    const Bitboard left = (occupied(g) & not_bit(move.from) & not_bit(victim)) | bit_mask(move.to);
    for (Bitboard sliders = aligned_sliders<S>(g, pins.king_square); sliders != 0;) {
        const int slider = pop_first(sliders);
        if ((ray_to(pins.king_square, slider) & not_bit(slider) & left) == 0) return false;
    }
    return true;
}

}  // namespace

template <Side S> Pins pins_of(const Game& game) {
    const int king_square = king_square_of<S>(game);
    assert((king_of<S>(game) & bit_mask(king_square)) != 0);
    Pins pins = {contact_checkers<S>(game, king_square), 0, 0, ~Bitboard{0}, 0, king_square};
    for (Bitboard sliders = aligned_sliders<S>(game, king_square); sliders != 0;) {
        const int slider = pop_first(sliders);
        const Bitboard between = ray_to(king_square, slider) & not_bit(slider) & occupied(game);
        if (between == 0) {
            pins.checkers |= bit_mask(slider);
            pins.behind_king |= rays[direction_table[slider][king_square]][king_square];
        } else if (only_one(between)) {
            pins.pinned |= between & pieces_of<S>(game);
        }
    }
    if (pins.checkers == 0) {
        pins.free = pieces_of<S>(game) & ~pins.pinned & not_bit(king_square);
    } else {
        pins.check_mask = only_one(pins.checkers) ? ray_to(king_square, first_one(pins.checkers)) : 0;
    }
    return pins;
}

template <Side S> bool is_legal_under(const Game& game, const Pins& pins, Move move) {
    if ((pins.free & bit_mask(move.from)) != 0 && move.kind != kind_en_passant) return true;
    if (move.kind == kind_en_passant) return en_passant_is_legal<S>(game, pins, move);
    if (move.from == pins.king_square) {
        return is_castling(move.kind) ||
               ((pins.behind_king & bit_mask(move.to)) == 0 && !attacked_by<other(S)>(game, move.to));
    }
    if ((pins.pinned & bit_mask(move.from)) != 0) {
        const auto& seen_from_king = direction_table[pins.king_square];
        return pins.checkers == 0 && seen_from_king[move.from] == seen_from_king[move.to];
    }
    return (pins.check_mask & bit_mask(move.to)) != 0;
}

template Pins pins_of<Side::white>(const Game& game);
template Pins pins_of<Side::black>(const Game& game);
template bool is_legal_under<Side::white>(const Game& game, const Pins& pins, Move move);
template bool is_legal_under<Side::black>(const Game& game, const Pins& pins, Move move);

Pins pins_of(const Game& game) {
    return game.turn == Side::white ? pins_of<Side::white>(game) : pins_of<Side::black>(game);
}

bool is_legal_under(const Game& game, const Pins& pins, Move move) {
    return game.turn == Side::white ? is_legal_under<Side::white>(game, pins, move)
                                    : is_legal_under<Side::black>(game, pins, move);
}

}  // namespace varn
