#include "board/make.h"

#include "board/attacks.h"
#include "board/zobrist.h"

namespace varn {

Table<UndoRecord, ply_slots + 1> undo_stack;
Table<SearchPly, ply_slots> search_stack;
Table<std::uint8_t, ply_slots> null_move_at;

namespace {

constexpr std::uint8_t fifty_ceiling = 255;

/// The rotated bits of the squares of a move, looked up once.
struct RotatedBits {
    Bitboard r90, r45f, r45b;

    explicit RotatedBits(int square)
        : r90(bit_mask(r90_map[square])), r45f(bit_mask(r45f_map[square])), r45b(bit_mask(r45b_map[square])) {}

    RotatedBits& operator^=(const RotatedBits& o) {
        r90 ^= o.r90;
        r45f ^= o.r45f;
        r45b ^= o.r45b;
        return *this;
    }
};

void toggle_rotated(Game& g, const RotatedBits& bits) {
    g.r90 ^= bits.r90;
    g.r45f ^= bits.r45f;
    g.r45b ^= bits.r45b;
}

void toggle_both_keys(Game& g, std::uint64_t number) {
    g.zobrist_key ^= number;
    g.zobrist_lock ^= number;
}

void toggle_man_keys(Game& g, int square, int code) {
    g.zobrist_key ^= zobrist_key_numbers[square][code];
    g.zobrist_lock ^= zobrist_lock_numbers[square][code];
}

void toggle_pawn_keys(Game& g, int square, int code) {
    g.pawn_key ^= zobrist_key_numbers[square][code];
    g.pawn_lock ^= zobrist_lock_numbers[square][code];
}

template <Side S> void lose_kingside_right(Game& g) {
    if ((castle_of<S>(g) & kingside_right) == 0) return;
    castle_of<S>(g) &= ~kingside_right;
    toggle_both_keys(g, kingside_number<S>());
}

template <Side S> void lose_queenside_right(Game& g) {
    if ((castle_of<S>(g) & queenside_right) == 0) return;
    castle_of<S>(g) &= ~queenside_right;
    toggle_both_keys(g, queenside_number<S>());
}

void clear_enpassant(Game& g) {
    if (g.enpassant == 0) return;
    toggle_both_keys(g, zobrist_ep_numbers[first_one(g.enpassant)]);
    g.enpassant = 0;
}

/// The rook's part of castling, fixed by the king's move.
struct RookMove {
    int from;
    int to;
    int code;
};

template <Side S> RookMove castling_rook(int kind) {
    if (kind == kind_kingside_castling) return {own_square<S>(h1), own_square<S>(f1), code_of(S, kingside_rook)};
    return {own_square<S>(a1), own_square<S>(d1), code_of(S, queenside_rook)};
}

/// Moves a castling rook between two squares, in either direction; the keys are the caller's.
template <Side S> void shift_rook(Game& g, int from, int to, int code) {
    const Bitboard squares = bit_mask(from) | bit_mask(to);
    rooks_of<S>(g) ^= squares;
    pieces_of<S>(g) ^= squares;
    toggle_rotated(g, RotatedBits(from) ^= RotatedBits(to));
    g.cells[from] = no_piece;
    g.cells[to] = static_cast<PieceCode>(code);
}

template <Side S> void castle_rook(Game& g, int kind) {
    const RookMove rook = castling_rook<S>(kind);
    shift_rook<S>(g, rook.from, rook.to, rook.code);
    toggle_man_keys(g, rook.from, rook.code);
    toggle_man_keys(g, rook.to, rook.code);
}

/// Sets the square passed over, if an enemy pawn stands ready to capture there; whether that would be legal isn't
/// asked.
template <Side S> void set_enpassant(Game& g, int passed) {
    constexpr Side them = other(S);
    if ((pawn_attacks<S>[passed] & pawns_of<them>(g)) == 0) return;
    g.enpassant = bit_mask(passed);
    g.ep_side = static_cast<std::int8_t>(turn_of<them>);
    toggle_both_keys(g, zobrist_ep_numbers[passed]);
}

/// Adds to side S's material and to the balance.
template <Side S> void add_material(Game& g, int value) {
    material_of<S>(g) += value;
    g.material += sign_of<S> * value;
}

/// Takes the man with this code of side S off the board and out of every count.
template <Side S> void remove_man(Game& g, int square, int code) {
    const Bitboard bit = bit_mask(square);
    pieces_of<S>(g) ^= bit;
    board_of<S>(g, man_of(code)) ^= bit;
    toggle_man_keys(g, square, code);
    add_material<S>(g, -piece_values[code]);
}

template <Side S> void capture_pawn_en_passant(Game& g, int target) {
    constexpr Side them = other(S);
    constexpr int code = code_of(them, pawn);
    const int square = target - up<S>;
    remove_man<them>(g, square, code);
    toggle_pawn_keys(g, square, code);
    toggle_rotated(g, RotatedBits(square));
    g.cells[square] = no_piece;
}

/// What a capture does beyond the board: the counters and rights of the side that lost the man.
template <Side S> void capture(Game& g, int square, int code) {
    constexpr Side them = other(S);
    g.fifty = 0;
    remove_man<them>(g, square, code);
    switch (man_of(code)) {
        case pawn: toggle_pawn_keys(g, square, code); break;
        case kingside_rook: lose_kingside_right<them>(g); break;
        case queenside_rook: lose_queenside_right<them>(g); break;
        default: break;
    }
}

template <Side S> void promote(Game& g, Move move) {
    constexpr int pawn_code = code_of(S, pawn);
    pawns_of<S>(g) ^= bit_mask(move.to);
    board_of<S>(g, man_of(move.kind)) ^= bit_mask(move.to);
    g.cells[move.to] = static_cast<PieceCode>(move.kind);
    toggle_man_keys(g, move.from, pawn_code);
    toggle_man_keys(g, move.to, move.kind);
    toggle_pawn_keys(g, move.to, pawn_code);
    add_material<S>(g, piece_values[move.kind] - pawn_value);
}

template <Side S> void make_for(Game& g, Move move) {
    const int from = move.from;
    const int to = move.to;
    const int mover = g.cells[from];
    const int captured = g.cells[to];
    const Bitboard squares = bit_mask(from) | bit_mask(to);

    if (g.fifty < fifty_ceiling) ++g.fifty;
    clear_enpassant(g);
    g.ep_side = -1;

    toggle_rotated(g, RotatedBits(from));
    if (captured == no_piece) {
        toggle_rotated(g, RotatedBits(to));
    } else {
        capture<S>(g, to, captured);
    }

    pieces_of<S>(g) ^= squares;
    switch (man_of(mover)) {
        case king:
            king_of<S>(g) ^= squares;
            king_square_of<S>(g) = to;
            lose_kingside_right<S>(g);
            lose_queenside_right<S>(g);
            if (is_castling(move.kind)) castle_rook<S>(g, move.kind);
            break;
        case queen: queens_of<S>(g) ^= squares; break;
        case bishop: bishops_of<S>(g) ^= squares; break;
        case knight: knights_of<S>(g) ^= squares; break;
        case kingside_rook:
            rooks_of<S>(g) ^= squares;
            lose_kingside_right<S>(g);
            break;
        case queenside_rook:
            rooks_of<S>(g) ^= squares;
            lose_queenside_right<S>(g);
            break;
        case plain_rook: rooks_of<S>(g) ^= squares; break;
        case pawn:
            g.fifty = 0;
            pawns_of<S>(g) ^= squares;
            toggle_pawn_keys(g, from, mover);
            toggle_pawn_keys(g, to, mover);
            if (move.kind == kind_double_step) set_enpassant<S>(g, from + up<S>);
            if (move.kind == kind_en_passant) capture_pawn_en_passant<S>(g, to);
            break;
    }

    g.cells[from] = no_piece;
    if (is_promotion(move.kind)) {
        promote<S>(g, move);
    } else {
        g.cells[to] = static_cast<PieceCode>(mover);
        toggle_man_keys(g, from, mover);
        toggle_man_keys(g, to, mover);
    }
    g.turn ^= 1U;
    toggle_both_keys(g, zobrist_side_number);
}

void restore_scalars(Game& g, const UndoRecord& undo) {
    g.enpassant = undo.enpassant;
    g.w_castle = undo.w_castle;
    g.b_castle = undo.b_castle;
    g.fifty = static_cast<std::uint8_t>(undo.fifty);
    g.material = undo.material;
    g.w_material = undo.w_material;
    g.b_material = undo.b_material;
    g.zobrist_key = undo.zobrist_key;
    g.zobrist_lock = undo.zobrist_lock;
    g.pawn_key = undo.pawn_key;
    g.pawn_lock = undo.pawn_lock;
    g.ep_side = undo.ep_side;
}

template <Side S> void put_back_en_passant(Game& g, int target) {
    constexpr Side them = other(S);
    const int square = target - up<S>;
    pieces_of<them>(g) ^= bit_mask(square);
    pawns_of<them>(g) ^= bit_mask(square);
    toggle_rotated(g, RotatedBits(square));
    g.cells[square] = code_of(them, pawn);
}

template <Side S> void unmake_for(Game& g, Move move, const UndoRecord& undo) {
    constexpr Side them = other(S);
    const int from = move.from;
    const int to = move.to;
    const Bitboard squares = bit_mask(from) | bit_mask(to);
    const int mover = is_promotion(move.kind) ? static_cast<int>(code_of(S, pawn)) : g.cells[to];

    restore_scalars(g, undo);
    pieces_of<S>(g) ^= squares;
    if (is_promotion(move.kind)) {
        board_of<S>(g, man_of(move.kind)) ^= bit_mask(to);
        pawns_of<S>(g) ^= bit_mask(from);
    } else {
        board_of<S>(g, man_of(mover)) ^= squares;
        if (mover == code_of(S, king)) {
            king_square_of<S>(g) = from;
            if (is_castling(move.kind)) {
                const RookMove rook = castling_rook<S>(move.kind);
                shift_rook<S>(g, rook.to, rook.from, rook.code);
            }
        }
        if (move.kind == kind_en_passant) put_back_en_passant<S>(g, to);
    }

    toggle_rotated(g, RotatedBits(from));
    if (undo.captured == no_piece) {
        toggle_rotated(g, RotatedBits(to));
    } else {
        pieces_of<them>(g) ^= bit_mask(to);
        board_of<them>(g, man_of(undo.captured)) ^= bit_mask(to);
    }
    g.cells[from] = static_cast<PieceCode>(mover);
    g.cells[to] = static_cast<PieceCode>(undo.captured);
    g.turn ^= 1U;
}

}  // namespace

void fill_undo(const Game* game, Move move, UndoRecord* undo) {
    undo->enpassant = game->enpassant;
    undo->w_castle = game->w_castle;
    undo->b_castle = game->b_castle;
    undo->fifty = game->fifty;
    undo->material = game->material;
    undo->w_material = game->w_material;
    undo->b_material = game->b_material;
    undo->zobrist_key = game->zobrist_key;
    undo->zobrist_lock = game->zobrist_lock;
    undo->pawn_key = game->pawn_key;
    undo->pawn_lock = game->pawn_lock;
    undo->captured = game->cells[move.to];
    undo->ep_side = game->ep_side;
}

UndoRecord* save_undo(const Game* game, Move move, int slot) {
    UndoRecord* undo = &undo_stack[slot];
    fill_undo(game, move, undo);
    return undo;
}

void make_move(Game* game, Move move) {
    if (piece_colour(game->cells[move.from]) == 0) {
        make_for<Side::white>(*game, move);
    } else {
        make_for<Side::black>(*game, move);
    }
}

void unmake_move(Game* game, Move move, const UndoRecord* undo) {
    if (piece_colour(game->cells[move.to]) == 0) {
        unmake_for<Side::white>(*game, move, *undo);
    } else {
        unmake_for<Side::black>(*game, move, *undo);
    }
}

void push_keys(Game* game) {
    game->draw_hash[game->draw_hash_count] = keys_of(*game);
    ++game->draw_hash_count;
}

void pop_keys(Game* game) { --game->draw_hash_count; }

void reset_draw_hash(Game* game) {
    game->draw_hash_count = 0;
    push_keys(game);
}

void make_and_push(Game* game, Move move) {
    make_move(game, move);
    push_keys(game);
}

void retract_move(Game* game, Move move, const UndoRecord* undo) {
    pop_keys(game);
    unmake_move(game, move, undo);
}

void add_game_move(Game* game, Move move) {
    if (record_is_full(*game)) return;
    game->game_moves[game->move_counter] = move;
    ++game->move_counter;
}

bool play_move(Move move, Game* game) {
    if (record_is_full(*game)) return false;
    make_and_push(game, move);
    add_game_move(game, move);
    return true;
}

bool make_if_legal(Game* game, Move move, int ply, const UndoRecord* undo) {
    search_stack[ply].captured = game->cells[move.to];
    const Side mover = side_to_move(*game);
    make_move(game, move);
    const bool illegal = mover == Side::white ? white_in_check(game) : black_in_check(game);
    if (illegal) unmake_move(game, move, undo);
    return !illegal;
}

void make_null(Game* game, int ply, UndoRecord* undo) {
    game->turn ^= 1U;
    search_stack[ply].captured = no_piece;
    undo->zobrist_key = game->zobrist_key;
    undo->zobrist_lock = game->zobrist_lock;
    undo->enpassant = game->enpassant;
    undo->ep_side = game->ep_side;
    toggle_both_keys(*game, zobrist_side_number);
    toggle_both_keys(*game, zobrist_null_number);
    clear_enpassant(*game);
    null_move_at[ply] = 1;
    push_keys(game);
}

void unmake_null(Game* game, const UndoRecord* undo) {
    game->turn ^= 1U;
    game->zobrist_key = undo->zobrist_key;
    game->zobrist_lock = undo->zobrist_lock;
    game->enpassant = undo->enpassant;
    game->ep_side = undo->ep_side;
    pop_keys(game);
}

}  // namespace varn
