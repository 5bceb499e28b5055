#include "board/legality.h"

#include "board/attacks.h"
#include "board/make.h"
#include "board/movegen.h"

namespace varn {

namespace {

template <Side S> bool legal(Game& g, int from, int to, std::uint8_t kind) {
    return !leaves_in_check<S>(g, {static_cast<std::uint8_t>(from), static_cast<std::uint8_t>(to), kind});
}

/// Whether one of the men has a legal move of `kind` to a square that `targets_of` gives for its own.
template <Side S, typename Targets> bool any_legal(Game& g, Bitboard men, std::uint8_t kind, Targets targets_of) {
    while (men != 0) {
        const int from = pop_first(men);
        Bitboard targets = targets_of(from);
        while (targets != 0) {
            if (legal<S>(g, from, pop_first(targets), kind)) return true;
        }
    }
    return false;
}

template <Side S> bool pawn_has_legal_move(Game& g, Bitboard enemies) {
    constexpr Side them = other(S);
    constexpr std::uint8_t queening = code_of(S, queen);
    const Bitboard pawns = pawns_of<S>(g);
    const Bitboard free = pawns & ~behind<S>(occupied(g));
    const Bitboard last_rank = own_rank_mask<S>(8);
    const auto step_to = [](int from) { return bit_mask(from + up<S>); };

    const Bitboard doubles = free & own_rank_mask<S>(2) & ~behind<S>(behind<S>(occupied(g)));
    if (any_legal<S>(g, doubles, kind_double_step, [](int from) { return bit_mask(from + 2 * up<S>); })) return true;
    if (any_legal<S>(g, free & ~own_rank_mask<S>(7), kind_quiet, step_to)) return true;
    if (any_legal<S>(g, pawns, kind_quiet, [&](int from) { return pawn_attacks<S>[from] & enemies & ~last_rank; })) {
        return true;
    }
    // Where the queen's promotion isn't legal no other is.
    if (any_legal<S>(g, pawns, queening, [&](int from) { return pawn_attacks<S>[from] & enemies & last_rank; })) {
        return true;
    }
    const Bitboard passed = g.enpassant & own_rank_mask<S>(6);
    if (passed != 0) {
        const Bitboard capturers = pawn_attacks<them>[first_one(passed)] & pawns;
        if (any_legal<S>(g, capturers, kind_en_passant, [&](int) { return passed; })) return true;
    }
    return any_legal<S>(g, free & own_rank_mask<S>(7), queening, step_to);
}

/// Tries candidates until one proves legal. Make tells a capture from the target square, so every move of a piece is
/// tried as a quiet one. Castling need not be tried: where it is legal the king's single step that way is legal too.
template <Side S> bool side_has_legal_move(Game& g) {
    constexpr Side them = other(S);
    const Bitboard targets = ~pieces_of<S>(g) & not_bit(king_square_of<them>(g));
    if (pawn_has_legal_move<S>(g, pieces_of<them>(g) & targets)) return true;
    const auto try_men = [&](Bitboard men, auto reach) {
        return any_legal<S>(g, men, kind_quiet, [&](int from) { return reach(from) & targets; });
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

bool white_has_legal_move(Game* game) { return side_has_legal_move<Side::white>(*game); }
bool black_has_legal_move(Game* game) { return side_has_legal_move<Side::black>(*game); }
bool has_legal_move(Game* game) { return game->turn == 0 ? white_has_legal_move(game) : black_has_legal_move(game); }

}  // namespace varn
