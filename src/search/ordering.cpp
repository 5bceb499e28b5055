#include "search/ordering.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "search/exchange.h"

namespace varn {

Table<KillerSlot, killer_slots> killer_one;
Table<KillerSlot, killer_slots> killer_two;
Table<std::int32_t, killer_slots> killer_one_piece;
Table<std::int32_t, killer_slots> killer_two_piece;
Table<PerSquare<PerSquare<std::int32_t>>, 2> history;

void history_update(const Game* game, Move move, int depth) {
    if (move.kind == kind_capture || move.kind == kind_en_passant || is_promotion(move.kind)) return;
    // Capped so that neither the weight nor the sum leaves the type: a score must never turn negative.
    constexpr int deepest_weight = 30;
    constexpr std::int32_t ceiling = std::numeric_limits<std::int32_t>::max();
    const std::int32_t weight = 1 << std::clamp(depth, 0, deepest_weight);
    std::int32_t& entry = history[game->turn][move.from][move.to];
    entry = entry > ceiling - weight ? ceiling : entry + weight;
}

void clear_history() { history = {}; }

void killer_update(Move move, int line_ply, int piece, const Game* game) {
    if (move.kind != kind_quiet && move.kind != kind_double_step) return;
    const int i = killer_index(game, line_ply);
    KillerSlot& one = killer_one[i];
    KillerSlot& two = killer_two[i];
    if (move == one.move) {
        ++one.count;
    } else if (move == two.move) {
        if (++two.count > one.count) {
            std::swap(one, two);
            std::swap(killer_one_piece[i], killer_two_piece[i]);
        }
    } else if (one.count < two.count) {
        one = {move, 0};
        killer_one_piece[i] = piece;
    } else {
        two = {move, 0};
        killer_two_piece[i] = piece;
    }
}

void clear_killer_counts() {
    for (auto& slot : killer_one) slot.count = 0;
    for (auto& slot : killer_two) slot.count = 0;
}

void score_quiets(const Game* game, MoveList* list) {
    const auto& of_side = history[game->turn];
    for (int i = 0; i < list->count; ++i) list->scores[i] = of_side[list->moves[i].from][list->moves[i].to];
}

void score_captures(const Game* game, MoveList* list) {
    for (int i = 0; i < list->count; ++i) list->scores[i] = exchange_gain(game, list->moves[i]);
}

}  // namespace varn
