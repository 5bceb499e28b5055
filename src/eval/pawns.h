// Pawn structure: doubled, isolated, backward and passed pawns. Scores that depend on pawns alone are cached in the
// pawn hash table: `pawn_key` selects the slot, `pawn_lock` verifies the pawns. The score of a passed pawn also depends
// on rooks, so the table keeps only the files of passed pawns. The pawns' square values are cached with the structure,
// but scored as placement.
#pragma once

#include "base/divisor.h"
#include "base/memory.h"
#include "board/game.h"

namespace varn {

/// One slot; always replaced.
struct alignas(16) PawnEntry {
    std::int16_t structure;    // doubled, isolated and backward pawns, from white's point of view
    std::int16_t placement;    // square values of the pawns, the same
    std::uint8_t w_passed;     // bit n: white has a passed pawn on file n + 1
    std::uint8_t b_passed;     // the same for black
    std::uint16_t generation;  // an entry of another generation than the table's is empty
    std::uint64_t lock;
};
static_assert(sizeof(PawnEntry) == 16);

/// The pawn hash table. Entries of another generation than the table's are empty, so that clearing is one increment;
/// zeroed memory has generation 0, which the table never has.
struct PawnTable {
    ZeroedBlock<PawnEntry> entries;
    Divisor slots = divisor(1);
    std::uint16_t generation = 1;
};

/// Allocates the table, with one slot at least; an existing table is kept. Returns false if the size isn't positive or
/// memory is short.
bool pawn_hash_allocate(PawnTable& table, std::int32_t bytes);

/// Clears the table in constant time.
void pawn_hash_clear(PawnTable& table);

// These need an allocated table.

/// Prefetches the entry of these pawns.
void prefetch_pawns(const PawnTable& table, const Game& game);

/// The entry of these pawns, or null. Valid until the next store.
const PawnEntry* pawn_hash_probe(const PawnTable& table, const Game& game);
void pawn_hash_store(PawnTable& table, const Game& game, int structure, std::uint8_t w_passed, std::uint8_t b_passed);

/// Pawn scores from white's point of view.
struct PawnScores {
    int terms;      // structure and passed pawns
    int placement;  // square values
};

/// On a table hit only one passed pawn per file is scored, the one on the lowest square, without testing it again;
/// otherwise all are scored. So with doubled pawns the second score of a position can differ from the first.
PawnScores score_pawns(PawnTable& table, const Game& game);

int pawn_terms(PawnTable& table, const Game& game);

// Computed without the table.

int pawn_placement(const Game& game);
// For side S, from its own point of view.
template <Side S> int pawn_placement_of(const Game& game);
template <Side S> int pawn_structure_of(const Game& game);
template <Side S> int passed_pawns_of(const Game& game);

}  // namespace varn
