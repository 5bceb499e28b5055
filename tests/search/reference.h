// A plain reference of the search: it copies games instead of unmaking moves, and its tables are maps. The rules of the
// board, static exchanges and the evaluation are the engine's own, and have their own tests.
#pragma once

#include <algorithm>
#include <array>
#include <map>
#include <sstream>
#include <unordered_map>

#include "board/attacks.h"
#include "board/draws.h"
#include "positions.h"
#include "search/exchange.h"
#include "search/record.h"

namespace varn {

class ReferenceSearch {
public:
    explicit ReferenceSearch(const TableSizes& sizes) : sizes_(sizes) { clear_tables(); }

    // --- What a session changes -------------------------------------------------------------------------------------

    std::uint64_t nodes = 0;
    bool time_is_up = false;  // the first look at the clock, after 16384 nodes, stops a search
    std::string rows;         // printed by the searches since it was emptied

    void clear_tables() {
        clear_for_search();
        quiescence_.clear();
    }
    void clear_killer_counts() {
        for (auto& [place, pair] : killers_) pair[0].count = pair[1].count = 0;
    }

    /// Iterative deepening; needs two legal moves at least. The moves found are those of the main line.
    std::vector<Move> think(const Game& game, int deepest) {
        clear_for_search();
        main_ = {};
        context_.w_trade_flag = context_.b_trade_flag = false;
        context_.root_material = game.w_material + game.b_material;
        runs_ = true;
        for (int depth = 1; depth <= std::clamp(deepest, 1, 50); ++depth) {
            nodes = quiescent_ = 0;
            iteration_ = depth;
            clear_killer_counts();
            score_ = search_root(game, score_ - 50, score_ + 50);
            if (score_ == abort_score) break;
            context_.w_trade_flag = score_ >= 500 && game.turn == Side::white;
            context_.b_trade_flag = score_ >= 500 && game.turn == Side::black;
            add_row(game, score_);
        }
        std::vector<Move> line;
        for (std::size_t i = 0; i < main_.length; ++i) line.push_back(main_.steps[i].move);
        return line;
    }

    /// A search to a fixed depth with whatever the tables hold.
    int search_fixed_depth(const Game& game, int depth) {
        main_ = {};
        return search(game, -mate_score, mate_score, depth, {}, main_);
    }

private:
    struct Step {
        Move move;
        PositionKeys keys;
    };
    /// A line; the steps past its length are left from longer ones.
    struct Line {
        std::size_t length = 0;
        std::map<std::size_t, Step> steps;
    };
    struct Frame {
        int ply = 0, line_ply = 0, pawn_extensions = 0, extensions = 0;
        bool after_null = false;
    };
    struct Slot {
        std::uint64_t lock = 0;
        int score = -1, depth = -1, bound = 255, credit = 0;
        std::optional<Move> move;
    };
    struct Killer {
        Move move;
        int piece = 0, count = 0;
    };
    struct Scored {
        Move move;
        int score;
    };

    static int balance(const Game& game) { return game.turn == Side::white ? game.material : -game.material; }
    static bool is_quiet(Move move) { return move.kind == kind_quiet || move.kind == kind_double_step; }

    // --- Limits and output ------------------------------------------------------------------------------------------

    bool goes_on() {
        if (time_is_up && nodes % 16384 == 0) runs_ = false;
        return runs_;
    }
    bool enter() {
        if (runs_) ++nodes;
        return runs_ && goes_on();
    }

    void add_row(const Game& root, int score) {
        std::ostringstream row;
        row << iteration_ << ' ' << score << ' ' << nodes << ' ' << quiescent_;
        Game game = root;
        for (std::size_t i = 0; i < main_.length && is_valid_move(game, main_.steps[i].move); ++i) {
            row << ' ' << san_text(game, main_.steps[i].move);
            make_move(game, main_.steps[i].move);
        }
        rows += row.str() + '\n';
    }

    void clear_for_search() {
        table_.clear();
        history_.clear();
        context_.pawns = {};
        EXPECT_TRUE(pawn_hash_allocate(context_.pawns, sizes_.phash_bytes));
    }

    // --- Tables -----------------------------------------------------------------------------------------------------

    Slot& slot_of(PositionKeys keys) { return table_[keys.key % ((std::uint64_t{1} << sizes_.hash_bits) - 1)]; }

    Slot* probe(PositionKeys keys, int depth) {
        Slot& slot = slot_of(keys);
        const bool hits = slot.depth >= depth && slot.lock == keys.lock;
        slot.credit += hits ? 1 : -1;
        return hits ? &slot : nullptr;
    }

    void store(const Game& game, int depth, std::optional<Move> move, int score, int bound) {
        Slot& slot = slot_of(keys_of(game));
        const bool is_known = slot.lock == game.zobrist_lock;
        if (!is_known && slot.credit > 0) {
            --slot.credit;
            return;
        }
        const int stored = !is_mate_score(score) ? score : score > 0 ? score + depth : score - depth;
        slot = {game.zobrist_lock, stored, depth, bound, is_known ? slot.credit : depth * depth, move};
    }

    Slot& quiescence_slot(const Game& game) {
        return quiescence_[game.zobrist_key % (static_cast<std::uint64_t>(sizes_.qhash_bytes) / 40)];
    }

    int& history_of(const Game& game, Move move) { return history_[{game.turn, move.from, move.to}]; }
    std::array<Killer, 2>& killers_of(const Game& game, int line_ply) { return killers_[{game.turn, line_ply}]; }

    void add_killer(const Game& game, int line_ply, Move move) {
        auto& [one, two] = killers_of(game, line_ply);
        if (!is_quiet(move)) return;
        if (move == one.move) {
            ++one.count;
        } else if (move != two.move) {
            (one.count < two.count ? one : two) = {move, game.cells[move.from], 0};
        } else if (++two.count > one.count) {
            std::swap(one, two);
        }
    }

    // --- Moves in order ---------------------------------------------------------------------------------------------

    template <typename Generate, typename Score>
    static std::vector<Scored> scored(const Game& game, Generate generate, Score score) {
        MoveList list;
        list.count = 0;
        generate(game, list);
        std::vector<Scored> moves;
        for (const Move move : moves_of(list)) moves.push_back({move, score(move)});
        return moves;
    }

    /// Swaps the first of the best moves, from the place on, to the place.
    static Scored& select(std::vector<Scored>& moves, std::size_t place) {
        const auto here = moves.begin() + static_cast<std::ptrdiff_t>(place);
        std::iter_swap(here, std::ranges::max_element(here, moves.end(), {}, &Scored::score));
        return *here;
    }

    /// Puts the move first whose known child fails low enough for a cutoff.
    bool find_known_cutoff(const Game& game, std::vector<Scored>& moves, int depth, int beta) {
        for (Scored& move : moves) {
            const Slot* child = probe(child_keys(game, move.move), depth);
            if (child == nullptr || child->bound == bound_upper || -child->score < beta) continue;
            for (Scored& other : moves) other.score = 0;
            move.score = 1000000;
            return true;
        }
        return false;
    }

    std::optional<Move> first_move(const Game& game, int alpha, int beta, int depth, int ply) {
        const Slot* known = probe(keys_of(game), depth - 1);
        if (known != nullptr && known->move) return known->move;
        if (depth < 3 || alpha + 1 == beta) return std::nullopt;
        Line found;
        search(game, alpha, beta, depth - 2, {.ply = ply + 1, .line_ply = ply + 1}, found);
        return found.length == 0 ? std::nullopt : std::optional(found.steps[0].move);
    }

    /// Visits the moves in the order of the search, each as late as possible, until a visit returns true.
    template <typename Visit>
    void visit_moves(const Game& game, const Frame& frame, int depth, int beta, std::optional<Move> first, Visit visit) {
        if (first && visit(*first)) return;
        auto captures = scored(game, add_captures, [&](Move move) { return exchange_gain(game, move); });
        std::size_t next = 0;
        for (; next < captures.size() && select(captures, next).score >= 0; ++next) {
            if (captures[next].move != first && visit(captures[next].move)) return;
        }
        for (const Scored& move : scored(game, add_promotions, [](Move) { return 0; })) {
            if (move.move != first && visit(move.move)) return;
        }
        std::vector<Move> done;
        for (const int i : {0, 1}) {
            const Killer killer = killers_of(game, frame.line_ply)[i];
            if (!is_quiet(killer.move) || killer.move == first || !is_valid_move(game, killer.move)) continue;
            if (!same_mover(game.cells[killer.move.from], killer.piece)) continue;
            done.push_back(killer.move);
            if (visit(killer.move)) return;
        }
        auto quiets = scored(game, add_quiets, [](Move) { return 0; });
        if (depth <= iteration_ / 2 || !find_known_cutoff(game, quiets, depth - 1, beta)) {
            for (Scored& move : quiets) move.score = history_of(game, move.move);
        }
        for (std::size_t i = 0; i < quiets.size(); ++i) {
            const Move move = select(quiets, i).move;
            if (move != first && std::ranges::find(done, move) == done.end() && visit(move)) return;
        }
        for (; next < captures.size(); ++next) {
            if (select(captures, next).move != first && visit(captures[next].move)) return;
        }
    }

    // --- Nodes ------------------------------------------------------------------------------------------------------

    int search_root(const Game& game, int alpha, int beta) {
        for (SearchPly& ply : stack_) ply.captured = no_piece;
        const int score = search(game, alpha, beta, iteration_, {}, main_);
        if (score > alpha && score < beta) return score;
        for (SearchPly& ply : stack_) ply.captured = no_piece;
        return search(game, -full_window, full_window, iteration_, {}, main_);
    }

    bool recaptures_evenly(int ply) const {
        if (ply < 2) return false;
        const int taken = stack_[ply - 2].captured, retaken = stack_[ply - 1].captured;
        if (taken == no_piece || retaken == no_piece || piece_values[taken] < 300) return false;
        return std::abs(signed_piece_values[taken] + signed_piece_values[retaken]) < 50;
    }

    bool pawn_reached_seventh(const Game& game, int ply) const {
        const int to = stack_[ply - 1].move.to;
        return (game.cells[to] == 7 && to / 8 == 6) || (game.cells[to] == 15 && to / 8 == 1);
    }

    int search(const Game& game, int alpha, int beta, int depth, Frame frame, Line& line) {
        const int ply = frame.ply, line_ply = frame.line_ply;
        if (!enter()) return abort_score;
        if (line_ply != 0 && draw_by_rule(game)) return 0;
        const bool is_check = in_check(game);
        if (frame.extensions <= 2 * iteration_) {
            const bool on_seventh =
                depth == 0 && ply > 0 && frame.pawn_extensions == 0 && pawn_reached_seventh(game, ply);
            const bool extends = is_check || recaptures_evenly(ply) || on_seventh;
            if (extends && !is_check && !recaptures_evenly(ply)) ++frame.pawn_extensions;
            depth += extends ? 1 : 0;
            frame.extensions += extends ? 1 : 0;
        }

        bool null_allowed = !frame.after_null && !is_check && ply > 0;
        if (const Slot* known = probe(keys_of(game), depth)) {
            int score = known->score;
            if (is_mate_score(score)) score += score > 0 ? -line_ply : line_ply;
            if (known->move && is_drawn_by(game, *known->move)) score = 0;
            const bool low = score <= alpha, high = score >= beta;
            if (known->bound == bound_upper ? low : known->bound == bound_lower ? high : low || high) return score;
            if (known->bound != bound_lower && !low && !high) null_allowed = false;
        }

        Frame child = {ply + 1, line_ply + 1, frame.pawn_extensions, frame.extensions, false};
        if (depth <= 0) {
            line.length = 0;
            return quiesce(game, alpha, beta, child.ply, child.line_ply);
        }
        const Bitboard pawns_and_kings = game.w_pawns | game.b_pawns | game.w_king | game.b_king;
        if (null_allowed && depth >= 2 && beta < mate_score && balance(game) + 100 >= beta &&
            main_.steps[static_cast<std::size_t>(line_ply)].keys != keys_of(game) && game.w_material > 310 &&
            game.b_material > 310 && pawns_and_kings != (game.w_pieces | game.b_pieces)) {
            Game passed = game;
            UndoRecord unused;
            make_null(passed, unused);
            stack_[ply].captured = no_piece;
            Line unread;
            const Frame null = {ply + 1, line_ply, frame.pawn_extensions, frame.extensions, true};
            const int value = depth > 3 ? -search(passed, -beta, 1 - beta, depth - 3, null, unread)
                                        : -quiesce(passed, -beta, 1 - beta, null.ply, null.line_ply);
            if (value >= beta) return beta;
        }

        const auto first = first_move(game, alpha, beta, depth, ply);
        int best = no_score;
        std::optional<Move> best_move;
        std::optional<int> result;
        Line tail;
        visit_moves(game, frame, depth, beta, first, [&](Move move) {
            stack_[ply].captured = game.cells[move.to];
            if (!is_legal(game, move)) return false;
            stack_[ply].move = move;
            Game next = game;
            make_and_push(next, move);
            const auto value_in = [&](int low, int high) {
                return -search(next, -high, -low, depth - 1, child, tail);
            };
            int value = value_in(alpha, best_move ? alpha + 1 : beta);
            if (best_move && value > alpha && value < beta) value = value_in(alpha, beta);
            best = std::max(best, value);
            if (!goes_on()) result = abort_score;
            if (result || value <= alpha) return result.has_value();
            alpha = value;
            best_move = move;
            line.steps[0] = {move, keys_of(game)};
            for (std::size_t i = 0; i < tail.length; ++i) line.steps[i + 1] = tail.steps[i];
            line.length = tail.length + 1;
            if (ply == 0) add_row(game, value);
            if (is_quiet(move) || is_castling(move.kind)) history_of(game, move) += 1 << depth;
            if (value < beta) return false;
            add_killer(game, line_ply, move);
            store(game, depth, move, value, bound_lower);
            result = value;
            return true;
        });
        if (result) return *result;
        if (best == no_score) {
            best = draw_by_rule(game) || !is_check ? 0 : line_ply - mate_score;
            store(game, depth, std::nullopt, best, bound_exact);
        } else {
            store(game, depth, best_move, best, best_move ? bound_exact : bound_upper);
        }
        return best;
    }

    static bool is_drawn_by(const Game& game, Move move) {
        Game next = game;
        make_and_push(next, move);
        return draw_by_rule(next);
    }

    int static_score(const Game& game, int line_ply) {
        if (draw_by_rule(game)) return 0;
        if (!has_legal_move(game)) return in_check(game) ? line_ply - mate_score : 0;
        const bool is_clear = balance(game) <= -299 || balance(game) >= 302;
        if (game.w_material + game.b_material >= 3000 && is_clear) return balance(game);
        return evaluate(game, context_) * (game.turn == Side::white ? 1 : -1);
    }

    int quiesce(const Game& game, int alpha, int beta, int ply, int line_ply) {
        ++quiescent_;
        const bool entered = enter();
        if (insufficient_material(game)) return 0;
        if (!entered) return abort_score;
        const Slot& known = quiescence_slot(game);
        const bool answers = known.bound == bound_upper   ? known.score <= alpha
                             : known.bound == bound_lower ? known.score >= beta
                                                          : true;
        if (known.lock == game.zobrist_lock && answers) return known.score;
        const auto leave = [&](int score, int bound) {
            quiescence_slot(game) = {game.zobrist_lock, score, 0, bound, 0, {}};
            return score;
        };
        const int stand = static_score(game, line_ply);
        if (stand >= beta) return leave(stand, bound_lower);
        bool is_raised = false;
        int best = stand, bound = stand > alpha ? bound_exact : bound_upper;
        alpha = std::max(alpha, stand);
        auto moves = scored(game, generate_noisy, [&](Move move) {
            return is_promotion(move.kind) ? piece_values[move.kind] - 100 : exchange_gain(game, move);
        });
        for (std::size_t i = 0; i < moves.size(); ++i) {
            const auto [move, gain] = select(moves, i);
            if (gain < 0 || gain + stand + 300 < alpha) break;
            stack_[ply].captured = game.cells[move.to];
            if (!is_legal(game, move)) continue;
            Game next = game;
            make_move(next, move);
            const int value = -quiesce(next, -beta, -alpha, ply + 1, line_ply + 1);
            best = std::max(best, value);
            if (value <= alpha) continue;
            if (value >= beta) return leave(value, bound_lower);
            alpha = value;
            bound = bound_exact;
            is_raised = true;
        }
        return leave(is_raised ? alpha : best, bound);
    }

    TableSizes sizes_;
    EvalContext context_;
    int score_ = 0, iteration_ = 0;  // of the last search
    std::uint64_t quiescent_ = 0;
    bool runs_ = false;
    Line main_;
    std::unordered_map<std::uint64_t, Slot> table_, quiescence_;
    std::map<std::tuple<Side, int, int>, int> history_;
    std::map<std::pair<Side, int>, std::array<Killer, 2>> killers_;
    std::array<SearchPly, 2 * ply_slots> stack_ = {};
};

}  // namespace varn
