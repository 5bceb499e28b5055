// The search once more, as a reference: positions are copied instead of unmade, tables are maps, and nothing is shared
// with the engine's search but the board, the evaluation and the exchange of captures.
#pragma once

#include <algorithm>
#include <array>
#include <map>
#include <sstream>

#include "board/attacks.h"
#include "board/draws.h"
#include "eval/evaluate.h"
#include "positions.h"
#include "search/exchange.h"
#include "search/record.h"

namespace varn {

class PlainSearch {
public:
    /// As many slots as an engine's tables have with these sizes.
    explicit PlainSearch(const TableSizes& sizes)
        : slots_((std::uint64_t{1} << sizes.hash_bits) - 1),
          quiet_slots_(static_cast<std::uint64_t>(sizes.qhash_bytes) / 40) {
        EXPECT_TRUE(pawn_hash_allocate(eval_.pawns, sizes.phash_bytes));
    }

    /// What a search to this depth tells, its move included. It stops when it comes to the last of `allowed` nodes.
    std::string think(const Game& root, int depth, std::uint64_t allowed) {
        const std::vector<Move> legal = every_legal_move(root);
        if (legal.size() < 2) return legal.empty() ? "none\n" : move_text(legal[0]) + '\n';
        told_.str("");
        history_.clear();
        table_.clear();
        pawn_hash_clear(eval_.pawns);
        main_line_.length = 0;
        main_line_.keys = {};
        eval_.root_material = root.w_material + root.b_material;
        eval_.w_trade_flag = eval_.b_trade_flag = false;
        stopped_ = false;
        for (iteration_ = 1; iteration_ <= depth; ++iteration_) {
            allowed_ = allowed;
            nodes_ = quiet_nodes_ = 0;
            for (auto& [slot, killers] : killers_) killers[0].count = killers[1].count = 0;
            root_score_ = root_score(root);
            if (root_score_ == aborted) break;
            allowed -= std::min(allowed, nodes_);
            eval_.w_trade_flag = root.turn == Side::white && root_score_ >= 500;
            eval_.b_trade_flag = root.turn == Side::black && root_score_ >= 500;
            tell(root_score_);
        }
        told_ << move_text(main_line_.length > 0 ? main_line_.moves[0] : legal[0]) << '\n';
        return told_.str();
    }

    /// For a new game or position. What a search clears anyway isn't told apart.
    void clear() { quiet_table_.clear(); }

private:
    static constexpr int aborted = 1000000, mate = 9999, widest = 19998;
    enum Bound { exact, upper, lower };

    struct Line {
        int length = 0;
        Move moves[100];
        std::array<PositionKeys, 100> keys;
    };
    struct Entry {
        std::uint64_t lock = 0;
        int score = -1, depth = -1, credit = 0;
        Bound bound = exact;
        std::optional<Move> move;
    };
    struct QuietEntry {
        std::uint64_t lock;
        int score;
        Bound bound;
    };
    struct Killer {
        Move move = {};
        int count = 0, piece = 0;
    };
    struct Frame {
        int ply = 0, line_ply = 0, pawn_extensions = 0, extensions = 0;
    };
    struct Scored {
        Move move;
        int score;
    };

    // --- Nodes and scores
    // ---------------------------------------------------------------------------------------------

    bool goes_on() {
        stopped_ = stopped_ || nodes_ >= allowed_;
        return !stopped_;
    }
    bool enter() {
        if (stopped_) return false;
        ++nodes_;
        return goes_on();
    }

    void tell(int score) {
        told_ << nodes_ << ' ' << quiet_nodes_ << ' ' << iteration_ << ' ' << score;
        for (int i = 0; i < main_line_.length; ++i) told_ << ' ' << move_text(main_line_.moves[i]);
        told_ << '\n';
    }

    static bool is_mate(int score) {
        return score != aborted && std::abs(score) >= mate - 500 && std::abs(score) <= mate;
    }
    static int for_turn(const Game& g, int score) { return g.turn == Side::white ? score : -score; }

    static int status(const Game& g, int line_ply) {
        if (draw_by_rule(g)) return 0;
        if (has_legal_move(g)) return -1;
        return in_check(g) ? for_turn(g, line_ply - mate) : 0;
    }

    int static_value(const Game& g, int line_ply) {
        const int known = status(g, line_ply);
        if (known != -1) return for_turn(g, known);
        const int balance = for_turn(g, g.material);
        if (g.w_material + g.b_material >= 3000 && (balance <= -299 || balance >= 302)) return balance;
        return for_turn(g, evaluate(g, eval_));
    }

    /// The position after the move, if that is legal. What it captured is noted even if it isn't.
    std::optional<Game> child(const Game& g, Move move, int ply, bool in_line) {
        captured_[ply] = g.cells[move.to];
        std::optional<Game> after = g;
        make_move(*after, move);
        if (g.turn == Side::white ? white_in_check(*after) : black_in_check(*after)) return std::nullopt;
        if (in_line) {
            push_keys(*after);
            moved_to_[ply] = move.to;
        }
        return after;
    }

    /// Moves the best of the list from `start` to that place: the first of equals.
    static Scored take_best(std::vector<Scored>& list, std::size_t start) {
        std::size_t best = start;
        for (std::size_t i = start + 1; i < list.size(); ++i) best = list[i].score > list[best].score ? i : best;
        std::swap(list[start], list[best]);
        return list[start];
    }

    // --- Tables
    // -------------------------------------------------------------------------------------------------------

    Entry* probe(PositionKeys keys, int depth) {
        Entry& entry = table_[keys.key % slots_];
        const bool hit = entry.depth >= depth && entry.lock == keys.lock;
        entry.credit += hit ? 1 : -1;
        return hit ? &entry : nullptr;
    }

    void store(const Game& g, int depth, std::optional<Move> move, int score, Bound bound) {
        Entry& entry = table_[g.zobrist_key % slots_];
        if (entry.lock != g.zobrist_lock) {
            if (entry.credit-- > 0) return;
            entry.credit = depth * depth;
        }
        if (is_mate(score)) score += score > 0 ? depth : -depth;
        entry = {g.zobrist_lock, score, depth, entry.credit, bound, move};
    }

    void store_quiet(const Game& g, int score, Bound bound) {
        quiet_table_[g.zobrist_key % quiet_slots_] = {g.zobrist_lock, score, bound};
    }

    void reward(const Game& g, Move move, int depth, int line_ply, bool cuts_off) {
        const bool steps = move.kind == kind_quiet || move.kind == kind_double_step;
        if (steps || is_castling(move.kind)) history_[{g.turn, move.from, move.to}] += 1 << depth;
        if (!steps || !cuts_off) return;
        auto& [one, two] = killers_[{g.turn, line_ply}];
        if (move == one.move) {
            ++one.count;
        } else if (move == two.move) {
            if (++two.count > one.count) std::swap(one, two);
        } else {
            (one.count < two.count ? one : two) = {move, 0, g.cells[move.from]};
        }
    }

    // --- The search
    // ---------------------------------------------------------------------------------------------------

    int root_score(const Game& root) {
        const int alpha = root_score_ - 50, beta = root_score_ + 50;
        for (const auto& [low, high] : {std::pair{alpha, beta}, {-widest, widest}}) {
            std::ranges::fill(captured_, no_piece);
            null_at_ = {};
            const int score = search(root, low, high, iteration_, {}, main_line_);
            if (low == -widest || (score > low && score < high)) return score;
        }
        return aborted;
    }

    int quiesce(const Game& g, int alpha, int beta, int ply, int line_ply) {
        ++quiet_nodes_;
        const bool entered = enter();
        if (insufficient_material(g)) return 0;
        if (!entered) return aborted;
        const auto known = quiet_table_.find(g.zobrist_key % quiet_slots_);
        if (known != quiet_table_.end() && known->second.lock == g.zobrist_lock) {
            const auto& [lock, score, bound] = known->second;
            if (bound == exact || (bound == upper && score <= alpha) || (bound == lower && score >= beta)) return score;
        }
        const int stand = static_value(g, line_ply);
        if (stand >= beta) {
            store_quiet(g, stand, lower);
            return stand;
        }
        Bound bound = stand > alpha ? exact : upper;
        alpha = std::max(alpha, stand);
        std::vector<Scored> list;
        MoveList noisy;
        generate_noisy(g, noisy);
        for (const Move move : noisy) {
            list.push_back({move, is_promotion(move.kind) ? piece_values[move.kind] - 100 : exchange_gain(g, move)});
        }
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
            if (value >= beta) {
                store_quiet(g, value, lower);
                return value;
            }
            alpha = value;
            bound = exact;
            raised = true;
        }
        store_quiet(g, raised ? alpha : best, bound);
        return raised ? alpha : best;
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
            const int to = moved_to_[ply - 1], rank = rank_of(to);
            extends = (g.cells[to] == 7 && rank == 7) || (g.cells[to] == 15 && rank == 2);
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
        bool null_allowed = true;
        if (const Entry* entry = probe(keys_of(g), depth)) {
            int score = entry->score;
            if (is_mate(score)) score += score > 0 ? -line_ply : line_ply;
            if (entry->move && draw_after_move(g, *entry->move)) score = 0;
            if (entry->bound != lower && score <= alpha) return score;
            if (entry->bound != upper && score >= beta) return score;
            null_allowed = entry->bound == lower || score <= alpha || score >= beta;
        }
        ++frame.ply;
        ++frame.line_ply;
        if (depth <= 0) {
            line.length = 0;
            return quiesce(g, alpha, beta, frame.ply, frame.line_ply);
        }
        const Bitboard pieces = occupied(g) & ~(g.w_pawns | g.b_pawns | g.w_king | g.b_king);
        if (for_turn(g, g.material) + 100 >= beta && beta < mate && null_allowed &&
            main_line_.keys[static_cast<std::size_t>(line_ply)] != keys_of(g) && ply > 0 && depth >= 2 &&
            !null_at_[ply - 1] && !in_check(g) && g.w_material > 310 && g.b_material > 310 && pieces != 0) {
            Game after = g;
            UndoRecord unused;
            make_null(after, unused);
            captured_[ply] = no_piece;
            null_at_[ply] = true;
            Line ignored;
            const int value = depth > 3 ? -search(after, -beta, 1 - beta, depth - 3,
                                                  {ply + 1, line_ply, frame.pawn_extensions, frame.extensions}, ignored)
                                        : -quiesce(after, -beta, 1 - beta, ply + 1, line_ply);
            if (value >= beta) return beta;
        }
        null_at_[ply] = false;
        return search_moves(g, alpha, beta, depth, frame, line);
    }

    std::optional<Move> first_move(const Game& g, int alpha, int beta, int depth, int ply) {
        const Entry* entry = probe(keys_of(g), depth - 1);
        if (entry != nullptr && entry->move) return entry->move;
        if (depth < 3 || alpha + 1 == beta) return std::nullopt;
        Line line;
        search(g, alpha, beta, depth - 2, {ply + 1, ply + 1, 0, 0}, line);
        return line.length > 0 ? std::optional(line.moves[0]) : std::nullopt;
    }

    int search_moves(const Game& g, const int first_alpha, int beta, int depth, const Frame frame, Line& line) {
        const int ply = frame.ply - 1, line_ply = frame.line_ply - 1;
        int alpha = first_alpha, best = -99990, tried = 0;
        std::optional<Move> best_move;
        Line below;
        // Searches a legal move; returns whether the node is finished, with `best` as its result.
        const auto finishes = [&](Move move) {
            const auto after = child(g, move, ply, true);
            if (!after) return false;
            ++tried;
            const auto value_in = [&](int low, int high) {
                return -search(*after, -high, -low, depth - 1, frame, below);
            };
            int value = best_move ? value_in(alpha, alpha + 1) : value_in(alpha, beta);
            if (best_move && value > alpha && value < beta) value = value_in(alpha, beta);
            best = std::max(best, value);
            if (!goes_on()) {
                best = aborted;
                return true;
            }
            if (value <= alpha) return false;
            alpha = value;
            best_move = move;
            line.moves[0] = move;
            line.keys[0] = keys_of(g);
            std::copy_n(below.moves, below.length, line.moves + 1);
            std::copy_n(below.keys.begin(), below.length, line.keys.begin() + 1);
            line.length = below.length + 1;
            if (ply == 0) tell(value);
            reward(g, move, depth, line_ply, value >= beta);
            if (value < beta) return false;
            store(g, depth, move, value, lower);
            best = value;
            return true;
        };

        const auto first = first_move(g, alpha, beta, depth, ply);
        if (first && finishes(*first)) return best;
        MoveList generated;
        generate_captures(g, generated);
        std::vector<Scored> captures;
        for (const Move move : generated) captures.push_back({move, exchange_gain(g, move)});
        std::size_t next = 0;
        for (; next < captures.size() && take_best(captures, next).score >= 0; ++next) {
            if (captures[next].move != first && finishes(captures[next].move)) return best;
        }
        generated.count = 0;
        add_promotions(g, generated);
        for (const Move move : generated) {
            if (move != first && finishes(move)) return best;
        }
        std::vector<Move> played;
        if (first) played.push_back(*first);
        for (const std::size_t number : {0U, 1U}) {
            const Killer killer = killers_[{g.turn, line_ply}][number];
            if (!fits(g, killer) || std::ranges::find(played, killer.move) != played.end()) continue;
            played.push_back(killer.move);
            if (finishes(killer.move)) return best;
        }
        std::vector<Scored> quiets = scored_quiets(g, depth, beta);
        for (std::size_t i = 0; i < quiets.size(); ++i) {
            const Move move = take_best(quiets, i).move;
            if (std::ranges::find(played, move) == played.end() && finishes(move)) return best;
        }
        for (; next < captures.size(); ++next) {
            const Move move = take_best(captures, next).move;
            if (move != first && finishes(move)) return best;
        }
        if (tried == 0) {
            best = static_value(g, line_ply);
            store(g, depth, std::nullopt, best, exact);
            return best;
        }
        store(g, depth, best_move, best, best_move ? exact : upper);
        return best;
    }

    /// Whether the killer's piece still stands there, or another rook for a rook, and the move is legal.
    static bool fits(const Game& g, const Killer& killer) {
        const int code = g.cells[killer.move.from];
        const auto kind_of = [](int piece) { return is_rook(type_of(piece)) ? piece / 8 * 8 + 4 : piece; };
        return code != no_piece && kind_of(code) == kind_of(killer.piece) && is_valid_move(g, killer.move);
    }

    std::vector<Scored> scored_quiets(const Game& g, int depth, int beta) {
        MoveList generated;
        generated.count = 0;
        add_quiets(g, generated);
        std::vector<Scored> quiets;
        for (const Move move : generated) quiets.push_back({move, 0});
        if (depth > iteration_ / 2) {
            for (auto& [move, score] : quiets) {
                const Entry* entry = probe(keys_of(*after(g, move)), depth - 1);
                if (entry == nullptr || entry->bound == upper || -entry->score < beta) continue;
                score = 1000000;
                return quiets;
            }
        }
        for (auto& [move, score] : quiets) score = history_[{g.turn, move.from, move.to}];
        return quiets;
    }

    const std::uint64_t slots_, quiet_slots_;
    EvalContext eval_;
    std::map<std::tuple<Side, int, int>, int> history_;
    std::map<std::pair<Side, int>, std::array<Killer, 2>> killers_;
    std::map<std::uint64_t, Entry> table_;
    std::map<std::uint64_t, QuietEntry> quiet_table_;
    Line main_line_ = {};
    int root_score_ = 0, iteration_ = 0;
    std::uint64_t nodes_ = 0, quiet_nodes_ = 0, allowed_ = 0;
    bool stopped_ = false;
    std::map<int, bool> null_at_;
    int captured_[200] = {}, moved_to_[200] = {};
    std::ostringstream told_;
};

}  // namespace varn
