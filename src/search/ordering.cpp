#include "search/ordering.h"

#include <algorithm>
#include <cstring>
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

namespace {

/// Scores compared at once. The vectors are explicit because clang++ with a profile makes slow code of a plain loop.
constexpr int lanes = 8;
using Lanes [[gnu::vector_size(lanes * sizeof(std::int32_t))]] = std::int32_t;

/// Places of moves with history, and the scores there, followed by zeros.
struct ScoredPlaces {
    int count;
    Table<std::int32_t, MoveList::capacity + lanes> scores;
    Table<std::int16_t, MoveList::capacity + lanes> places;
};

ScoredPlaces places_with_history(const MoveList& list) {
    ScoredPlaces found;
    int count = 0;
    for (int place = 0; place < list.count; ++place) {
        found.scores[count] = list.scores[place];
        found.places[count] = static_cast<std::int16_t>(place);
        count += list.scores[place] > 0 ? 1 : 0;
    }
    std::fill_n(found.scores.begin() + count, lanes, 0);
    found.count = count;
    return found;  // cppcheck-suppress uninitvar ; the rest is never read
}

/// How many of the scores are higher.
int count_higher(const ScoredPlaces& all, std::int32_t score) {
    Lanes higher{};
    for (int i = 0; i < all.count; i += lanes) {
        Lanes scores;
        std::memcpy(&scores, &all.scores[i], sizeof scores);
        higher -= scores > score;  // -1 where true
    }
    return (higher[0] + higher[1]) + (higher[2] + higher[3]) + (higher[4] + higher[5]) + (higher[6] + higher[7]);
}

/// Highest score first; places of equal scores stay in order. Counting takes no unpredictable branch.
ScoredPlaces sorted(const ScoredPlaces& all) {
    ScoredPlaces result;
    result.count = all.count;
    std::fill_n(result.scores.begin(), all.count + 1, 0);
    for (int i = 0; i < all.count; ++i) {
        int slot = count_higher(all, all.scores[i]);
        while (result.scores[slot] != 0) ++slot;
        result.scores[slot] = all.scores[i];
        result.places[slot] = all.places[i];
    }
    return result;  // cppcheck-suppress uninitvar ; the rest is never read
}

}  // namespace

// Only moves with history are compared. Sorting them all first pays, since nearly every list is tried that far. Each
// best move changes places with the front, as in `pick_best`, so a move can fall behind others of the same score. Of
// equal scores the move that is first by now is taken.
void sort_quiets(MoveList& list) {
    ScoredPlaces best = sorted(places_with_history(list));
    Table<std::int16_t, MoveList::capacity> place_now;     // by place before sorting
    Table<std::int16_t, MoveList::capacity> place_before;  // the inverse
    for (int place = 0; place < list.count; ++place) {
        place_now[place] = place_before[place] = static_cast<std::int16_t>(place);
    }
    for (int front = 0; front < best.count; ++front) {
        int first = front;
        for (int i = front + 1; best.scores[i] == best.scores[front]; ++i) {
            if (place_now[best.places[i]] < place_now[best.places[first]]) first = i;
        }
        const std::int16_t place = place_now[best.places[first]];
        best.places[first] = best.places[front];
        place_now[place_before[front]] = place;
        place_before[place] = place_before[front];
        swap_places(list, place, front);
    }
}

}  // namespace varn
