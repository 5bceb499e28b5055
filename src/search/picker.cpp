#include "search/picker.h"

#include <limits>

#include "board/attacks.h"
#include "board/movegen.h"

namespace varn {

namespace {

using Stage = Picker::Stage;

bool is_empty(const MoveQueue& queue) { return queue.next >= queue.list.count; }

/// Makes a move known to be legal and returns it.
Move make_legal(Search& s, Game& game, const Picker& picker, Move move) {
    fill_undo(game, move, s.undo_stack[picker.ply]);
    s.search_stack[picker.ply] = {move, game.cells[move.to]};
    make_and_push(game, move);
    return move;
}

/// Makes a pseudo-legal move if it is legal. Returns whether it was made.
bool try_move(Search& s, Game& game, const Picker& picker, Move move) {
    UndoRecord& undo = s.undo_stack[picker.ply];
    save_undo(game, undo);
    // Kept: docs/compatibility.md#captured-piece-of-a-ply
    s.search_stack[picker.ply].captured = game.cells[move.to];
    if (!make_if_legal(game, move, picker.pins, undo)) return false;
    push_keys(game);
    s.search_stack[picker.ply].move = move;
    return true;
}

std::optional<Move> pick_capture(Search& s, Game& game, Picker& picker, int lowest_score) {
    MoveQueue& captures = picker.captures;
    while (!is_empty(captures)) {
        pick_best(captures.list, captures.next);
        if (captures.list.scores[captures.next] < lowest_score) return std::nullopt;
        const Move move = captures.list.moves[captures.next++];
        if (move == picker.first_move) continue;
        if (try_move(s, game, picker, move)) return move;
    }
    return std::nullopt;
}

std::optional<Move> pick_promotion(Search& s, Game& game, Picker& picker) {
    MoveQueue& promotions = picker.promotions;
    while (!is_empty(promotions)) {
        const Move move = promotions.list.moves[promotions.next++];
        if (move != picker.first_move && try_move(s, game, picker, move)) return move;
    }
    return std::nullopt;
}

std::optional<Move> pick_quiet(Search& s, Game& game, Picker& picker) {
    MoveQueue& quiets = picker.quiets;
    while (!is_empty(quiets)) {
        const Move move = quiets.list.moves[quiets.next++];
        if (move == picker.first_move || move == picker.killer_one || move == picker.killer_two) continue;
        if (try_move(s, game, picker, move)) return move;
    }
    return std::nullopt;
}

std::optional<Move> pick_killer(Search& s, Game& game, const Picker& picker, Move killer, int piece) {
    if (!same_mover(game.cells[killer.from], piece) || killer == picker.first_move) return std::nullopt;
    if (!killer_valid(game, picker.pins, killer)) return std::nullopt;
    return make_legal(s, game, picker, killer);
}

/// Prefetches the child of a killer that may turn out to be legal.
void prefetch_killer(const HashTables& tables, const Game& game, Move killer, int piece) {
    if (same_mover(game.cells[killer.from], piece)) prefetch_child(tables, game, killer);
}

void fill_quiets(Search& s, const Game& game, const Picker& picker) {
    MoveList& list = picker.quiets.list;
    add_quiets(game, list);
    prefetch_children(s.tables, game, list);
    const bool deep = picker.depth > s.iteration_depth / 2;
    if (!deep || !enhanced_transposition(s.tables.transposition_table, game, list, picker.depth - 1, picker.beta)) {
        score_quiets(list, game, s.history);
    }
    sort_quiets(list);
}

template <Side S> bool pawn_steps_to(const Game& g, int from, int to, int kind) {
    const Bitboard free = ~occupied(g);
    const Bitboard single = ahead<S>(bit_mask(from)) & free;
    if (kind == kind_quiet) return single == bit_mask(to);
    const bool at_home = rank_of(from) == own_rank<S>(2);
    return at_home && (ahead<S>(single) & free) == bit_mask(to);
}

bool reaches(const Game& g, Move move) {
    const Bitboard target = bit_mask(move.to);
    const int code = g.cells[move.from];
    switch (type_of(code)) {
        case king: return (king_moves[move.from] & target) != 0;
        case knight: return (knight_moves[move.from] & target) != 0;
        case bishop: return (bishop_reach(g, move.from) & target) != 0;
        case queen: return ((rook_reach(g, move.from) | bishop_reach(g, move.from)) & target) != 0;
        case pawn:
            return side_of(code) == Side::white ? pawn_steps_to<Side::white>(g, move.from, move.to, move.kind)
                                                : pawn_steps_to<Side::black>(g, move.from, move.to, move.kind);
        default: return (rook_reach(g, move.from) & target) != 0;
    }
}

}  // namespace

void prefetch_killers(const Search& s, const Game& game, int line_ply) {
    const int index = killer_index(game, line_ply);
    prefetch_killer(s.tables, game, s.killers.killer_one[index].move, s.killers.killer_one_piece[index]);
    prefetch_killer(s.tables, game, s.killers.killer_two[index].move, s.killers.killer_two_piece[index]);
}

bool killer_valid(const Game& game, Move move) { return killer_valid(game, pins_of(game), move); }

bool killer_valid(const Game& game, const Pins& pins, Move move) {
    if (move.kind != kind_quiet && move.kind != kind_double_step) return false;
    if (move.from == move.to || game.cells[move.from] == no_piece || game.cells[move.to] != no_piece) return false;
    return reaches(game, move) && is_legal_under(game, pins, move);
}

Picker make_picker(Search& s, const Pins& pins, int ply, int line_ply, int beta, int depth,
                   std::optional<Move> first_move) {
    for (auto* lists : {&s.capture_lists, &s.promotion_lists, &s.quiet_lists}) (*lists)[ply].count = 0;
    return {pins,
            ply,
            line_ply,
            beta,
            depth,
            first_move,
            {s.capture_lists[ply]},
            {s.promotion_lists[ply]},
            {s.quiet_lists[ply]}};
}

std::optional<Move> next_move(Search& s, Game& game, Picker& picker) {
    const int killer = killer_index(game, picker.line_ply);
    std::optional<Move> made;
    switch (picker.stage) {
        case Stage::first_move:
            picker.stage = Stage::make_captures;
            if (picker.first_move) {
                prefetch_child(s.tables, game, *picker.first_move);
                return make_legal(s, game, picker, *picker.first_move);
            }
            [[fallthrough]];
        case Stage::make_captures:
            add_captures(game, picker.captures.list);
            prefetch_children(s.tables, game, picker.captures.list);
            score_captures(picker.captures.list, game);
            picker.stage = Stage::good_captures;
            [[fallthrough]];
        case Stage::good_captures:
            if ((made = pick_capture(s, game, picker, 0))) return made;
            add_promotions(game, picker.promotions.list);
            prefetch_children(s.tables, game, picker.promotions.list);
            picker.stage = Stage::promotions;
            [[fallthrough]];
        case Stage::promotions:
            if ((made = pick_promotion(s, game, picker))) return made;
            picker.stage = Stage::first_killer;
            [[fallthrough]];
        case Stage::first_killer:
            picker.stage = Stage::second_killer;
            made = pick_killer(s, game, picker, s.killers.killer_one[killer].move, s.killers.killer_one_piece[killer]);
            if (made) return picker.killer_one = made;
            [[fallthrough]];
        case Stage::second_killer:
            picker.stage = Stage::make_quiets;
            made = pick_killer(s, game, picker, s.killers.killer_two[killer].move, s.killers.killer_two_piece[killer]);
            if (made) return picker.killer_two = made;
            [[fallthrough]];
        case Stage::make_quiets:
            fill_quiets(s, game, picker);
            picker.stage = Stage::quiets;
            [[fallthrough]];
        case Stage::quiets:
            if ((made = pick_quiet(s, game, picker))) return made;
            picker.stage = Stage::bad_captures;
            [[fallthrough]];
        case Stage::bad_captures:
            if ((made = pick_capture(s, game, picker, std::numeric_limits<int>::min()))) return made;
            picker.stage = Stage::done;
            [[fallthrough]];
        case Stage::done: return std::nullopt;
    }
    return std::nullopt;
}

}  // namespace varn
