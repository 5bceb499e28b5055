// The search once more, as a reference: positions are copied instead of unmade, tables are maps, and nothing is shared
// with the engine's search but the board, the evaluation and the exchange of captures.
#pragma once

#include <array>
#include <limits>
#include <map>
#include <sstream>
#include <unordered_map>

#include "board/attacks.h"
#include "board/draws.h"
#include "eval/evaluate.h"
#include "positions.h"
#include "search/exchange.h"
#include "search/record.h"

namespace varn {

class PlainSearch {
public:
    /// With as many slots as an engine's tables have in these sizes.
    explicit PlainSearch(const TableSizes& sizes) : sizes_(sizes) { clear(); }

    std::uint64_t nodes = 0;  // of the last iteration
    bool time_is_up = false;  // so that the first look at the clock, at 16384 nodes, stops a search
    std::string rows;         // told by searches, until it is emptied

    /// Searches to this depth, or to the last of the allowed nodes, and returns the main line. There must be two moves.
    std::vector<Move> think(const Game& root, int depth, std::uint64_t allowed) {
        clear_for_search();
        main_line_.length = 0;
        main_line_.keys = {};
        eval_.root_material = root.w_material + root.b_material;
        eval_.w_trade_flag = eval_.b_trade_flag = stopped_ = false;
        for (iteration_ = 1;; ++iteration_) {
            allowed_ = allowed;
            nodes = quiet_nodes_ = 0;
            clear_killer_counts();
            root_score_ = root_score(root);
            if (root_score_ == aborted) break;
            allowed -= std::min(allowed, nodes);
            eval_.w_trade_flag = root.turn == Side::white && root_score_ >= 500;
            eval_.b_trade_flag = root.turn == Side::black && root_score_ >= 500;
            tell(root, root_score_);
            if (iteration_ >= std::clamp(depth, 1, 50)) break;
        }
        return {main_line_.moves.begin(), main_line_.moves.begin() + main_line_.length};
    }

    /// A search with the tables as they are, without setting the clock.
    int search_on(const Game& root, int depth) {
        main_line_ = {};
        return search(root, -mate, mate, depth, {}, main_line_);
    }

    /// For a new game or position.
    void clear() {
        clear_for_search();
        quiet_table_.clear();
    }
    void clear_killer_counts() {
        for (auto& [slot, killers] : killers_) killers[0].count = killers[1].count = 0;
    }

private:
    static constexpr int aborted = 1000000, mate = 9999, widest = 19998;
    enum Bound { exact, upper, lower };

    struct Line {
        int length = 0;
        Table<Move, 100> moves;
        Table<PositionKeys, 100> keys;
    };
    struct Entry {
        std::uint64_t lock = 0;
        int score = -1, depth = -1, credit = 0;
        Bound bound = exact;
        std::optional<Move> move = {};
    };
    struct Killer {
        Move move = {};
        int count = 0, piece = 0;
    };
    struct Frame {
        int ply = 0, line_ply = 0, pawn_extensions = 0, extensions = 0;
        bool after_null = false;
    };
    struct Scored {
        Move move;
        int score;
    };

    void clear_for_search() {
        history_.clear();
        table_.clear();
        eval_.pawns = {};
        EXPECT_TRUE(pawn_hash_allocate(eval_.pawns, sizes_.phash_bytes));
    }

    bool goes_on() {
        stopped_ = stopped_ || nodes >= allowed_ || (time_is_up && nodes % 16384 == 0);
        return !stopped_;
    }
    bool enter() {
        if (!stopped_) ++nodes;
        return !stopped_ && goes_on();
    }

    /// As the console prints it, without the time. A line ends at its first illegal move.
    void tell(Game game, int score) {
        std::ostringstream row;
        row << iteration_ << ' ' << score << ' ' << nodes << ' ' << quiet_nodes_;
        for (int i = 0; i < main_line_.length && is_valid_move(game, main_line_.moves[i]); ++i) {
            row << ' ' << san_text(game, main_line_.moves[i]);
            make_move(game, main_line_.moves[i]);
        }
        rows += row.str() + '\n';
    }

    // --- Scores and moves ------------------------------------------------------------------------------------------

    static int balance(const Game& g) { return g.turn == Side::white ? g.material : -g.material; }
    static bool is_mate(int score) { return std::abs(score) >= mate - 500 && std::abs(score) <= mate; }
    static bool is_step(Move move) { return move.kind == kind_quiet || move.kind == kind_double_step; }

    int static_value(const Game& g, int line_ply) {
        if (draw_by_rule(g)) return 0;
        if (!has_legal_move(g)) return in_check(g) ? line_ply - mate : 0;
        const bool is_clear = balance(g) <= -299 || balance(g) >= 302;
        if (g.w_material + g.b_material >= 3000 && is_clear) return balance(g);
        return evaluate(g, eval_) * (g.turn == Side::white ? 1 : -1);
    }

    /// The position after the move, if that is legal. What it captured is noted even if it isn't.
    std::optional<Game> child(const Game& g, Move move, int ply, bool in_line) {
        captured_[ply] = g.cells[move.to];
        if (!is_legal(g, move)) return std::nullopt;
        std::optional<Game> after = g;
        make_move(*after, move);
        if (in_line) push_keys(*after);
        if (in_line) moved_to_[ply] = move.to;
        return after;
    }

    template <typename Score>
    static std::vector<Scored> generated(const Game& g, void (*add)(const Game&, MoveList&), Score score) {
        MoveList list;
        list.count = 0;
        add(g, list);
        std::vector<Scored> moves;
        for (const Move move : list) moves.push_back({move, score(move)});
        return moves;
    }

    /// Moves the best of the list from `start` to that place: the first of equals.
    static Scored take_best(std::vector<Scored>& list, std::size_t start) {
        const auto place = list.begin() + static_cast<std::ptrdiff_t>(start);
        std::iter_swap(place, std::ranges::max_element(place, list.end(), {}, &Scored::score));
        return *place;
    }

    // --- Tables ----------------------------------------------------------------------------------------------------

    Entry& slot(PositionKeys keys) { return table_[keys.key % ((std::uint64_t{1} << sizes_.hash_bits) - 1)]; }
    Entry& quiet_slot(const Game& g) {
        return quiet_table_[g.zobrist_key % (static_cast<std::uint64_t>(sizes_.qhash_bytes) / 40)];
    }

    Entry* probe(PositionKeys keys, int depth) {
        Entry& entry = slot(keys);
        const bool hit = entry.depth >= depth && entry.lock == keys.lock;
        entry.credit += hit ? 1 : -1;
        return hit ? &entry : nullptr;
    }

    void store(const Game& g, int depth, std::optional<Move> move, int score, Bound bound) {
        Entry& entry = slot(keys_of(g));
        if (entry.lock != g.zobrist_lock) {
            if (entry.credit-- > 0) return;
            entry.credit = depth * depth;
        }
        if (is_mate(score)) score += score > 0 ? depth : -depth;
        entry = {g.zobrist_lock, score, depth, entry.credit, bound, move};
    }

    /// Counts no further than an `int` can.
    static void reward_quiet(int& history, int depth) {
        const std::int64_t sum = history + (std::int64_t{1} << std::min(depth, 30));
        history = static_cast<int>(std::min<std::int64_t>(sum, std::numeric_limits<int>::max()));
    }

    void reward(const Game& g, Move move, int depth, int line_ply, bool cuts_off) {
        if (is_step(move) || is_castling(move.kind)) reward_quiet(history_[{g.turn, move.from, move.to}], depth);
        if (!is_step(move) || !cuts_off) return;
        auto& [one, two] = killers_[{g.turn, line_ply}];
        if (move == one.move) {
            ++one.count;
        } else if (move != two.move) {
            (one.count < two.count ? one : two) = {move, 0, g.cells[move.from]};
        } else if (++two.count > one.count) {
            std::swap(one, two);
        }
    }

    // --- The search ------------------------------------------------------------------------------------------------

    int root_score(const Game& root) {
        const int alpha = root_score_ - 50, beta = root_score_ + 50;
        std::ranges::fill(captured_, no_piece);
        const int score = search(root, alpha, beta, iteration_, {}, main_line_);
        if (score > alpha && score < beta) return score;
        std::ranges::fill(captured_, no_piece);
        return search(root, -widest, widest, iteration_, {}, main_line_);
    }

    int quiesce(const Game& g, int alpha, int beta, int ply, int line_ply) {
        ++quiet_nodes_;
        const bool entered = enter();
        if (insufficient_material(g)) return 0;
        if (!entered) return aborted;
        const auto& [lock, score, depth, credit, bound, unused] = quiet_slot(g);
        const bool answers = bound == exact || (bound == upper ? score <= alpha : score >= beta);
        if (lock == g.zobrist_lock && answers) return score;
        const auto leave = [&](int value, Bound type) {
            quiet_slot(g) = {g.zobrist_lock, value, 0, 0, type};
            return value;
        };
        const int stand = static_value(g, line_ply);
        if (stand >= beta) return leave(stand, lower);
        Bound type = stand > alpha ? exact : upper;
        alpha = std::max(alpha, stand);
        auto list = generated(g, generate_noisy, [&](Move move) {
            return is_promotion(move.kind) ? piece_values[move.kind] - 100 : exchange_gain(g, move);
        });
        int best = stand;
        bool raised = false;
        for (std::size_t i = 0; i < list.size(); ++i) {
            const auto [move, gain] = take_best(list, i);
            if (gain < 0 || gain + stand + 300 < alpha) break;
            const auto after = child(g, move, ply, false);
            if (!after) continue;
            const int value = -quiesce(*after, -beta, -alpha, ply + 1, line_ply + 1);
            best = std::max(best, value);
            if (value <= alpha) continue;
            if (value >= beta) return leave(value, lower);
            alpha = value;
            type = exact;
            raised = true;
        }
        return leave(raised ? alpha : best, type);
    }

    void extend(const Game& g, int& depth, Frame& frame) const {
        const int ply = frame.ply;
        if (frame.extensions > 2 * iteration_) return;
        const int taken = ply >= 2 ? captured_[ply - 2] : no_piece, retaken = ply >= 2 ? captured_[ply - 1] : no_piece;
        bool extends = in_check(g);
        if (!extends && taken != no_piece && retaken != no_piece && piece_values[taken] >= 300) {
            extends = std::abs(signed_piece_values[taken] + signed_piece_values[retaken]) <= 49;
        }
        if (!extends && depth == 0 && ply > 0 && frame.pawn_extensions == 0) {
            const int to = moved_to_[ply - 1];
            extends = (g.cells[to] == 7 && rank_of(to) == 7) || (g.cells[to] == 15 && rank_of(to) == 2);
            frame.pawn_extensions += extends ? 1 : 0;
        }
        depth += extends ? 1 : 0;
        frame.extensions += extends ? 1 : 0;
    }

    int search(const Game& g, int alpha, int beta, int depth, Frame frame, Line& line) {
        const int ply = frame.ply, line_ply = frame.line_ply;
        if (!enter()) return aborted;
        if (line_ply != 0 && draw_by_rule(g)) return 0;
        extend(g, depth, frame);
        bool null_allowed = ply > 0 && !frame.after_null && !in_check(g);
        if (const Entry* entry = probe(keys_of(g), depth)) {
            int score = entry->score;
            if (is_mate(score)) score += score > 0 ? -line_ply : line_ply;
            if (entry->move && draw_after_move(g, *entry->move)) score = 0;
            if (entry->bound != lower && score <= alpha) return score;
            if (entry->bound != upper && score >= beta) return score;
            if (entry->bound != lower && score > alpha && score < beta) null_allowed = false;
        }
        const Frame next = {ply + 1, line_ply + 1, frame.pawn_extensions, frame.extensions};
        if (depth <= 0) {
            line.length = 0;
            return quiesce(g, alpha, beta, next.ply, next.line_ply);
        }
        const Bitboard pieces = occupied(g) & ~(g.w_pawns | g.b_pawns | g.w_king | g.b_king);
        if (null_allowed && balance(g) + 100 >= beta && beta < mate && depth >= 2 && pieces != 0 &&
            main_line_.keys[line_ply] != keys_of(g) && g.w_material > 310 && g.b_material > 310) {
            Game after = g;
            UndoRecord unused;
            make_null(after, unused);
            captured_[ply] = no_piece;
            Line ignored;
            const Frame null = {ply + 1, line_ply, frame.pawn_extensions, frame.extensions, true};
            const int value = depth > 3 ? -search(after, -beta, 1 - beta, depth - 3, null, ignored)
                                        : -quiesce(after, -beta, 1 - beta, ply + 1, line_ply);
            if (value >= beta) return beta;
        }

        int best = -99990;
        std::optional<Move> best_move;
        std::optional<int> result;
        Line below;
        const auto first = first_move(g, alpha, beta, depth, ply);
        visit_moves(g, line_ply, depth, beta, first, [&](Move move) {
            const auto after = child(g, move, ply, true);
            if (!after) return false;
            const auto value_in = [&](int low, int high) {
                return -search(*after, -high, -low, depth - 1, next, below);
            };
            int value = best_move ? value_in(alpha, alpha + 1) : value_in(alpha, beta);
            if (best_move && value > alpha && value < beta) value = value_in(alpha, beta);
            best = std::max(best, value);
            if (!goes_on()) result = aborted;
            if (result || value <= alpha) return result.has_value();
            alpha = value;
            best_move = line.moves[0] = move;
            line.keys[0] = keys_of(g);
            std::copy_n(below.moves.begin(), below.length, line.moves.begin() + 1);
            std::copy_n(below.keys.begin(), below.length, line.keys.begin() + 1);
            line.length = below.length + 1;
            if (ply == 0) tell(g, value);
            reward(g, move, depth, line_ply, value >= beta);
            if (value < beta) return false;
            store(g, depth, move, value, lower);
            result = value;
            return true;
        });
        if (result) return *result;
        const bool has_moves = best != -99990;
        if (!has_moves) best = static_value(g, line_ply);
        store(g, depth, best_move, best, best_move || !has_moves ? exact : upper);
        return best;
    }

    std::optional<Move> first_move(const Game& g, int alpha, int beta, int depth, int ply) {
        const Entry* entry = probe(keys_of(g), depth - 1);
        if (entry != nullptr && entry->move) return entry->move;
        if (depth < 3 || alpha + 1 == beta) return std::nullopt;
        Line line;
        search(g, alpha, beta, depth - 2, {ply + 1, ply + 1}, line);
        return line.length > 0 ? std::optional(line.moves[0]) : std::nullopt;
    }

    /// Visits the moves in the order of the search, each chosen as late as possible, until a visit returns true.
    template <typename Visit>
    void visit_moves(const Game& g, int line_ply, int depth, int beta, std::optional<Move> first, Visit visit) {
        if (first && visit(*first)) return;
        auto captures = generated(g, add_captures, [&g](Move move) { return exchange_gain(g, move); });
        std::size_t next = 0;
        for (; next < captures.size() && take_best(captures, next).score >= 0; ++next) {
            if (captures[next].move != first && visit(captures[next].move)) return;
        }
        for (const auto& [move, unused] : generated(g, add_promotions, [](Move) { return 0; })) {
            if (move != first && visit(move)) return;
        }
        std::vector<Move> played;
        if (first) played.push_back(*first);
        const auto is_played = [&played](Move move) { return std::ranges::find(played, move) != played.end(); };
        for (const std::size_t number : {0U, 1U}) {
            const Killer killer = killers_[{g.turn, line_ply}][number];
            if (!fits(g, killer) || is_played(killer.move)) continue;
            played.push_back(killer.move);
            if (visit(killer.move)) return;
        }
        std::vector<Scored> quiets = scored_quiets(g, depth, beta);
        for (std::size_t i = 0; i < quiets.size(); ++i) {
            const Move move = take_best(quiets, i).move;
            if (!is_played(move) && visit(move)) return;
        }
        for (; next < captures.size(); ++next) {
            if (take_best(captures, next).move != first && visit(captures[next].move)) return;
        }
    }

    /// Whether the killer's piece still stands there, or another rook for a rook, and the move is legal.
    static bool fits(const Game& g, const Killer& killer) {
        const int code = g.cells[killer.move.from];
        const auto kind_of = [](int piece) { return is_rook(type_of(piece)) ? piece / 8 * 8 + 4 : piece; };
        return code != no_piece && kind_of(code) == kind_of(killer.piece) && is_valid_move(g, killer.move);
    }

    /// By history, but for a move whose known child is good enough for a cutoff.
    std::vector<Scored> scored_quiets(const Game& g, int depth, int beta) {
        auto quiets = generated(g, add_quiets, [](Move) { return 0; });
        for (auto& [move, score] : quiets) {
            if (depth <= iteration_ / 2) break;
            const Entry* entry = probe(keys_of(*after(g, move)), depth - 1);
            if (entry == nullptr || entry->bound == upper || -entry->score < beta) continue;
            score = 1000000;
            return quiets;
        }
        for (auto& [move, score] : quiets) score = history_[{g.turn, move.from, move.to}];
        return quiets;
    }

    const TableSizes sizes_;
    EvalContext eval_;
    std::map<std::tuple<Side, int, int>, int> history_;
    std::map<std::pair<Side, int>, std::array<Killer, 2>> killers_;
    std::unordered_map<std::uint64_t, Entry> table_, quiet_table_;
    Line main_line_ = {};
    int root_score_ = 0, iteration_ = 0;
    std::uint64_t quiet_nodes_ = 0, allowed_ = no_node_limit;
    bool stopped_ = true;
    Table<int, 200> captured_ = {}, moved_to_ = {};
};

}  // namespace varn
