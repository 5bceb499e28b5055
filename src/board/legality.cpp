#include "board/legality.h"

#include "board/attacks.h"
#include "board/make.h"
#include "board/movegen.h"

namespace varn {

namespace {

/// The candidates of a side, tried one by one until one is legal.
template <Side S> struct Candidates {
    Game& g;
    const Restraints& restraints;

    /// Whether one of the men has a legal move of `kind` to a square that `targets_of` gives for its own.
    template <typename Targets> bool any(Bitboard men, std::uint8_t kind, Targets targets_of) const {
        while (men != 0) {
            const auto from = static_cast<std::uint8_t>(pop_first(men));
            Bitboard targets = targets_of(from);
            while (targets != 0) {
                const auto to = static_cast<std::uint8_t>(pop_first(targets));
                if (is_legal_under<S>(restraints, g, {from, to, kind})) return true;
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
    // In nearly every position some pawn settles it here.
    if ((steppers & candidates.restraints.free) != 0) return true;

    const Bitboard doubles = steppers & own_rank_mask<S>(2) & ~behind<S>(behind<S>(occupied(g)));
    if (candidates.any(steppers, kind_quiet, [](int from) { return bit_mask(from + up<S>); })) return true;
    if (candidates.any(doubles, kind_double_step, [](int from) { return bit_mask(from + 2 * up<S>); })) return true;
    // Where the queen's promotion isn't legal no other is.
    if (candidates.any(pawns, queening, [&](int from) { return pawn_attacks<S>[from] & enemies; })) return true;
    const Bitboard passed = g.enpassant & own_rank_mask<S>(6);
    if (passed == 0) return false;
    const Bitboard capturers = pawn_attacks<them>[first_one(passed)] & pawns;
    return candidates.any(capturers, kind_en_passant, [&](int) { return passed; });
}

/// The kind of a piece's move doesn't matter to its being legal. Castling need not be tried: where it is legal the
/// king's single step that way is legal too.
template <Side S> bool side_has_legal_move(Game& g, const Restraints& restraints) {
    constexpr Side them = other(S);
    const Candidates<S> candidates = {g, restraints};
    const Bitboard targets = ~pieces_of<S>(g) & not_bit(king_square_of<them>(g));
    if (pawn_has_legal_move<S>(candidates, pieces_of<them>(g) & targets)) return true;
    const auto try_men = [&](Bitboard men, auto reach) {
        return candidates.any(men, kind_quiet, [&](int from) { return reach(from) & targets; });
    };
    return try_men(queens_of<S>(g), [&](int from) { return rook_reach(g, from) | bishop_reach(g, from); }) ||
           try_men(knights_of<S>(g), [](int from) { return knight_moves[from]; }) ||
           try_men(bishops_of<S>(g), [&](int from) { return bishop_reach(g, from); }) ||
           try_men(rooks_of<S>(g), [&](int from) { return rook_reach(g, from); }) ||
           try_men(king_of<S>(g), [](int from) { return king_moves[from]; });
}

}  // namespace

template <Side S> bool leaves_in_check(Game& game, Move move) {
    UndoRecord undo;
    fill_undo(&game, move, &undo);
    make_move(&game, move);
    const bool attacked = king_attacked<S>(game);
    unmake_move(&game, move, &undo);
    return attacked;
}

template bool leaves_in_check<Side::white>(Game& game, Move move);
template bool leaves_in_check<Side::black>(Game& game, Move move);

bool is_legal(Game* game, Move move) {
    return game->turn == 0 ? !leaves_white_in_check(game, move) : !leaves_black_in_check(game, move);
}

bool is_valid_move(Game* game, Move move) {
    MoveList list;
    list.count = 0;
    add_all(game, &list);
    for (int i = 0; i < list.count; ++i) {
        if (list.moves[i] == move) return is_legal(game, move);
    }
    return false;
}

bool leaves_white_in_check(Game* game, Move move) { return leaves_in_check<Side::white>(*game, move); }
bool leaves_black_in_check(Game* game, Move move) { return leaves_in_check<Side::black>(*game, move); }

bool white_has_legal_move(Game* game) {
    return side_has_legal_move<Side::white>(*game, restraints_of<Side::white>(*game));
}
bool black_has_legal_move(Game* game) {
    return side_has_legal_move<Side::black>(*game, restraints_of<Side::black>(*game));
}
bool has_legal_move(Game* game) { return game->turn == 0 ? white_has_legal_move(game) : black_has_legal_move(game); }

bool has_legal_move(Game* game, const Restraints& restraints) {
    return game->turn == 0 ? side_has_legal_move<Side::white>(*game, restraints)
                           : side_has_legal_move<Side::black>(*game, restraints);
}

}  // namespace varn
