// How each part of a move changes the keys of a position: for make, and for the keys of a child that isn't made.
#pragma once

#include "board/game_sides.h"
#include "board/zobrist.h"

namespace varn {

/// Castling rights lost when a piece of this type moves or is captured.
inline constexpr Table<std::uint32_t, 8> rights_of = {
    {kingside_right | queenside_right, 0, 0, 0, kingside_right, queenside_right, 0, 0}};

/// The rights that side S loses with this piece.
template <Side S> std::uint32_t rights_lost(const Game& g, int code) {
    return castle_of<S>(g) & rights_of[type_of(code)];
}

template <Side S> void toggle_rights(PositionKeys& keys, std::uint32_t lost) {
    if (lost == 0) return;
    if ((lost & kingside_right) != 0) keys ^= in_both(kingside_number<S>());
    if ((lost & queenside_right) != 0) keys ^= in_both(queenside_number<S>());
}

inline PositionKeys moved_piece(int from, int to, int code) {
    return zobrist_numbers[from][code] ^ zobrist_numbers[to][code];
}

/// A pawn on `square` is replaced by the piece with this code.
template <Side S> PositionKeys promoted_piece(int square, int code) {
    return zobrist_numbers[square][code_of(S, pawn)] ^ zobrist_numbers[square][code];
}

/// Keys after passing the turn, without an en-passant square.
inline PositionKeys keys_of_next_turn(const Game& g) {
    PositionKeys keys = keys_of(g) ^ in_both(zobrist_side_number);
    if (g.enpassant != 0) keys ^= in_both(zobrist_ep_numbers[first_one(g.enpassant)]);
    return keys;
}

/// Whether a double step over the square sets the en-passant square: an enemy pawn must attack it; legality isn't
/// tested.
template <Side S> bool leaves_enpassant(const Game& g, int passed) {
    return (pawns_of<other(S)>(g) & pawn_attacks<S>[passed]) != 0;
}

/// The rook's move in castling.
struct RookMove {
    int from;
    int to;
    int code;
};

template <Side S> RookMove castling_rook(int kind) {
    if (kind == kind_kingside_castling) return {own_square<S>(h1), own_square<S>(f1), code_of(S, kingside_rook)};
    return {own_square<S>(a1), own_square<S>(d1), code_of(S, queenside_rook)};
}

/// The square of the pawn captured en passant on `target`.
template <Side S> int victim_of_en_passant(int target) { return target - up<S>; }

/// What a move of side S changes besides the turn.
template <Side S> PositionKeys change_of_keys(const Game& g, Move move) {
    constexpr Side them = other(S);
    const int mover = g.cells[move.from];
    PositionKeys keys = moved_piece(move.from, move.to, mover);
    toggle_rights<S>(keys, rights_lost<S>(g, mover));
    if (move.kind == kind_quiet) return keys;
    const int captured = g.cells[move.to];
    if (captured != no_piece) {
        keys ^= zobrist_numbers[move.to][captured];
        toggle_rights<them>(keys, rights_lost<them>(g, captured));
    }
    switch (move.kind) {
        case kind_capture: break;
        case kind_double_step: {
            const int passed = move.from + up<S>;
            if (leaves_enpassant<S>(g, passed)) keys ^= in_both(zobrist_ep_numbers[passed]);
            break;
        }
        case kind_en_passant: keys ^= zobrist_numbers[victim_of_en_passant<S>(move.to)][code_of(them, pawn)]; break;
        case kind_kingside_castling:
        case kind_queenside_castling: {
            const RookMove rook = castling_rook<S>(move.kind);
            keys ^= moved_piece(rook.from, rook.to, rook.code);
            break;
        }
        default: keys ^= promoted_piece<S>(move.to, move.kind);
    }
    return keys;
}

template <Side S, typename Visit>
void visit_child_keys_of(const Game& g, const Move* move, const Move* end, Visit visit) {
    const PositionKeys passed = keys_of_next_turn(g);
    for (; move != end; ++move) visit(passed ^ change_of_keys<S>(g, *move));
}

/// Calls `visit(keys)` with the keys after each of these pseudo-legal moves, without making them.
template <typename Visit> void visit_child_keys(const Game& g, const Move* move, const Move* end, Visit visit) {
    g.turn == Side::white ? visit_child_keys_of<Side::white>(g, move, end, visit)
                          : visit_child_keys_of<Side::black>(g, move, end, visit);
}

}  // namespace varn
