#include "search/search.h"

#include <algorithm>

#include "board/attacks.h"
#include "board/draws.h"
#include "board/game_sides.h"
#include "search/node.h"
#include "search/picker.h"
#include "search/quiesce.h"

namespace varn {

namespace {

/// The root may exclude moves and reports progress.
enum class NodeType : bool { root, inner };

/// The state of one node; `alpha` and `depth` change during its steps.
struct Node {
    Search& s;
    Game& game;
    int alpha;
    int beta;
    int depth;
    int ply;
    int line_ply;
    SearchFrame frame;  // of this node, then advanced for the children
    bool null_allowed = true;
};

/// Check extension, or recapture extension: the last move recaptured about what was captured, a knight at least.
bool extend_for_check_or_recapture(const Node& node) {
    const Search& s = node.s;
    if (s.in_check_at[node.ply] != 0) return true;
    if (node.ply < 2) return false;
    const int captured = s.search_stack[node.ply - 2].captured;
    const int recaptured = s.search_stack[node.ply - 1].captured;
    if (captured == no_piece || recaptured == no_piece || piece_values[captured] < knight_value) return false;
    constexpr int even = 49;  // centipawns
    const int difference = signed_piece_values[captured] + signed_piece_values[recaptured];
    return difference >= -even && difference <= even;
}

/// Whether the search is about to drop into quiescence right after a pawn reached the seventh rank; once per line.
bool extend_for_pawn_on_seventh(Node& node) {
    if (node.depth != 0 || node.ply == 0 || node.frame.pawn_extensions != 0) return false;
    const int to = node.s.search_stack[node.ply - 1].move.to;
    const int code = node.game.cells[to];
    const bool on_seventh = (code == code_of(Side::white, pawn) && rank_of(to) == 7) ||
                            (code == code_of(Side::black, pawn) && rank_of(to) == 2);
    if (on_seventh) ++node.frame.pawn_extensions;
    return on_seventh;
}

void extend(Node& node) {
    if (node.frame.total_extensions > 2 * node.s.iteration_depth) return;
    if (extend_for_check_or_recapture(node) || extend_for_pawn_on_seventh(node)) {
        ++node.depth;
        ++node.frame.total_extensions;
    }
}

/// The table's score with mates counted from the root; 0 if the table move leads to a draw in this game.
int score_from_table(const Node& node, const HashEntry& entry) {
    if (entry.has_move != 0 && draw_after_move(node.game, entry.move)) return 0;
    if (!is_mate_score(entry.score)) return entry.score;
    return entry.score > 0 ? entry.score - node.line_ply : entry.score + node.line_ply;
}

/// The score if the table entry causes a cutoff. An exact score inside the window does not, so that the principal
/// variation is always searched in full; like an upper bound inside the window it disables the null move.
std::optional<int> table_cutoff(Node& node) {
    const HashEntry* entry = hash_probe(node.s.tables.transposition_table, node.game, node.depth);
    if (entry == nullptr) return std::nullopt;
    const int score = score_from_table(node, *entry);
    const bool low = score <= node.alpha;
    const bool high = score >= node.beta;
    switch (entry->bound) {
        case bound_upper:
            if (low) return score;
            break;
        case bound_lower:
            if (high) return score;
            return std::nullopt;
        default:
            if (low || high) return score;
            break;
    }
    if (!low && !high) node.null_allowed = false;
    return std::nullopt;
}

/// Whether the principal variation passes through this position.
bool on_main_line(const Node& node) {
    const PvLine& line = node.s.main_pv;
    return line.keys[node.line_ply] == node.game.zobrist_key && line.locks[node.line_ply] == node.game.zobrist_lock;
}

/// Guard against zugzwang: each side has more than a bishop, and not only pawns are left.
bool enough_material(const Game& g) {
    const Bitboard pawns_and_kings = g.w_pawns | g.b_pawns | g.w_king | g.b_king;
    return g.w_material > bishop_value && g.b_material > bishop_value && pawns_and_kings != occupied(g);
}

/// Null move conditions: material near beta, not in check, no null move before it, not on the principal variation, and
/// enough material.
bool null_move_allowed(const Node& node) {
    constexpr int margin = 100;
    const Search& s = node.s;
    return balance_for_side_to_move(node.game) + margin >= node.beta && node.beta < mate_score && node.null_allowed &&
           !on_main_line(node) && node.ply > 0 && node.depth >= 2 && s.null_move_at[node.ply - 1] == 0 &&
           s.in_check_at[node.ply] == 0 && enough_material(node.game);
}

/// The score of the null-move search. A null move is not counted in `line_ply`, so that mate scores count real moves
/// only.
int null_move_value(const Node& node) {
    constexpr int reduction = 3;
    Search& s = node.s;
    SearchFrame frame = node.frame;
    --frame.line_ply;
    const int depth = node.depth - reduction;
    UndoRecord& undo = s.undo_stack[node.ply];
    s.search_stack[node.ply].captured = no_piece;
    s.null_move_at[node.ply] = 1;
    make_null(node.game, undo);
    const int value = depth > 0 ? -search(s, node.game, -node.beta, 1 - node.beta, depth, frame, s.null_pv)
                                : -quiesce(s, node.game, -node.beta, 1 - node.beta, frame.ply, frame.line_ply);
    unmake_null(node.game, undo);
    return value;
}

/// Principal variation search: once a move has raised alpha, later moves get a null window first.
int child_value(const Node& node, bool raised_alpha, PvLine& line) {
    const auto search_child = [&](int lower, int upper) {
        return -search(node.s, node.game, -upper, -lower, node.depth - 1, node.frame, line);
    };
    if (!raised_alpha) return search_child(node.alpha, node.beta);
    const int value = search_child(node.alpha, node.alpha + 1);
    return value > node.alpha && value < node.beta ? search_child(node.alpha, node.beta) : value;
}

void update_pv(PvLine& line, const Game& g, Move move, const PvLine& tail) {
    line.moves[0] = move;
    line.keys[0] = g.zobrist_key;
    line.locks[0] = g.zobrist_lock;
    const int copied = std::min(tail.length, ply_slots - 1);
    std::copy_n(tail.moves.begin(), copied, line.moves.begin() + 1);
    std::copy_n(tail.keys.begin(), copied, line.keys.begin() + 1);
    std::copy_n(tail.locks.begin(), copied, line.locks.begin() + 1);
    line.length = copied + 1;
}

/// The score of a node without a move to search: mate, stalemate or a draw by rule, otherwise the static score.
int score_without_moves(const Node& node) {
    int score = node_status(node.game, node.line_ply);
    if (score == game_goes_on) {
        score = static_score(node.s, node.game, node.line_ply + 1);
    } else if (node.game.turn == Side::black) {
        score = -score;
    }
    hash_store(node.s.tables.transposition_table, node.game, node.depth, std::nullopt, score, bound_exact);
    return score;
}

void report_improved_line(const Node& node, int score) {
    const Search& s = node.s;
    if (s.listener == nullptr || !s.listener->line_improved) return;
    s.listener->line_improved({node.game, s.main_pv, s.iteration_depth, score, s.nodes, s.quiescent_nodes, 0,
                               s.search_nodes + s.nodes, s.selective_depth, s.line_number, score >= node.beta});
}

void report_root_move(const Search& s, Move move, int number) {
    if (s.listener != nullptr && s.listener->root_move_started) s.listener->root_move_started(move, number);
}

bool is_excluded(const Search& s, Move move) {
    return std::ranges::find(s.excluded_moves, move) != s.excluded_moves.end();
}

/// A search with excluded root moves must not use the table at the root.
bool may_use_table(const Node& node) { return node.ply != 0 || node.s.excluded_moves.empty(); }

template <NodeType type> int search_moves(Node& node, const Pins& pins, PvLine& pv) {
    Search& s = node.s;
    Game& game = node.game;
    TranspositionTable& table = s.tables.transposition_table;
    PvLine& line = s.lines[node.ply];
    int best_score = no_score;
    std::optional<Move> best_move;
    std::uint8_t bound = bound_upper;
    int move_number = 0;

    const auto first = first_move(s, game, node.ply, node.alpha, node.beta, node.depth);
    Picker picker = make_picker(s, pins, node.ply, node.line_ply, node.beta, node.depth, first);
    line.length = 0;
    std::optional<Move> made = next_move(s, game, picker);
    if (!made) return score_without_moves(node);
    for (; made; made = next_move(s, game, picker)) {
        const Move move = *made;
        if constexpr (type == NodeType::root) {
            if (is_excluded(s, move)) {
                retract_move(game, move, s.undo_stack[node.ply]);
                continue;
            }
            report_root_move(s, move, ++move_number);
        }
        const int value = child_value(node, best_move.has_value(), line);
        best_score = std::max(best_score, value);
        retract_move(game, move, s.undo_stack[node.ply]);
        // Checked before the value is used: an aborted child must change nothing.
        if (!clock_ok(s)) return abort_score;
        if (value <= node.alpha) continue;

        node.alpha = value;
        bound = bound_exact;
        best_move = move;
        update_pv(pv, game, move, line);
        if constexpr (type == NodeType::root) report_improved_line(node, value);
        history_update(s.history, game, move, node.depth);
        if (value >= node.beta) {
            killer_update(s.killers, game, move, node.line_ply);
            if (may_use_table(node)) hash_store(table, game, node.depth, move, value, bound_lower);
            return value;
        }
    }
    if (may_use_table(node)) hash_store(table, game, node.depth, best_move, best_score, bound);
    return best_score;
}

}  // namespace

int search(Search& s, Game& game, int alpha, int beta, int depth, SearchFrame frame, PvLine& pv) {
    if (!enter_node(s)) return abort_score;
    // A leaf is evaluated, after its table probes.
    if (depth == 0) prefetch_pawns(s.eval.pawns, game);
    // The root is never scored as a draw: a move is needed.
    if (frame.line_ply != 0 && draw_by_rule(game)) return 0;
    if (frame.ply >= last_ply) return static_score(s, game, frame.line_ply);

    Node node = {s, game, alpha, beta, depth, frame.ply, frame.line_ply, frame};
    const Pins pins = pins_of(game);
    s.in_check_at[node.ply] = pins.checkers != 0 ? 1 : 0;
    extend(node);
    if (may_use_table(node)) {
        if (const auto known = table_cutoff(node)) return *known;
    }

    ++node.frame.ply;
    ++node.frame.line_ply;
    if (node.depth <= 0) {
        pv.length = 0;
        return quiesce_leaf(s, game, pins, alpha, beta, node.frame.ply, node.frame.line_ply);
    }
    prefetch_killers(s, game, frame.line_ply);
    if (null_move_allowed(node) && null_move_value(node) >= beta) return beta;
    s.null_move_at[node.ply] = 0;
    return node.ply == 0 ? search_moves<NodeType::root>(node, pins, pv) : search_moves<NodeType::inner>(node, pins, pv);
}

std::optional<Move> first_move(Search& s, Game& game, int ply, int alpha, int beta, int depth) {
    constexpr int shallowest = 3;
    constexpr int reduction = 2;
    // One ply less than the node needs: too shallow for a cutoff, but the move is still good.
    const HashEntry* entry = hash_probe(s.tables.transposition_table, game, depth - 1);
    if (entry != nullptr && entry->has_move != 0) return entry->move;
    if (depth < shallowest || alpha + 1 == beta) return std::nullopt;

    PvLine& line = s.iid_pvs[ply];
    line.length = 0;
    SearchFrame frame = root_frame;
    frame.ply = ply + 1;
    frame.line_ply = static_cast<std::uint8_t>(ply + 1);
    search(s, game, alpha, beta, depth - reduction, frame, line);
    return line.length != 0 ? std::optional(line.moves[0]) : std::nullopt;
}

}  // namespace varn
