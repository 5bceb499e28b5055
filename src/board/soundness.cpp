#include "board/soundness.h"

#include "board/game_sides.h"
#include "board/geometry.h"

namespace varn {

namespace {

template <Side S> bool castling_is_sound(const Game& g, Move move) {
    const bool kingside = move.kind == kind_kingside_castling;
    const int corner = own_square<S>(kingside ? h1 : a1);
    const Bitboard path = kingside ? kingside_path<S> : queenside_path<S>;
    return (kingside || move.kind == kind_queenside_castling) && move.from == own_square<S>(e1) &&
           move.to == own_square<S>(kingside ? g1 : c1) && (path & occupied(g)) == 0 &&
           g.cells[corner] == code_of(S, kingside ? kingside_rook : queenside_rook);
}

/// The square passed over must be empty, since an enemy pawn may capture there.
template <Side S> bool double_step_is_sound(const Game& g, Move move) {
    return move.to == move.from + 2 * up<S> && g.cells[move.from + up<S>] == no_piece;
}

template <Side S> bool en_passant_is_sound(const Game& g, Move move) {
    return g.ep_side == S && (g.enpassant & bit_mask(move.to)) != 0;
}

template <Side S> bool pawn_move_is_sound(const Game& g, Move move) {
    const int rank = own_rank<S>(rank_of(move.to));
    if (rank == 8) return is_promotion(move.kind) && move.kind == code_of(S, type_of(move.kind));
    if (rank == 1 || is_promotion(move.kind)) return false;
    switch (move.kind) {
        case kind_double_step: return double_step_is_sound<S>(g, move);
        case kind_en_passant: return en_passant_is_sound<S>(g, move);
        default: return move.kind == kind_quiet || move.kind == kind_capture;
    }
}

template <Side S> bool is_sound(const Game& g, Move move) {
    const Bitboard barred = pieces_of<S>(g) | king_of<other(S)>(g);
    if ((barred & bit_mask(move.to)) != 0) return false;
    const PieceType mover = type_of(g.cells[move.from]);
    if (mover == pawn) return pawn_move_is_sound<S>(g, move);
    if (mover == king && is_castling(move.kind)) return castling_is_sound<S>(g, move);
    return !is_castling(move.kind) && !is_promotion(move.kind);
}

}  // namespace

bool keeps_record_sound(const Game& game, Move move) {
    if (move.from >= square_count || move.to >= square_count || move.kind == kind_invalid) return false;
    const int mover = game.cells[move.from];
    if (mover == no_piece) return false;
    return side_of(mover) == Side::white ? is_sound<Side::white>(game, move) : is_sound<Side::black>(game, move);
}

}  // namespace varn
