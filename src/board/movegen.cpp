#include "board/movegen.h"

#include "board/attacks.h"

namespace varn {

Table<MoveList, ply_slots + 1> move_lists;

namespace {

void add_move(MoveList& list, int from, int to, std::uint8_t kind) {
    list.moves[list.count++] = {static_cast<std::uint8_t>(from), static_cast<std::uint8_t>(to), kind};
}

/// One man's moves to each of the targets.
void add_moves(MoveList& list, int from, Bitboard targets, std::uint8_t kind) {
    while (targets != 0) add_move(list, from, pop_first(targets), kind);
}

/// A stepping man's moves, or a slider's along one line: `reach` gives what the man on a square reaches.
template <typename Reach>
void add_moves_of(MoveList& list, Bitboard men, Bitboard targets, std::uint8_t kind, Reach reach) {
    while (men != 0) {
        const int from = pop_first(men);
        add_moves(list, from, reach(from) & targets, kind);
    }
}

/// All men but the pawns, each to the squares of `targets` that it reaches.
template <Side S> void add_piece_targets(const Game& g, MoveList& list, Bitboard targets, std::uint8_t kind) {
    const auto along_rank = [&g](int square) { return rank_reach(g, square); };
    const auto along_file = [&g](int square) { return file_reach(g, square); };
    const auto along_r45b = [&g](int square) { return r45b_reach(g, square); };
    const auto along_r45f = [&g](int square) { return r45f_reach(g, square); };

    add_moves_of(list, knights_of<S>(g), targets, kind, [](int square) { return knight_moves[square]; });
    add_moves_of(list, bishops_of<S>(g), targets, kind, along_r45b);
    add_moves_of(list, bishops_of<S>(g), targets, kind, along_r45f);
    add_moves_of(list, rooks_of<S>(g), targets, kind, along_rank);
    add_moves_of(list, rooks_of<S>(g), targets, kind, along_file);
    add_moves_of(list, queens_of<S>(g), targets, kind, along_rank);
    add_moves_of(list, queens_of<S>(g), targets, kind, along_file);
    add_moves_of(list, queens_of<S>(g), targets, kind, along_r45b);
    add_moves_of(list, queens_of<S>(g), targets, kind, along_r45f);
    add_moves(list, king_square_of<S>(g), king_moves[king_square_of<S>(g)] & targets, kind);
}

template <Side S> void add_four_promotions(MoveList& list, int from, int to) {
    for (const Man man : {queen, plain_rook, bishop, knight}) {
        add_move(list, from, to, static_cast<std::uint8_t>(code_of(S, man)));
    }
}

template <Side S> void add_pawn_captures(const Game& g, MoveList& list, Bitboard targets) {
    Bitboard pawns = pawns_of<S>(g);
    while (pawns != 0) {
        const int from = pop_first(pawns);
        Bitboard captures = pawn_attacks<S>[from] & targets;
        while (captures != 0) {
            const int to = pop_first(captures);
            if (rank_of(to) == own_rank<S>(8)) {
                add_four_promotions<S>(list, from, to);
            } else {
                add_move(list, from, to, kind_capture);
            }
        }
    }
}

template <Side S> void add_en_passant(const Game& g, MoveList& list) {
    const Bitboard target = g.enpassant & own_rank_mask<S>(6);
    if (target == 0 || g.ep_side != turn_of<S>) return;
    const int to = first_one(target);
    Bitboard pawns = pawn_attacks<other(S)>[to] & pawns_of<S>(g);
    while (pawns != 0) add_move(list, pop_first(pawns), to, kind_en_passant);
}

/// Pawns of the side with an empty square in front of them.
template <Side S> Bitboard free_pawns(const Game& g) { return pawns_of<S>(g) & ~behind<S>(occupied(g)); }

template <Side S> bool any_attacked(const Game& g, int first, int second) {
    return attacked_by<other(S)>(g, own_square<S>(first)) || attacked_by<other(S)>(g, own_square<S>(second));
}

template <Side S> void add_captures(const Game& g, MoveList& list) {
    constexpr Side them = other(S);
    const Bitboard targets = pieces_of<them>(g) & not_bit(king_square_of<them>(g));
    add_pawn_captures<S>(g, list, targets);
    add_en_passant<S>(g, list);
    add_piece_targets<S>(g, list, targets, kind_capture);
}

template <Side S> void add_promotions(const Game& g, MoveList& list) {
    Bitboard pawns = free_pawns<S>(g) & own_rank_mask<S>(7);
    while (pawns != 0) {
        const int from = pop_first(pawns);
        add_four_promotions<S>(list, from, from + up<S>);
    }
}

template <Side S> void add_castling(const Game& g, MoveList& list) {
    // The rights alone stand for king and rook on their squares: a right doesn't survive their leaving them.
    const std::uint32_t rights = castle_of<S>(g);
    if (rights == 0 || king_attacked<S>(g)) return;
    const Bitboard men = occupied(g);
    if ((rights & kingside_right) != 0 && (kingside_path<S> & men) == 0 && !any_attacked<S>(g, f1, g1)) {
        add_move(list, own_square<S>(e1), own_square<S>(g1), kind_kingside_castling);
    }
    if ((rights & queenside_right) != 0 && (queenside_path<S> & men) == 0 && !any_attacked<S>(g, d1, c1)) {
        add_move(list, own_square<S>(e1), own_square<S>(c1), kind_queenside_castling);
    }
}

template <Side S> void add_piece_moves(const Game& g, MoveList& list) {
    add_piece_targets<S>(g, list, ~occupied(g), kind_quiet);
}

template <Side S> void add_pawn_steps(const Game& g, MoveList& list) {
    const Bitboard free = free_pawns<S>(g);
    Bitboard doubles = free & own_rank_mask<S>(2) & ~behind<S>(behind<S>(occupied(g)));
    while (doubles != 0) {
        const int from = pop_first(doubles);
        add_move(list, from, from + 2 * up<S>, kind_double_step);
    }
    Bitboard singles = free & ~own_rank_mask<S>(7);
    while (singles != 0) {
        const int from = pop_first(singles);
        add_move(list, from, from + up<S>, kind_quiet);
    }
}

template <Side S> void add_quiets(const Game& g, MoveList& list) {
    add_castling<S>(g, list);
    add_piece_moves<S>(g, list);
    add_pawn_steps<S>(g, list);
}

template <Side S> void add_all(const Game& g, MoveList& list) {
    add_captures<S>(g, list);
    add_promotions<S>(g, list);
    add_quiets<S>(g, list);
}

MoveList* empty_list(int slot) {
    move_lists[slot].count = 0;
    return &move_lists[slot];
}

}  // namespace

void add_white_captures(const Game* game, MoveList* list) { add_captures<Side::white>(*game, *list); }
void add_black_captures(const Game* game, MoveList* list) { add_captures<Side::black>(*game, *list); }
void add_white_promotions(const Game* game, MoveList* list) { add_promotions<Side::white>(*game, *list); }
void add_black_promotions(const Game* game, MoveList* list) { add_promotions<Side::black>(*game, *list); }
void add_quiets_white(const Game* game, MoveList* list) { add_quiets<Side::white>(*game, *list); }
void add_quiets_black(const Game* game, MoveList* list) { add_quiets<Side::black>(*game, *list); }
void add_all_white(const Game* game, MoveList* list) { add_all<Side::white>(*game, *list); }
void add_all_black(const Game* game, MoveList* list) { add_all<Side::black>(*game, *list); }

void add_captures(const Game* game, MoveList* list) {
    game->turn == 0 ? add_white_captures(game, list) : add_black_captures(game, list);
}

void add_promotions(const Game* game, MoveList* list) {
    game->turn == 0 ? add_white_promotions(game, list) : add_black_promotions(game, list);
}

void add_quiets(const Game* game, MoveList* list) {
    game->turn == 0 ? add_quiets_white(game, list) : add_quiets_black(game, list);
}

void add_all(const Game* game, MoveList* list) {
    game->turn == 0 ? add_all_white(game, list) : add_all_black(game, list);
}

MoveList* generate_captures(const Game* game, int slot) {
    MoveList* list = empty_list(slot);
    add_captures(game, list);
    return list;
}

MoveList* generate_noisy(const Game* game, int slot) {
    MoveList* list = generate_captures(game, slot);
    add_promotions(game, list);
    return list;
}

MoveList* generate_all(const Game* game, int slot) {
    MoveList* list = empty_list(slot);
    add_all(game, list);
    return list;
}

}  // namespace varn
