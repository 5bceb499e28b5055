#include "board/restraints.h"

#include "board/attacks.h"
#include "board/legality.h"

namespace varn {

namespace {

/// The squares from a, which is left out, to b; b alone where the two share no line.
Bitboard way_to(int a, int b) {
    const Direction direction = direction_table[a][b];
    return (rays[direction][a] & ~rays[direction][b]) | bit_mask(b);
}

template <Side S> Bitboard contact_checkers(const Game& g, int king_square) {
    constexpr Side them = other(S);
    return (king_moves[king_square] & king_of<them>(g)) | (pawn_attacks<S>[king_square] & pawns_of<them>(g)) |
           (knight_moves[king_square] & knights_of<them>(g));
}

/// The enemy sliders that would attack the king of side S on an empty board.
template <Side S> Bitboard aligned_sliders(const Game& g, int king_square) {
    constexpr Side them = other(S);
    return (straight_lines[king_square] & (rooks_of<them>(g) | queens_of<them>(g))) |
           (diagonal_lines[king_square] & (bishops_of<them>(g) | queens_of<them>(g)));
}

bool only_one(Bitboard board) { return board != 0 && (board & (board - 1)) == 0; }

}  // namespace

template <Side S> Restraints restraints_of(const Game& game) {
    const int king_square = king_square_of<S>(game);
    Restraints r = {contact_checkers<S>(game, king_square), 0, 0, ~Bitboard{0}, 0, king_square};
    for (Bitboard sliders = aligned_sliders<S>(game, king_square); sliders != 0;) {
        const int slider = pop_first(sliders);
        const Bitboard between = way_to(king_square, slider) & not_bit(slider) & occupied(game);
        if (between == 0) {
            r.checkers |= bit_mask(slider);
            r.shadows |= rays[direction_table[slider][king_square]][king_square];
        } else if (only_one(between)) {
            r.pinned |= between & pieces_of<S>(game);
        }
    }
    if (r.checkers == 0) {
        r.free = pieces_of<S>(game) & ~r.pinned & not_bit(king_square);
    } else {
        r.answers = only_one(r.checkers) ? way_to(king_square, first_one(r.checkers)) : 0;
    }
    return r;
}

template <Side S> bool is_legal_under(const Restraints& r, Game& game, Move move) {
    if (move.kind == kind_en_passant || is_castling(move.kind)) return !leaves_in_check<S>(game, move);
    if ((r.free & bit_mask(move.from)) != 0) return true;
    if (move.from == r.king_square) {
        return (r.shadows & bit_mask(move.to)) == 0 && !attacked_by<other(S)>(game, move.to);
    }
    if ((r.pinned & bit_mask(move.from)) != 0) {
        const auto& seen_from_king = direction_table[r.king_square];
        return r.checkers == 0 && seen_from_king[move.from] == seen_from_king[move.to];
    }
    return (r.answers & bit_mask(move.to)) != 0;
}

template Restraints restraints_of<Side::white>(const Game& game);
template Restraints restraints_of<Side::black>(const Game& game);
template bool is_legal_under<Side::white>(const Restraints& restraints, Game& game, Move move);
template bool is_legal_under<Side::black>(const Restraints& restraints, Game& game, Move move);

Restraints restraints_of(const Game* game) {
    return game->turn == 0 ? restraints_of<Side::white>(*game) : restraints_of<Side::black>(*game);
}

bool is_legal_under(const Restraints& restraints, Game* game, Move move) {
    return game->turn == 0 ? is_legal_under<Side::white>(restraints, *game, move)
                           : is_legal_under<Side::black>(restraints, *game, move);
}

}  // namespace varn
