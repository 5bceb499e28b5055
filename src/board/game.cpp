#include "board/game.h"

#include "board/game_sides.h"
#include "board/geometry.h"
#include "board/make.h"
#include "board/zobrist.h"

namespace varn {

namespace {

/// White's first rank from the h-file to the a-file.
constexpr Table<PieceType, 8> back_rank = {
    {kingside_rook, knight, bishop, king, queen, bishop, knight, queenside_rook}};

template <Side S> void set_up_side(Game& g) {
    for (int file = 1; file <= 8; ++file) {
        g.cells[square_of(own_rank<S>(1), file)] = code_of(S, back_rank[file - 1]);
        g.cells[square_of(own_rank<S>(2), file)] = code_of(S, pawn);
    }
    for (int rank = 1; rank <= 2; ++rank) {
        for (Bitboard squares = own_rank_mask<S>(rank); squares != 0;) {
            const int square = pop_first(squares);
            const PieceType type = type_of(g.cells[square]);
            pieces_of<S>(g) |= bit_mask(square);
            board_of<S>(g, type) |= bit_mask(square);
            material_of<S>(g) += piece_values[type];
        }
    }
    king_square_of<S>(g) = own_square<S>(e1);
    castle_of<S>(g) = kingside_right | queenside_right;
}

}  // namespace

void complete_record(Game& game) {
    game.pieces = game.w_pieces | game.b_pieces;
    game.r90 = rotate_90(game.pieces);
    game.r45f = rotate_45f(game.pieces);
    game.r45b = rotate_45b(game.pieces);
    rehash(game);
    reset_draw_hash(game);
}

std::unique_ptr<Game> new_game() {
    auto game = std::make_unique<Game>();
    for (auto& cell : game->cells) cell = no_piece;
    set_up_side<Side::white>(*game);
    set_up_side<Side::black>(*game);
    complete_record(*game);
    return game;
}

}  // namespace varn
