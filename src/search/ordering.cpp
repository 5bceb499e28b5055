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

namespace {

// Score and place of a move packed into one number: of equal scores the lower place wins.
constexpr int place_range = 1024;
static_assert(place_range > MoveList::capacity);
constexpr std::int64_t ranked(std::int64_t score, int place) { return score * place_range + (place_range - 1 - place); }
constexpr int place_of(std::int64_t rank) { return static_cast<int>(place_range - 1 - (rank & (place_range - 1))); }

void swap_places(MoveList& list, int a, int b) {
    std::swap(list.scores[a], list.scores[b]);
    std::swap(list.moves[a], list.moves[b]);
}

}  // namespace

// Branchless, because the comparison is unpredictable.
void pick_best(MoveList& list, int index) {
    constexpr int passed_over = -9999;
    std::int64_t best = ranked(passed_over, 0);
    for (int i = index; i < list.count; ++i) best = std::max(best, ranked(list.scores[i], i));
    if (best == ranked(passed_over, 0)) return;
    swap_places(list, place_of(best), index);
}

// Most moves have no history, so only the ranks of the others are compared. Sorting them all first pays, since nearly
// every list is tried that far.
void sort_quiets(MoveList& list) {
    Table<std::int64_t, MoveList::capacity> ranks;    // of the moves with history that have no final place yet
    Table<std::int16_t, MoveList::capacity> rank_at;  // by place in the list: index into `ranks`
    int left = 0;
    for (int place = 0; place < list.count; ++place) {
        ranks[left] = ranked(list.scores[place], place);
        rank_at[place] = static_cast<std::int16_t>(left);
        left += list.scores[place] > 0 ? 1 : 0;
    }
    const auto put_rank = [&](std::int16_t index, std::int64_t rank) {
        ranks[index] = rank;
        rank_at[place_of(rank)] = index;
    };
    for (int front = 0; left > 0; ++front) {
        std::int64_t best = 0;
        for (int i = 0; i < left; ++i) best = std::max(best, ranks[i]);
        const int place = place_of(best);
        put_rank(rank_at[place], ranks[--left]);
        if (place == front) continue;
        swap_places(list, place, front);
        if (list.scores[place] > 0) put_rank(rank_at[front], ranked(list.scores[place], place));
    }
}

}  // namespace varn
