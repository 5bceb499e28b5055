#include "search/quiesce.h"

#include <algorithm>

#include "board/draws.h"
#include "board/game_sides.h"
#include "board/legality.h"
#include "board/movegen.h"
#include "search/exchange.h"
#include "search/node.h"

namespace varn {

namespace {

/// Lazy evaluation: with much material on the board and a clear imbalance, material alone is the score.
bool material_decides(const Game& g) {
    constexpr int much_material = 3000;
    constexpr int clearly_behind = -299;
    constexpr int clearly_ahead = 302;
    if (g.w_material + g.b_material < much_material) return false;
    const int balance = balance_for_side_to_move(g);
    return balance <= clearly_behind || balance >= clearly_ahead;
}

constexpr int delta_margin = 300;  // positional gain allowed on top of the material won
constexpr int pruned = -1;         // scored like a losing capture, so not searched

/// The material that a capture or promotion gains. A promotion counts only the new piece, even if it captures. Delta
/// pruning comes before the exchange evaluation: a capture that cannot raise alpha even if the piece is won outright is
/// pruned.
int noisy_gain(const Game& game, Move move, int least) {
    if (is_promotion(move.kind)) return piece_values[move.kind] - pawn_value;
    if (move.kind == kind_en_passant) return exchange_gain(game, move, least);
    return piece_values[game.cells[move.to]] < least ? pruned : exchange_gain(game, move, least);
}

bool gives_cutoff(const QhashEntry& entry, int alpha, int beta) {
    if (entry.bound == bound_upper) return entry.score <= alpha;
    if (entry.bound == bound_lower) return entry.score >= beta;
    return true;
}

/// Counts the node; returns whether it may be searched.
bool enter_quiescent_node(Search& s) {
    ++s.quiescent_nodes;
    return enter_node(s);
}

/// `node_status` where no rule makes the position a draw.
int status_without_draws(const Game& game, const Pins& pins, int line_ply) {
    if (has_legal_move(game, pins)) return game_goes_on;
    if (pins.checkers == 0) return 0;
    return game.turn == Side::black ? mate_score - line_ply : line_ply - mate_score;
}

/// `static_score` of a position with this status.
int static_score_of(Search& s, const Game& game, int status) {
    int score = status;
    if (status == game_goes_on) {
        if (material_decides(game)) return balance_for_side_to_move(game);
        score = evaluate(game, s.eval);
    }
    return game.turn == Side::white ? score : -score;
}

/// Stand pat, then the captures and promotions that may raise alpha. `stand` is the static score.
int search_noisy_moves(Search& s, Game& game, const Pins& pins, int stand, int alpha, int beta, int ply, int line_ply) {
    QuiescenceTable& table = s.tables.quiescence_table;
    s.selective_depth = std::max(s.selective_depth, ply);
    if (stand >= beta) {
        qhash_store(table, game, stand, bound_lower);
        return stand;
    }
    if (ply >= last_ply) return stand;
    std::uint8_t bound = bound_upper;
    if (stand > alpha) {
        alpha = stand;
        bound = bound_exact;
    }

    int best = stand;
    bool raised_alpha = false;
    MoveList& list = s.move_lists[ply];
    generate_noisy(game, list);
    const int least = std::max(0, alpha - stand - delta_margin);
    for (int i = 0; i < list.count; ++i) {
        list.scores[i] = noisy_gain(game, list.moves[i], least);
        if (list.scores[i] >= least) prefetch_quiescent_child(table, game, list.moves[i]);
    }
    UndoRecord& undo = s.undo_stack[ply];
    save_undo(game, undo);
    for (int i = 0; i < list.count; ++i) {
        pick_best(list, i);
        const int gain = list.scores[i];
        if (gain < 0 || gain + stand + delta_margin < alpha) break;

        const Move move = list.moves[i];
        // Kept: docs/compatibility.md#captured-piece-of-a-ply
        s.search_stack[ply].captured = game.cells[move.to];
        if (!make_if_legal(game, move, pins, undo)) continue;
        const int value = -quiesce(s, game, -beta, -alpha, ply + 1, line_ply + 1);
        unmake_move(game, move, undo);
        best = std::max(best, value);
        if (value <= alpha) continue;
        if (value >= beta) {
            qhash_store(table, game, value, bound_lower);
            return value;
        }
        alpha = value;
        bound = bound_exact;
        raised_alpha = true;
    }
    const int result = raised_alpha ? alpha : best;
    qhash_store(table, game, result, bound);
    return result;
}

}  // namespace

int node_status(const Game& game, int line_ply) { return node_status(game, pins_of(game), line_ply); }

int node_status(const Game& game, const Pins& pins, int line_ply) {
    return draw_by_rule(game) ? 0 : status_without_draws(game, pins, line_ply);
}

int static_score(Search& s, const Game& game, int line_ply) { return static_score(s, game, pins_of(game), line_ply); }

int static_score(Search& s, const Game& game, const Pins& pins, int line_ply) {
    return static_score_of(s, game, node_status(game, pins, line_ply));
}

int quiesce(Search& s, Game& game, int alpha, int beta, int ply, int line_ply) {
    const bool may_search = enter_quiescent_node(s);
    prefetch_pawns(s.eval.pawns, game);
    if (insufficient_material(game)) return 0;
    if (!may_search) return abort_score;
    const QhashEntry* known = qhash_probe(s.tables.quiescence_table, game);
    if (known != nullptr && gives_cutoff(*known, alpha, beta)) return known->score;
    const Pins pins = pins_of(game);
    const int stand = static_score(s, game, pins, line_ply);
    return search_noisy_moves(s, game, pins, stand, alpha, beta, ply, line_ply);
}

int quiesce_leaf(Search& s, Game& game, const Pins& pins, int alpha, int beta, int ply, int line_ply) {
    if (!enter_quiescent_node(s)) return abort_score;
    const QhashEntry* known = qhash_probe(s.tables.quiescence_table, game);
    if (known != nullptr && gives_cutoff(*known, alpha, beta)) return known->score;
    const int stand = static_score_of(s, game, status_without_draws(game, pins, line_ply));
    return search_noisy_moves(s, game, pins, stand, alpha, beta, ply, line_ply);
}

}  // namespace varn
