#include "board/make.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstring>

#include "board/attacks.h"
#include "board/move_keys.h"

namespace varn {

namespace {

constexpr std::uint8_t fifty_ceiling = 255;

// --- The boards -----------------------------------------------------------------------------------------------------

/// A square's bit on each of the four occupancy boards.
struct Bits {
    Bitboard pieces, r90, r45f, r45b;
};

alignas(64) constexpr auto bits_of = per_square<Bits>([](int sq) {
    return Bits{bit_mask(sq), bit_mask(r90_map[sq]), bit_mask(r45f_map[sq]), bit_mask(r45b_map[sq])};
});

void toggle_occupied(Game& g, int square) {
    const Bits& bits = bits_of[square];
    g.pieces ^= bits.pieces;
    g.r90 ^= bits.r90;
    g.r45f ^= bits.r45f;
    g.r45b ^= bits.r45b;
}

void toggle_pawn_keys(Game& g, PositionKeys numbers) {
    g.pawn_key ^= numbers.key;
    g.pawn_lock ^= numbers.lock;
}

void set_keys(Game& g, PositionKeys keys) {
    g.zobrist_key = keys.key;
    g.zobrist_lock = keys.lock;
}

// Parts of a move besides moving the piece. The keys are kept in a local and written once: otherwise every store to the
// mailbox would make the compiler reload them.

template <Side S> void lose_rights(Game& g, int code, PositionKeys& keys) {
    const std::uint32_t lost = rights_lost<S>(g, code);
    if (lost == 0) return;
    castle_of<S>(g) ^= lost;
    toggle_rights<S>(keys, lost);
}

template <Side S> void set_enpassant(Game& g, int passed, PositionKeys& keys) {
    if (!leaves_enpassant<S>(g, passed)) return;
    g.enpassant = bit_mask(passed);
    g.ep_side = other(S);
    keys ^= in_both(zobrist_ep_numbers[passed]);
}

/// Moves a castling rook, in either direction, without updating the keys.
template <Side S> void shift_rook(Game& g, int from, int to, int code) {
    const Bitboard squares = bit_mask(from) | bit_mask(to);
    rooks_of<S>(g) ^= squares;
    pieces_of<S>(g) ^= squares;
    toggle_occupied(g, from);
    toggle_occupied(g, to);
    g.cells[from] = no_piece;
    g.cells[to] = static_cast<PieceCode>(code);
}

template <Side S> void castle_rook(Game& g, int kind, PositionKeys& keys) {
    const RookMove rook = castling_rook<S>(kind);
    shift_rook<S>(g, rook.from, rook.to, rook.code);
    keys ^= moved_piece(rook.from, rook.to, rook.code);
}

/// Updates the material of side S and the balance.
template <Side S> void add_material(Game& g, int value) {
    material_of<S>(g) += value;
    g.material += sign_of<S> * value;
}

/// Removes a piece of side S from its boards, the material and the keys.
template <Side S> void remove_piece(Game& g, int square, int code, PositionKeys& keys) {
    const PositionKeys numbers = zobrist_numbers[square][code];
    pieces_of<S>(g) ^= bit_mask(square);
    board_of<S>(g, type_of(code)) ^= bit_mask(square);
    add_material<S>(g, -piece_values[code]);
    keys ^= numbers;
    if (type_of(code) == pawn) toggle_pawn_keys(g, numbers);
}

template <Side S> void capture_pawn_en_passant(Game& g, int target, PositionKeys& keys) {
    constexpr Side them = other(S);
    const int square = victim_of_en_passant<S>(target);
    toggle_occupied(g, square);
    g.cells[square] = no_piece;
    remove_piece<them>(g, square, code_of(them, pawn), keys);
}

/// Replaces the pawn on the target square.
template <Side S> void promote(Game& g, Move move, PositionKeys& keys) {
    pawns_of<S>(g) ^= bit_mask(move.to);
    board_of<S>(g, type_of(move.kind)) ^= bit_mask(move.to);
    g.cells[move.to] = static_cast<PieceCode>(move.kind);
    toggle_pawn_keys(g, zobrist_numbers[move.to][code_of(S, pawn)]);
    keys ^= promoted_piece<S>(move.to, move.kind);
    add_material<S>(g, piece_values[move.kind] - pawn_value);
}

template <Side S> void finish_pawn_move(Game& g, Move move, PositionKeys& keys) {
    switch (move.kind) {
        case kind_quiet:
        case kind_capture: break;
        case kind_double_step: set_enpassant<S>(g, move.from + up<S>, keys); break;
        case kind_en_passant: capture_pawn_en_passant<S>(g, move.to, keys); break;
        default: promote<S>(g, move, keys);
    }
}

/// The common front of a game and an undo record: a multiple of the vector register size, to avoid store forwarding
/// stalls.
constexpr std::size_t saved_bytes = 64;
static_assert(offsetof(UndoRecord, captured) == saved_bytes && offsetof(Game, zobrist_key) == 0 &&
              offsetof(Game, enpassant) == offsetof(UndoRecord, enpassant) &&
              offsetof(Game, material) == offsetof(UndoRecord, material) &&
              offsetof(Game, ep_side) == offsetof(UndoRecord, ep_side));

template <Side S> void put_back_en_passant(Game& g, int target) {
    constexpr Side them = other(S);
    const int square = victim_of_en_passant<S>(target);
    pieces_of<them>(g) ^= bit_mask(square);
    pawns_of<them>(g) ^= bit_mask(square);
    toggle_occupied(g, square);
    g.cells[square] = code_of(them, pawn);
}

}  // namespace

template <Side S> void make_for(Game& g, Move move) {
    constexpr Side them = other(S);
    const int from = move.from;
    const int to = move.to;
    const int mover = g.cells[from];
    const int captured = g.cells[to];
    assert(from != to && is_code_of(S, mover) && !is_code_of(S, captured) && captured != code_of(them, king));
    const Bitboard squares = bit_mask(from) | bit_mask(to);
    const PositionKeys moved = moved_piece(from, to, mover);
    PositionKeys keys = keys_of_next_turn(g) ^ moved;

    g.enpassant = 0;
    g.turn = other(g.turn);
    if (g.fifty < fifty_ceiling) ++g.fifty;
    pieces_of<S>(g) ^= squares;
    board_of<S>(g, type_of(mover)) ^= squares;
    g.cells[from] = no_piece;
    g.cells[to] = static_cast<PieceCode>(mover);
    toggle_occupied(g, from);
    if (captured == no_piece) {
        toggle_occupied(g, to);
    } else {
        g.fifty = 0;
        remove_piece<them>(g, to, captured, keys);
        lose_rights<them>(g, captured, keys);
    }

    if (type_of(mover) == pawn) {
        g.fifty = 0;
        toggle_pawn_keys(g, moved);
        finish_pawn_move<S>(g, move, keys);
    } else {
        lose_rights<S>(g, mover, keys);
        if (type_of(mover) == king) {
            king_square_of<S>(g) = to;
            if (is_castling(move.kind)) castle_rook<S>(g, move.kind, keys);
        }
    }
    set_keys(g, keys);
}

template <Side S> void unmake_for(Game& g, Move move, const UndoRecord& undo) {
    constexpr Side them = other(S);
    const int from = move.from;
    const int to = move.to;
    const Bitboard squares = bit_mask(from) | bit_mask(to);
    const int captured = undo.captured;
    int mover = g.cells[to];
    assert(is_code_of(S, mover) && g.cells[from] == no_piece);

    std::memcpy(&g, &undo, saved_bytes);
    if (is_promotion(move.kind)) {
        board_of<S>(g, type_of(mover)) ^= bit_mask(to);
        mover = code_of(S, pawn);
        pawns_of<S>(g) ^= bit_mask(to);
    }
    pieces_of<S>(g) ^= squares;
    board_of<S>(g, type_of(mover)) ^= squares;
    g.cells[from] = static_cast<PieceCode>(mover);
    g.cells[to] = static_cast<PieceCode>(captured);
    toggle_occupied(g, from);
    if (captured == no_piece) {
        toggle_occupied(g, to);
        if (move.kind == kind_en_passant) put_back_en_passant<S>(g, to);
    } else {
        pieces_of<them>(g) ^= bit_mask(to);
        board_of<them>(g, type_of(captured)) ^= bit_mask(to);
    }
    if (mover == code_of(S, king)) {
        king_square_of<S>(g) = from;
        if (is_castling(move.kind)) {
            const RookMove rook = castling_rook<S>(move.kind);
            shift_rook<S>(g, rook.to, rook.from, rook.code);
        }
    }
}

template void make_for<Side::white>(Game& g, Move move);
template void make_for<Side::black>(Game& g, Move move);
template void unmake_for<Side::white>(Game& g, Move move, const UndoRecord& undo);
template void unmake_for<Side::black>(Game& g, Move move, const UndoRecord& undo);

void fill_undo(const Game& game, Move move, UndoRecord& undo) {
    save_undo(game, undo);
    undo.captured = game.cells[move.to];
}

void save_undo(const Game& game, UndoRecord& undo) { std::memcpy(&undo, &game, saved_bytes); }

void make_move(Game& game, Move move) {
    if (side_of(game.cells[move.from]) == Side::white) {
        make_for<Side::white>(game, move);
    } else {
        make_for<Side::black>(game, move);
    }
}

void unmake_move(Game& game, Move move, const UndoRecord& undo) {
    if (side_of(game.cells[move.to]) == Side::white) {
        unmake_for<Side::white>(game, move, undo);
    } else {
        unmake_for<Side::black>(game, move, undo);
    }
}

void push_keys(Game& game) {
    assert(game.draw_hash_count < draw_hash_slots);
    game.draw_hash[game.draw_hash_count] = keys_of(game);
    ++game.draw_hash_count;
}

void pop_keys(Game& game) {
    assert(game.draw_hash_count > 0);
    --game.draw_hash_count;
}

void reset_draw_hash(Game& game) {
    game.draw_hash_count = 0;
    push_keys(game);
}

void drop_old_keys(Game& game) {
    const std::uint32_t kept = std::min<std::uint32_t>(game.draw_hash_count, game.fifty + 1U);
    std::copy_n(game.draw_hash.begin() + (game.draw_hash_count - kept), kept, game.draw_hash.begin());
    game.draw_hash_count = kept;
}

void make_and_push(Game& game, Move move) {
    make_move(game, move);
    push_keys(game);
}

void retract_move(Game& game, Move move, const UndoRecord& undo) {
    pop_keys(game);
    unmake_move(game, move, undo);
}

void add_game_move(Game& game, Move move) {
    if (record_is_full(game)) return;
    game.game_moves[game.move_counter] = move;
    ++game.move_counter;
}

bool play_move(Game& game, Move move) {
    if (record_is_full(game)) return false;
    make_and_push(game, move);
    add_game_move(game, move);
    return true;
}

template <Side S> bool make_if_legal(Game& game, Move move, const Pins& pins, UndoRecord& undo) {
    if (!is_legal_under<S>(game, pins, move)) return false;
    undo.captured = game.cells[move.to];
    make_for<S>(game, move);
    return true;
}

template bool make_if_legal<Side::white>(Game& game, Move move, const Pins& pins, UndoRecord& undo);
template bool make_if_legal<Side::black>(Game& game, Move move, const Pins& pins, UndoRecord& undo);

bool make_if_legal(Game& game, Move move, const Pins& pins, UndoRecord& undo) {
    return game.turn == Side::white ? make_if_legal<Side::white>(game, move, pins, undo)
                                    : make_if_legal<Side::black>(game, move, pins, undo);
}

void make_null(Game& game, UndoRecord& undo) {
    undo.zobrist_key = game.zobrist_key;
    undo.zobrist_lock = game.zobrist_lock;
    undo.enpassant = game.enpassant;
    set_keys(game, keys_of_next_turn(game) ^ in_both(zobrist_null_number));
    game.enpassant = 0;
    game.turn = other(game.turn);
    push_keys(game);
}

void unmake_null(Game& game, const UndoRecord& undo) {
    game.turn = other(game.turn);
    game.zobrist_key = undo.zobrist_key;
    game.zobrist_lock = undo.zobrist_lock;
    game.enpassant = undo.enpassant;
    pop_keys(game);
}

PositionKeys child_keys(const Game& game, Move move) {
    PositionKeys keys{};
    visit_child_keys(game, &move, &move + 1, [&keys](PositionKeys child) { keys = child; });
    return keys;
}

}  // namespace varn
