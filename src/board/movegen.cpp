#include "board/movegen.h"

#include "board/attacks.h"

namespace varn {

namespace {

// Generators advance a pointer and return it: counting in the list would cost a load and a store per move.

Move* put_move(Move* out, int from, int to, std::uint8_t kind) {
    *out = {static_cast<std::uint8_t>(from), static_cast<std::uint8_t>(to), kind};
    return out + 1;
}

/// Moves of one piece to all targets.
Move* put_moves(Move* out, int from, Bitboard targets, std::uint8_t kind) {
    while (targets != 0) out = put_move(out, from, pop_first(targets), kind);
    return out;
}

/// Moves of all `pieces` to the targets among `reach(square)`: all moves of a knight, one line of a slider.
template <typename Reach>
Move* put_moves_of(Move* out, Bitboard pieces, Bitboard targets, std::uint8_t kind, Reach reach) {
    while (pieces != 0) {
        const int from = pop_first(pieces);
        out = put_moves(out, from, reach(from) & targets, kind);
    }
    return out;
}

/// Moves of all pieces except pawns to the targets.
template <Side S> Move* put_piece_targets(const Game& g, Move* out, Bitboard targets, std::uint8_t kind) {
    const auto along_rank = [&g](int square) { return rank_reach(g, square); };
    const auto along_file = [&g](int square) { return file_reach(g, square); };
    const auto along_r45b = [&g](int square) { return r45b_reach(g, square); };
    const auto along_r45f = [&g](int square) { return r45f_reach(g, square); };

    out = put_moves_of(out, knights_of<S>(g), targets, kind, [](int square) { return knight_moves[square]; });
    out = put_moves_of(out, bishops_of<S>(g), targets, kind, along_r45b);
    out = put_moves_of(out, bishops_of<S>(g), targets, kind, along_r45f);
    out = put_moves_of(out, rooks_of<S>(g), targets, kind, along_rank);
    out = put_moves_of(out, rooks_of<S>(g), targets, kind, along_file);
    out = put_moves_of(out, queens_of<S>(g), targets, kind, along_rank);
    out = put_moves_of(out, queens_of<S>(g), targets, kind, along_file);
    out = put_moves_of(out, queens_of<S>(g), targets, kind, along_r45b);
    out = put_moves_of(out, queens_of<S>(g), targets, kind, along_r45f);
    return put_moves(out, king_square_of<S>(g), king_moves[king_square_of<S>(g)] & targets, kind);
}

template <Side S> Move* put_four_promotions(Move* out, int from, int to) {
    for (const PieceType type : {queen, plain_rook, bishop, knight}) {
        out = put_move(out, from, to, static_cast<std::uint8_t>(code_of(S, type)));
    }
    return out;
}

template <Side S> Move* put_pawn_captures(const Game& g, Move* out, Bitboard targets) {
    Bitboard pawns = pawns_of<S>(g);
    while (pawns != 0) {
        const int from = pop_first(pawns);
        Bitboard captures = pawn_attacks<S>[from] & targets;
        while (captures != 0) {
            const int to = pop_first(captures);
            out = rank_of(to) == own_rank<S>(8) ? put_four_promotions<S>(out, from, to)
                                                : put_move(out, from, to, kind_capture);
        }
    }
    return out;
}

template <Side S> Move* put_en_passant(const Game& g, Move* out) {
    const Bitboard target = g.enpassant & own_rank_mask<S>(6);
    if (target == 0 || g.ep_side != S) return out;
    const int to = first_one(target);
    Bitboard pawns = pawn_attacks<other(S)>[to] & pawns_of<S>(g);
    while (pawns != 0) out = put_move(out, pop_first(pawns), to, kind_en_passant);
    return out;
}

/// Pawns with an empty square ahead.
template <Side S> Bitboard pushable_pawns(const Game& g) { return pawns_of<S>(g) & ~behind<S>(occupied(g)); }

template <Side S> bool any_attacked(const Game& g, int first, int second) {
    return attacked_by<other(S)>(g, own_square<S>(first)) || attacked_by<other(S)>(g, own_square<S>(second));
}

template <Side S> Move* put_captures(const Game& g, Move* out) {
    constexpr Side them = other(S);
    const Bitboard targets = pieces_of<them>(g) & not_bit(king_square_of<them>(g));
    out = put_pawn_captures<S>(g, out, targets);
    out = put_en_passant<S>(g, out);
    return put_piece_targets<S>(g, out, targets, kind_capture);
}

template <Side S> Move* put_promotions(const Game& g, Move* out) {
    Bitboard pawns = pushable_pawns<S>(g) & own_rank_mask<S>(7);
    while (pawns != 0) {
        const int from = pop_first(pawns);
        out = put_four_promotions<S>(out, from, from + up<S>);
    }
    return out;
}

template <Side S> Move* put_castling(const Game& g, Move* out) {
    // A right implies that king and rook are on their squares.
    const std::uint32_t rights = castle_of<S>(g);
    if (rights == 0 || king_attacked<S>(g)) return out;
    const Bitboard pieces = occupied(g);
    if ((rights & kingside_right) != 0 && (kingside_path<S> & pieces) == 0 && !any_attacked<S>(g, f1, g1)) {
        out = put_move(out, own_square<S>(e1), own_square<S>(g1), kind_kingside_castling);
    }
    if ((rights & queenside_right) != 0 && (queenside_path<S> & pieces) == 0 && !any_attacked<S>(g, d1, c1)) {
        out = put_move(out, own_square<S>(e1), own_square<S>(c1), kind_queenside_castling);
    }
    return out;
}

template <Side S> Move* put_pawn_steps(const Game& g, Move* out) {
    const Bitboard free = pushable_pawns<S>(g);
    Bitboard doubles = free & own_rank_mask<S>(2) & ~behind<S>(behind<S>(occupied(g)));
    while (doubles != 0) {
        const int from = pop_first(doubles);
        out = put_move(out, from, from + 2 * up<S>, kind_double_step);
    }
    Bitboard singles = free & ~own_rank_mask<S>(7);
    while (singles != 0) {
        const int from = pop_first(singles);
        out = put_move(out, from, from + up<S>, kind_quiet);
    }
    return out;
}

template <Side S> Move* put_quiets(const Game& g, Move* out) {
    out = put_castling<S>(g, out);
    out = put_piece_targets<S>(g, out, ~occupied(g), kind_quiet);
    return put_pawn_steps<S>(g, out);
}

template <Side S> Move* put_all(const Game& g, Move* out) {
    out = put_captures<S>(g, out);
    out = put_promotions<S>(g, out);
    return put_quiets<S>(g, out);
}

/// Appends a generator's moves to a list.
template <Move* stage(const Game& g, Move* out)> void append(const Game& game, MoveList& list) {
    const Move* end = stage(game, list.moves.begin() + list.count);
    list.count = static_cast<std::int32_t>(end - list.moves.begin());
}

}  // namespace

void add_white_captures(const Game& game, MoveList& list) { append<put_captures<Side::white>>(game, list); }
void add_black_captures(const Game& game, MoveList& list) { append<put_captures<Side::black>>(game, list); }
void add_white_promotions(const Game& game, MoveList& list) { append<put_promotions<Side::white>>(game, list); }
void add_black_promotions(const Game& game, MoveList& list) { append<put_promotions<Side::black>>(game, list); }
void add_quiets_white(const Game& game, MoveList& list) { append<put_quiets<Side::white>>(game, list); }
void add_quiets_black(const Game& game, MoveList& list) { append<put_quiets<Side::black>>(game, list); }
void add_all_white(const Game& game, MoveList& list) { append<put_all<Side::white>>(game, list); }
void add_all_black(const Game& game, MoveList& list) { append<put_all<Side::black>>(game, list); }

void add_captures(const Game& game, MoveList& list) {
    game.turn == Side::white ? add_white_captures(game, list) : add_black_captures(game, list);
}

void add_promotions(const Game& game, MoveList& list) {
    game.turn == Side::white ? add_white_promotions(game, list) : add_black_promotions(game, list);
}

void add_quiets(const Game& game, MoveList& list) {
    game.turn == Side::white ? add_quiets_white(game, list) : add_quiets_black(game, list);
}

void add_all(const Game& game, MoveList& list) {
    game.turn == Side::white ? add_all_white(game, list) : add_all_black(game, list);
}

void generate_captures(const Game& game, MoveList& list) {
    list.count = 0;
    add_captures(game, list);
}

void generate_noisy(const Game& game, MoveList& list) {
    generate_captures(game, list);
    add_promotions(game, list);
}

void generate_all(const Game& game, MoveList& list) {
    list.count = 0;
    add_all(game, list);
}

}  // namespace varn
