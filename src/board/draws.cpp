#include "board/draws.h"

#include <algorithm>

#include "board/game_sides.h"
#include "board/make.h"

namespace varn {

namespace {

/// Whether these keys occurred at least `times` before index `place` of the game's key list. Nothing before the last
/// irreversible move, `fifty` plies ago, can match.
bool occurred_before(const Game& g, PositionKeys keys, int place, int fifty, int times) {
    const int oldest = std::max(0, place - fifty);
    for (int i = place - 1; i >= oldest; --i) {
        if (g.draw_hash[i] == keys && --times == 0) return true;
    }
    return false;
}

/// The last keys of the list are those of the current position.
bool occurred_before(const Game& g, int times) {
    return occurred_before(g, keys_of(g), static_cast<int>(g.draw_hash_count) - 1, g.fifty, times);
}

Bitboard mating_pieces(const Game& g) {
    return g.w_pawns | g.b_pawns | g.w_rooks | g.b_rooks | g.w_queens | g.b_queens;
}

template <Side S> Bitboard minor_pieces(const Game& g) { return bishops_of<S>(g) | knights_of<S>(g); }

/// `insufficient_material` of the position after the move.
bool insufficient_material_after(const Game& g, Move move) {
    const int mover = is_promotion(move.kind) ? move.kind : g.cells[move.from];
    const PieceType type = type_of(mover);
    const Bitboard untouched = not_bit(move.from) & not_bit(move.to);
    // This covers en passant as well: the capturing pawn remains.
    if (type == pawn || type == queen || is_rook(type) || (mating_pieces(g) & untouched) != 0) return false;
    const Bitboard arrived = type == king ? 0 : bit_mask(move.to);
    const bool white_moves = side_of(mover) == Side::white;
    const Bitboard white = (minor_pieces<Side::white>(g) & untouched) | (white_moves ? arrived : 0);
    const Bitboard black = (minor_pieces<Side::black>(g) & untouched) | (white_moves ? 0 : arrived);
    return !has_at_least(white, 2) && !has_at_least(black, 2);
}

bool is_irreversible(const Game& g, Move move) {
    return g.cells[move.to] != no_piece || type_of(g.cells[move.from]) == pawn;
}

}  // namespace

// Kept: docs/compatibility.md#insufficient-material
bool insufficient_material(const Game& game) {
    return mating_pieces(game) == 0 && !has_at_least(minor_pieces<Side::white>(game), 2) &&
           !has_at_least(minor_pieces<Side::black>(game), 2);
}

bool is_repetition(const Game& game) { return occurred_before(game, 1); }
bool is_third_repetition(const Game& game) { return occurred_before(game, 2); }

bool draw_by_rule(const Game& game) {
    return is_fifty_move_draw(game) || insufficient_material(game) || is_repetition(game);
}

bool draw_after_move(const Game& game, Move move) {
    const int fifty = is_irreversible(game, move) ? 0 : game.fifty + 1;
    if (fifty >= fifty_move_limit || insufficient_material_after(game, move)) return true;
    return fifty > 0 && occurred_before(game, child_keys(game, move), static_cast<int>(game.draw_hash_count), fifty, 1);
}

}  // namespace varn
