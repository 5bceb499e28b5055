// Pawn structure: doubled, isolated, backward and passed pawns. What depends on the pawns alone is remembered in the
// pawn hash table: `pawn_key` chooses the slot, `pawn_lock` confirms the pawns. What a passed pawn is worth depends on
// the rooks as well, so the table keeps only which files have one. What the pawns' squares are worth is no part of
// their structure, but kept with it.
#pragma once

#include "base/divisor.h"
#include "base/memory.h"
#include "board/game.h"

namespace varn {

/// One slot, written by the position that came last.
struct PawnEntry {
    std::int16_t structure;    // doubled, isolated and backward pawns, from white's point of view
    std::int16_t placement;    // the pawns' squares, the same
    std::uint8_t w_passed;     // bit n: a white passed pawn on file number n + 1
    std::uint8_t b_passed;     // the same for black
    std::uint16_t generation;  // of the table when the slot was written; of any other the slot counts as empty
    std::uint64_t lock;
};
static_assert(sizeof(PawnEntry) == 16);

/// The pawn hash table. Slots written under another generation than the table's count as empty, so that clearing is one
/// increment. Fresh memory holds generation 0, which is never the table's.
struct PawnTable {
    ZeroedBlock<PawnEntry> entries;
    Divisor slots = divisor(1);
    std::uint16_t generation = 1;
};

/// Allocates the table, one slot at least; a table that exists is kept as it is. False where the size isn't positive or
/// memory doesn't suffice.
bool pawn_hash_allocate(PawnTable& table, std::int32_t bytes);

/// Empties every slot. Costs nothing, however large the table.
void pawn_hash_clear(PawnTable& table);

// These need an allocated table.

/// The slot of these pawns if it is theirs, else null; valid until the next store.
const PawnEntry* pawn_hash_probe(const PawnTable& table, const Game& game);
void pawn_hash_store(PawnTable& table, const Game& game, int structure, std::uint8_t w_passed, std::uint8_t b_passed);

/// What the pawns score, from white's point of view.
struct PawnScores {
    int terms;      // structure and passed pawns
    int placement;  // their squares
};

/// Where the table knows the pawns, their terms score one passed pawn a file, the one on the lowest square, and don't
/// ask again whether that one is passed; otherwise they score all of them. So two pawns of one colour on a file can
/// make the second score of a position differ from its first.
PawnScores score_pawns(PawnTable& table, const Game& game);

/// The terms alone.
int pawn_terms(PawnTable& table, const Game& game);

/// The placement worked out anew, without the table.
int pawn_placement(const Game& game);

}  // namespace varn
