#include "search/ordering.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "search/exchange.h"

namespace varn {

void history_update(History& history, const Game& game, Move move, int depth) {
    if (move.kind == kind_capture || move.kind == kind_en_passant || is_promotion(move.kind)) return;
    // Saturates: a history score must never overflow and turn negative.
    constexpr int deepest_weight = 30;
    constexpr std::int32_t ceiling = std::numeric_limits<std::int32_t>::max();
    const std::int32_t weight = 1 << std::clamp(depth, 0, deepest_weight);
    std::int32_t& entry = history[game.turn][move.from][move.to];
    entry = entry > ceiling - weight ? ceiling : entry + weight;
}

void clear_history(History& history) { history = {}; }

void killer_update(Killers& killers, const Game& game, Move move, int line_ply) {
    if (move.kind != kind_quiet && move.kind != kind_double_step) return;
    const int i = killer_index(game, line_ply);
    const int piece = game.cells[move.from];
    KillerSlot& one = killers.killer_one[i];
    KillerSlot& two = killers.killer_two[i];
    if (move == one.move) {
        ++one.count;
    } else if (move == two.move) {
        if (++two.count > one.count) {
            std::swap(one, two);
            std::swap(killers.killer_one_piece[i], killers.killer_two_piece[i]);
        }
    } else if (one.count < two.count) {
        one = {move, 0};
        killers.killer_one_piece[i] = piece;
    } else {
        two = {move, 0};
        killers.killer_two_piece[i] = piece;
    }
}

void clear_killer_counts(Killers& killers) {
    for (auto& slot : killers.killer_one) slot.count = 0;
    for (auto& slot : killers.killer_two) slot.count = 0;
}

void score_quiets(MoveList& list, const Game& game, const History& history) {
    const auto& of_side = history[game.turn];
    for (int i = 0; i < list.count; ++i) list.scores[i] = of_side[list.moves[i].from][list.moves[i].to];
}

void score_captures(MoveList& list, const Game& game) {
    for (int i = 0; i < list.count; ++i) list.scores[i] = exchange_gain(game, list.moves[i]);
}

// Branchless, because the comparison is unpredictable. Score and index are packed into one number; of equal scores the
// lower index wins.
void pick_best(MoveList& list, int index) {
    constexpr int passed_over = -9999;
    constexpr int place_range = 1024;
    static_assert(place_range > MoveList::capacity);
    const auto ranked = [](std::int64_t score, int place) { return score * place_range + (place_range - 1 - place); };
    std::int64_t best = ranked(passed_over, 0);
    for (int i = index; i < list.count; ++i) best = std::max(best, ranked(list.scores[i], i));
    if (best == ranked(passed_over, 0)) return;
    const auto place = static_cast<int>(place_range - 1 - (best & (place_range - 1)));
    std::swap(list.scores[place], list.scores[index]);
    std::swap(list.moves[place], list.moves[index]);
}

}  // namespace varn
