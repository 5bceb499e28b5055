#include "search/think.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

#include "board/legality.h"

namespace varn {

namespace {

constexpr int aspiration = 50;      // half width of the aspiration window
constexpr int winning_score = 500;  // trades are encouraged from this score on

/// One of several best lines; its rank may change between iterations.
struct RootLine {
    PvLine pv;
    int score;
};

/// One iterative deepening search.
struct Deepening {
    Search& s;
    const Game& root;
    const SearchLimits& limits;
    std::vector<Move> excluded;   // legal root moves not to be searched
    std::vector<RootLine> lines;  // best first
    std::size_t lines_wanted;
};

void prepare_search(Search& s, const Game& game) {
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
    s.selective_depth = 0;
}

/// With a node limit the limits are checked at every node.
void set_limits(Search& s, const SearchLimits& limits) {
    const std::uint64_t left = limits.nodes - std::min(limits.nodes, s.search_nodes);
    s.nodes_allowed = static_cast<std::uint32_t>(std::min<std::uint64_t>(left, no_node_limit));
    s.time_interval_mask = limits.clock_interval;
    s.clock_interval_mask = s.nodes_allowed == no_node_limit ? limits.clock_interval : 0;
}

/// Nodes per second. An iteration faster than a clock tick counts as one tick.
double speed(std::uint32_t nodes, std::uint32_t milliseconds) { return nodes / (std::max(1U, milliseconds) * 0.001); }

/// Searches the line of this number, excluding the first moves of the better lines. Returns whether it was completed.
/// Line 0 is the ordinary search.
bool search_line(Deepening& d, std::size_t number, int depth) {
    Search& s = d.s;
    Game game = d.root;
    const bool known = number < d.lines.size();
    s.excluded_moves = d.excluded;
    for (std::size_t i = 0; i < number; ++i) s.excluded_moves.push_back(d.lines[i].pv.moves[0]);
    if (number > 0) s.main_pv = known ? d.lines[number].pv : PvLine{};
    const int centre = number > 0 && known ? d.lines[number].score : s.root_score;
    const int score = root_search(s, game, centre, depth);
    if (number == 0) s.root_score = score;
    if (score == abort_score) return false;
    if (!known) d.lines.emplace_back();
    d.lines[number] = {s.main_pv, score};
    return true;
}

/// Sorts the lines by score, best first; equal ones keep their order. By insertion: std::stable_sort may call a
/// function that the standard has deprecated, of which newer compilers warn.
void sort_lines(std::vector<RootLine>& lines) {
    for (auto line = lines.begin(); line != lines.end(); ++line) {
        std::rotate(std::ranges::upper_bound(lines.begin(), line, line->score, std::greater{}, &RootLine::score), line,
                    line + 1);
    }
}

/// Searches all lines to one depth. Returns whether the iteration was completed. The first line is used even if
/// unfinished: it holds the best move so far.
bool run_iteration(Deepening& d, int depth) {
    Search& s = d.s;
    s.nodes = 0;
    s.quiescent_nodes = 0;
    s.iteration_depth = depth;
    set_limits(s, d.limits);
    clear_killer_counts(s.killers);
    bool finished = true;
    for (std::size_t number = 0; finished && number < d.lines_wanted; ++number) {
        s.line_number = static_cast<int>(number) + 1;
        finished = search_line(d, number, depth);
        if (number > 0) s.main_pv = d.lines[0].pv;
    }
    s.search_nodes += s.nodes;
    s.excluded_moves.clear();
    if (finished) sort_lines(d.lines);
    if (finished && d.lines_wanted > 1) s.main_pv = d.lines[0].pv;
    return finished;
}

void set_trade_flags(Search& s, Side turn) {
    const bool winning = s.root_score >= winning_score;
    s.eval.w_trade_flag = winning && turn == Side::white;
    s.eval.b_trade_flag = winning && turn == Side::black;
}

void report_lines(const Deepening& d, std::uint32_t milliseconds) {
    const Search& s = d.s;
    if (!s.listener->iteration_finished) return;
    for (std::size_t i = 0; i < d.lines.size(); ++i) {
        s.listener->iteration_finished({d.root, d.lines[i].pv, s.iteration_depth, d.lines[i].score, s.nodes,
                                        s.quiescent_nodes, milliseconds, s.search_nodes, s.selective_depth,
                                        static_cast<int>(i) + 1, false});
    }
}

bool finds_mate_in(int score, int moves) { return moves > 0 && score <= mate_score && mate_score - score < 2 * moves; }

/// Deepens until a limit stops it. Returns the speed of the last finished iteration.
double deepen(Deepening& d) {
    Search& s = d.s;
    double nodes_per_second = 0;
    for (int depth = 1; depth <= std::clamp(d.limits.depth, 1, deepest_iteration); ++depth) {
        const std::uint32_t started = clock_ms();
        if (!run_iteration(d, depth)) break;
        set_trade_flags(s, d.root.turn);
        const std::uint32_t milliseconds = clock_ms() - started;
        nodes_per_second = speed(s.nodes, milliseconds);
        report_lines(d, milliseconds);
        if (finds_mate_in(d.lines[0].score, d.limits.mate)) break;
    }
    return nodes_per_second;
}

/// The second move of the principal variation, for pondering. A stale tail may not fit the first move; then there is
/// none.
std::optional<Move> expected_reply(const Search& s, const Game& game) {
    if (s.main_pv.length < 2) return std::nullopt;
    Game after = game;
    make_move(after, s.main_pv.moves[0]);
    return is_valid_move(after, s.main_pv.moves[1]) ? std::optional(s.main_pv.moves[1]) : std::nullopt;
}

bool contains(const std::vector<Move>& moves, Move move) { return std::ranges::find(moves, move) != moves.end(); }

/// Leaves only the allowed root moves in the list and returns the others.
std::vector<Move> exclude_moves(MoveList& legal, const std::vector<Move>& only) {
    if (only.empty()) return {};
    const auto is_forbidden = [&](Move move) { return !contains(only, move); };
    std::vector<Move> excluded;
    std::ranges::copy_if(legal, std::back_inserter(excluded), is_forbidden);
    const Move* end = std::remove_if(legal.moves.begin(), legal.moves.begin() + legal.count, is_forbidden);
    legal.count = static_cast<std::int32_t>(end - legal.moves.begin());
    return excluded;
}

}  // namespace

std::optional<Move> think(Search& s, const Game& game, const SearchLimits& limits, const SearchListener& listener) {
    s.predicted_move.reset();
    MoveList legal = legal_moves(game);
    if (legal.count == 0) return std::nullopt;
    if (legal.count == 1 && !limits.search_forced) return legal.moves[0];

    if (listener.search_started) listener.search_started();
    prepare_search(s, game);
    if (!limits.clock_runs) start_clock(s.clock);
    s.listener = &listener;
    std::vector<Move> excluded = exclude_moves(legal, limits.only);
    const auto lines = static_cast<std::size_t>(std::clamp(limits.lines, 1, legal.count));
    Deepening deepening = {s, game, limits, std::move(excluded), {}, lines};
    const double nodes_per_second = deepen(deepening);
    s.listener = nullptr;
    if (listener.search_finished) listener.search_finished(nodes_per_second);
    s.predicted_move = expected_reply(s, game);
    // If no move raised alpha before the stop there is no line; any legal move will do.
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
