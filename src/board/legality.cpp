#include "board/legality.h"

#include <algorithm>

#include "board/attacks.h"
#include "board/movegen.h"

namespace varn {

namespace {

/// Candidate moves of a side, tested until one is legal.
template <Side S> struct Candidates {
    const Game& g;
    const Pins& pins;

    /// Whether one of the pieces has a legal move of `kind` to one of its targets.
    template <typename Targets> bool any(Bitboard pieces, std::uint8_t kind, Targets targets_of) const {
        while (pieces != 0) {
            const auto from = static_cast<std::uint8_t>(pop_first(pieces));
            Bitboard targets = targets_of(from);
            while (targets != 0) {
                const auto to = static_cast<std::uint8_t>(pop_first(targets));
                if (is_legal_under<S>(g, pins, {from, to, kind})) return true;
            }
        }
        return false;
    }
};

template <Side S> bool pawn_has_legal_move(const Candidates<S>& candidates, Bitboard enemies) {
    constexpr Side them = other(S);
    constexpr std::uint8_t queening = code_of(S, queen);
    const Game& g = candidates.g;
    const Bitboard pawns = pawns_of<S>(g);
    const Bitboard steppers = pawns & ~behind<S>(occupied(g));
    // Settles nearly every position.
    if ((steppers & candidates.pins.free) != 0) return true;

    const Bitboard doubles = steppers & own_rank_mask<S>(2) & ~behind<S>(behind<S>(occupied(g)));
    if (candidates.any(steppers, kind_quiet, [](int from) { return bit_mask(from + up<S>); })) return true;
    if (candidates.any(doubles, kind_double_step, [](int from) { return bit_mask(from + 2 * up<S>); })) return true;
    // If promoting to a queen is illegal, so is every other promotion.
    if (candidates.any(pawns, queening, [&](int from) { return pawn_attacks<S>[from] & enemies; })) return true;
    const Bitboard passed = g.enpassant & own_rank_mask<S>(6);
    if (passed == 0) return false;
    const Bitboard capturers = pawn_attacks<them>[first_one(passed)] & pawns;
    return candidates.any(capturers, kind_en_passant, [&](int) { return passed; });
}

/// Legality doesn't depend on whether a piece's move captures. Castling needs no test: if it is legal, so is the king's
/// single step that way.
template <Side S> bool side_has_legal_move(const Game& g, const Pins& pins) {
    constexpr Side them = other(S);
    const Candidates<S> candidates = {g, pins};
    const Bitboard targets = ~pieces_of<S>(g) & not_bit(king_square_of<them>(g));
    if (pawn_has_legal_move<S>(candidates, pieces_of<them>(g) & targets)) return true;
    const auto try_pieces = [&](Bitboard pieces, auto reach) {
        return candidates.any(pieces, kind_quiet, [&](int from) { return reach(from) & targets; });
    };
    return try_pieces(queens_of<S>(g), [&](int from) { return rook_reach(g, from) | bishop_reach(g, from); }) ||
           try_pieces(knights_of<S>(g), [](int from) { return knight_moves[from]; }) ||
           try_pieces(bishops_of<S>(g), [&](int from) { return bishop_reach(g, from); }) ||
           try_pieces(rooks_of<S>(g), [&](int from) { return rook_reach(g, from); }) ||
           try_pieces(king_of<S>(g), [](int from) { return king_moves[from]; });
}

}  // namespace

bool is_legal(const Game& game, Move move) { return is_legal_under(game, pins_of(game), move); }

MoveList legal_moves(const Game& game) {
    const Pins pins = pins_of(game);
    MoveList list;
    generate_all(game, list);
    std::int32_t legal = 0;
    for (const Move move : list) {
        if (is_legal_under(game, pins, move)) list.moves[legal++] = move;
    }
    list.count = legal;
    return list;
}

bool is_valid_move(const Game& game, Move move) {
    const MoveList list = legal_moves(game);
    return std::find(list.begin(), list.end(), move) != list.end();
}

bool leaves_white_in_check(const Game& game, Move move) {
    return !is_legal_under<Side::white>(game, pins_of<Side::white>(game), move);
}
bool leaves_black_in_check(const Game& game, Move move) {
    return !is_legal_under<Side::black>(game, pins_of<Side::black>(game), move);
}

bool white_has_legal_move(const Game& game) {
    return side_has_legal_move<Side::white>(game, pins_of<Side::white>(game));
}
bool black_has_legal_move(const Game& game) {
    return side_has_legal_move<Side::black>(game, pins_of<Side::black>(game));
}
bool has_legal_move(const Game& game) { return has_legal_move(game, pins_of(game)); }

bool has_legal_move(const Game& game, const Pins& pins) {
    return game.turn == Side::white ? side_has_legal_move<Side::white>(game, pins)
                                    : side_has_legal_move<Side::black>(game, pins);
}

}  // namespace varn
