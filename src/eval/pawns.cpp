#include "eval/pawns.h"

#include <algorithm>
#include <cassert>
#include <limits>

#include "board/game_sides.h"
#include "eval/tables.h"

namespace varn {

namespace {

// In centipawns.
constexpr int doubled_pawns = -25;
constexpr int tripled_pawns = -45;  // three or more
constexpr int isolated_pawn = -11;
constexpr int backward_pawn = -9;
constexpr int passed_pawn = 10;
constexpr int rook_behind_passed_pawn = 30;
constexpr int enemy_rook_before_passed_pawn = -30;

PawnEntry& pawn_slot(const PawnTable& table, const Game& g) {
    assert(table.entries != nullptr);
    return table.entries[remainder(g.pawn_key, table.slots)];
}

// --- Terms, each from the side's own point of view ----------------------------------------------------------------

template <Side S> int doubled(const Game& g) {
    int score = 0;
    for (int file = 1; file <= 8; ++file) {
        const int pawns = popcount(pawns_of<S>(g) & file_masks[file]);
        if (pawns >= 2) score += pawns == 2 ? doubled_pawns : tripled_pawns;
    }
    return score;
}

/// A pawn is isolated if it has no neighbours, and backward if all its neighbours are ahead of it.
template <Side S> int isolated_and_backward(const Game& g) {
    int score = 0;
    for (Bitboard left = pawns_of<S>(g); left != 0;) {
        const int square = pop_first(left);
        const Bitboard neighbours = pawns_of<S>(g) & adjacent_files[file_of(square)];
        if (neighbours == 0) {
            score += isolated_pawn;
        } else if ((neighbours & ~ranks_ahead<S>(square)) == 0) {
            score += backward_pawn;
        }
    }
    return score;
}

template <Side S> int structure(const Game& g) { return doubled<S>(g) + isolated_and_backward<S>(g); }

/// Pawns without enemy pawns ahead on their own or the adjacent files. An own pawn in front doesn't matter.
template <Side S> Bitboard passed_pawns(const Game& g) {
    Bitboard passed = 0;
    for (Bitboard left = pawns_of<S>(g); left != 0;) {
        const int square = pop_first(left);
        const Bitboard way = (file_masks[file_of(square)] | adjacent_files[file_of(square)]) & ranks_ahead<S>(square);
        if ((pawns_of<other(S)>(g) & way) == 0) passed |= bit_mask(square);
    }
    return passed;
}

/// Passed pawns score more the further they are advanced. An own rook behind helps and an enemy rook in front hurts;
/// pieces in between are ignored.
template <Side S> int passed_score(const Game& g, Bitboard passed) {
    int score = 0;
    while (passed != 0) {
        const int square = pop_first(passed);
        const Bitboard file = file_masks[file_of(square)];
        const int bonus = passed_pawn_bonus<S>[square];
        score += passed_pawn + bonus;
        if ((rooks_of<S>(g) & file & ranks_behind<S>(square)) != 0) score += rook_behind_passed_pawn;
        if ((rooks_of<other(S)>(g) & file & ranks_ahead<S>(square)) != 0) score += enemy_rook_before_passed_pawn;
    }
    return score;
}

/// The pawn on the lowest square of each of the files.
// Kept: docs/compatibility.md#passed-pawns-by-file
Bitboard first_on_files(Bitboard pawns, std::uint8_t files) {
    Bitboard first = 0;
    for (Bitboard left = pawns & whole_files(files); left != 0;) {
        const int square = first_one(left);
        first |= bit_mask(square);
        left &= ~file_masks[file_of(square)];
    }
    return first;
}

template <Side S> int squares_score(const Game& g) {
    int score = 0;
    for (Bitboard left = pawns_of<S>(g); left != 0;) score += pawn_squares<S>[pop_first(left)] / 2;
    return score;
}

int passed_score(const Game& g, Bitboard w_passed, Bitboard b_passed) {
    return passed_score<Side::white>(g, w_passed) - passed_score<Side::black>(g, b_passed);
}

PawnScores score_known_pawns(const Game& g, const PawnEntry& entry) {
    const Bitboard w_passed = first_on_files(g.w_pawns, entry.w_passed);
    const Bitboard b_passed = first_on_files(g.b_pawns, entry.b_passed);
    return {entry.structure + passed_score(g, w_passed, b_passed), entry.placement};
}

PawnScores score_new_pawns(PawnTable& table, const Game& g) {
    const Bitboard w_passed = passed_pawns<Side::white>(g);
    const Bitboard b_passed = passed_pawns<Side::black>(g);
    pawn_hash_store(table, g, structure<Side::white>(g) - structure<Side::black>(g), files_of(w_passed),
                    files_of(b_passed));
    const PawnEntry& entry = pawn_slot(table, g);
    return {entry.structure + passed_score(g, w_passed, b_passed), entry.placement};
}

}  // namespace

bool pawn_hash_allocate(PawnTable& table, std::int32_t bytes) {
    if (table.entries != nullptr) return true;
    if (bytes <= 0) return false;
    table.slots = divisor(std::max<std::uint64_t>(1, static_cast<std::uint64_t>(bytes) / sizeof(PawnEntry)));
    table.entries = zeroed_block<PawnEntry>(table.slots.value);
    return table.entries != nullptr;
}

void pawn_hash_clear(PawnTable& table) {
    if (table.generation < std::numeric_limits<std::uint16_t>::max()) {
        ++table.generation;
        return;
    }
    // The generation counter is used up: clear the memory and start over.
    std::fill_n(table.entries.get(), table.slots.value, PawnEntry{});
    table.generation = 1;
}

void prefetch_pawns(const PawnTable& table, const Game& game) { prefetch(pawn_slot(table, game)); }

const PawnEntry* pawn_hash_probe(const PawnTable& table, const Game& game) {
    const PawnEntry& entry = pawn_slot(table, game);
    return entry.generation == table.generation && entry.lock == game.pawn_lock ? &entry : nullptr;
}

void pawn_hash_store(PawnTable& table, const Game& game, int structure, std::uint8_t w_passed, std::uint8_t b_passed) {
    pawn_slot(table, game) = {static_cast<std::int16_t>(structure),
                              static_cast<std::int16_t>(pawn_placement(game)),
                              w_passed,
                              b_passed,
                              table.generation,
                              game.pawn_lock};
}

PawnScores score_pawns(PawnTable& table, const Game& game) {
    const PawnEntry* known = pawn_hash_probe(table, game);
    return known != nullptr ? score_known_pawns(game, *known) : score_new_pawns(table, game);
}

int pawn_terms(PawnTable& table, const Game& game) { return score_pawns(table, game).terms; }

int pawn_placement(const Game& game) { return squares_score<Side::white>(game) - squares_score<Side::black>(game); }

template <Side S> int pawn_placement_of(const Game& game) { return squares_score<S>(game); }
template <Side S> int pawn_structure_of(const Game& game) { return structure<S>(game); }
template <Side S> int passed_pawns_of(const Game& game) { return passed_score<S>(game, passed_pawns<S>(game)); }

template int pawn_placement_of<Side::white>(const Game& game);
template int pawn_placement_of<Side::black>(const Game& game);
template int pawn_structure_of<Side::white>(const Game& game);
template int pawn_structure_of<Side::black>(const Game& game);
template int passed_pawns_of<Side::white>(const Game& game);
template int passed_pawns_of<Side::black>(const Game& game);

}  // namespace varn
