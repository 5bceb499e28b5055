#include "search/quiesce.h"

#include <algorithm>
#include <utility>

#include "board/movegen.h"
#include "eval/evaluate.h"
#include "search/clock.h"
#include "search/draws.h"
#include "search/exchange.h"
#include "search/transposition.h"

namespace varn {

namespace {

int material_for_side_to_move(const Game& g) { return g.turn == 0 ? g.material : -g.material; }

/// With much material on the board and a clear difference the balance alone is the score.
bool material_decides(const Game& g) {
    constexpr int much_material = 3000;
    constexpr int clearly_behind = -299;
    constexpr int clearly_ahead = 302;
    if (g.w_material + g.b_material < much_material) return false;
    const int balance = material_for_side_to_move(g);
    return balance <= clearly_behind || balance >= clearly_ahead;
}

constexpr int hope = 300;     // what a position may gain beyond the exchange itself
constexpr int hopeless = -1;  // what isn't searched, like all that loses material

/// What a capture or promotion promises: a promotion counts from the new piece alone, also where it captures. A capture
/// that falls short even if nobody takes back is hopeless: what takes part in its exchange isn't looked at.
int promise(const Game* game, Move move, int wanted) {
    if (is_promotion(move.kind)) return piece_values[move.kind] - pawn_value;
    if (move.kind == kind_en_passant) return exchange_gain(game, move);
    return piece_values[game->cells[move.to]] < wanted ? hopeless : exchange_gain(game, move);
}

bool answers(const QhashEntry& entry, int alpha, int beta) {
    if (entry.bound == bound_upper) return entry.score <= alpha;
    if (entry.bound == bound_lower) return entry.score >= beta;
    return true;
}

}  // namespace

int static_score(Game* game, const SearchFrame& frame, int alpha, int beta) {
    return static_score(game, restraints_of(game), frame, alpha, beta);
}

int static_score(Game* game, const Restraints& restraints, const SearchFrame& frame, int alpha, int beta) {
    int score = node_status(game, restraints, frame.line_ply);
    if (score == game_goes_on) {
        if (material_decides(*game)) return material_for_side_to_move(*game);
        score = evaluate(game, frame.line_ply, alpha, beta);
    }
    return game->turn == 0 ? score : -score;
}

// Which move is best nobody can foretell, the processor least of all: a walk without a branch. Score and place are
// compared as one number, the score in front, and the earlier place counting for more.
void pick_best(MoveList* list, int index) {
    constexpr int passed_over = -9999;
    constexpr int place_range = 1024;
    static_assert(place_range > MoveList::capacity);
    const auto ranked = [](std::int64_t score, int place) { return score * place_range + (place_range - 1 - place); };
    std::int64_t best = ranked(passed_over, 0);
    for (int i = index; i < list->count; ++i) best = std::max(best, ranked(list->scores[i], i));
    if (best == ranked(passed_over, 0)) return;
    const auto place = static_cast<int>(place_range - 1 - (best & (place_range - 1)));
    std::swap(list->scores[place], list->scores[index]);
    std::swap(list->moves[place], list->moves[index]);
}

int quiesce(Game* game, int alpha, int beta, SearchFrame frame) {
    ++nodes;
    ++quiescent_nodes;
    if (insufficient_material(game)) return 0;
    if (!clock_ok()) return abort_score;
    if (const QhashEntry* known = qhash_probe(game); known != nullptr && answers(*known, alpha, beta)) {
        return known->score;
    }

    const int line_ply = frame.line_ply;
    const int ply = frame.ply;
    const Restraints restraints = restraints_of(game);
    const int stand = static_score(game, restraints, frame, alpha, beta);
    if (stand >= beta) {
        qhash_store(game, line_ply, stand, bound_lower);
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
    MoveList* list = generate_noisy(game, ply);
    const int wanted = alpha - stand - hope;
    for (int i = 0; i < list->count; ++i) list->scores[i] = promise(game, list->moves[i], wanted);
    UndoRecord* undo = save_undo(game, ply);
    ++frame.ply;
    ++frame.line_ply;
    for (int i = 0; i < list->count; ++i) {
        pick_best(list, i);
        const int gain = list->scores[i];
        if (gain < 0 || gain + stand + hope < alpha) break;

        const Move move = list->moves[i];
        if (!make_if_legal(game, move, ply, restraints, undo)) continue;
        prefetch_qhash(game);
        const int value = -quiesce(game, -beta, -alpha, frame);
        unmake_move(game, move, undo);
        best = std::max(best, value);
        if (value <= alpha) continue;
        if (value >= beta) {
            qhash_store(game, line_ply, value, bound_lower);
            return value;
        }
        alpha = value;
        bound = bound_exact;
        raised_alpha = true;
    }
    const int result = raised_alpha ? alpha : best;
    qhash_store(game, line_ply, result, bound);
    return result;
}

}  // namespace varn
