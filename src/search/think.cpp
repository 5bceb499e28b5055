#include "search/think.h"

#include <algorithm>

#include "board/legality.h"

namespace varn {

namespace {

constexpr int aspiration = 50;      // half the window round the last score
constexpr int winning_score = 500;  // from here on trading pays

void start_afresh(Search& s, const Game& game) {
    clear_history(s.history);
    hash_clear(s.tables.transposition_table);
    pawn_hash_clear(s.eval.pawns);
    s.main_pv.length = 0;
    s.main_pv.keys = {};
    s.main_pv.locks = {};
    s.eval.root_material = game.w_material + game.b_material;
    s.eval.w_trade_flag = false;
    s.eval.b_trade_flag = false;
    s.search_nodes = 0;
}

/// Nodes a second; an iteration faster than the clock's tick counts as one tick.
double speed(std::uint32_t nodes, std::uint32_t milliseconds) { return nodes / (std::max(1U, milliseconds) * 0.001); }

/// One iteration; returns whether it was finished.
bool finish_iteration(Search& s, const Game& root, int depth) {
    Game game = root;
    s.nodes = 0;
    s.quiescent_nodes = 0;
    s.iteration_depth = depth;
    clear_killer_counts(s.killers);
    s.root_score = root_search(s, game, s.root_score, depth);
    s.search_nodes += s.nodes;
    return s.root_score != abort_score;
}

void set_trade_flags(Search& s, Side turn) {
    const bool winning = s.root_score >= winning_score;
    s.eval.w_trade_flag = winning && turn == Side::white;
    s.eval.b_trade_flag = winning && turn == Side::black;
}

/// Deepens until the clock or the last depth ends it; returns the speed of the last finished iteration.
double deepen(Search& s, const Game& game, int last_depth) {
    double nodes_per_second = 0;
    for (int depth = 1; depth <= std::clamp(last_depth, 1, deepest_iteration); ++depth) {
        const std::uint32_t started = clock_ms();
        if (!finish_iteration(s, game, depth)) break;
        set_trade_flags(s, game.turn);
        const std::uint32_t milliseconds = clock_ms() - started;
        nodes_per_second = speed(s.nodes, milliseconds);
        if (s.listener->iteration_finished) {
            s.listener->iteration_finished(
                {game, s.main_pv, depth, s.root_score, s.nodes, s.quiescent_nodes, milliseconds});
        }
    }
    return nodes_per_second;
}

/// The main line's second move. What a sibling left behind the first one may not follow from it: no reply then.
std::optional<Move> expected_reply(const Search& s, const Game& game) {
    if (s.main_pv.length < 2) return std::nullopt;
    Game after = game;
    make_move(after, s.main_pv.moves[0]);
    return is_valid_move(after, s.main_pv.moves[1]) ? std::optional(s.main_pv.moves[1]) : std::nullopt;
}

}  // namespace

std::optional<Move> think(Search& s, const Game& game, const SearchLimits& limits, const SearchListener& listener) {
    s.predicted_move.reset();
    const MoveList legal = legal_moves(game);
    if (legal.count == 0) return std::nullopt;
    if (legal.count == 1) return legal.moves[0];

    if (listener.search_started) listener.search_started();
    start_afresh(s, game);
    if (!limits.clock_runs) start_clock(s.clock);
    s.listener = &listener;
    const double nodes_per_second = deepen(s, game, limits.depth);
    s.listener = nullptr;
    if (listener.search_finished) listener.search_finished(nodes_per_second);
    s.predicted_move = expected_reply(s, game);
    // A search stopped before its first move raised alpha has no line; any legal move is better than none.
    return s.main_pv.length > 0 ? s.main_pv.moves[0] : legal.moves[0];
}

int root_search(Search& s, Game& game, int centre, int depth) {
    const auto search_root = [&](int alpha, int beta) {
        for (auto& ply : s.search_stack) ply.captured = no_piece;
        s.null_move_at = {};
        return search(s, game, alpha, beta, depth, root_frame, s.main_pv);
    };
    const int alpha = centre - aspiration;
    const int beta = centre + aspiration;
    const int score = search_root(alpha, beta);
    if (score > alpha && score < beta) return score;
    return search_root(-full_window, full_window);
}

}  // namespace varn
