// Pawn structure: doubled, isolated, backward and passed pawns. What depends on the pawns alone is remembered in the
// pawn hash table: `pawn_key` chooses the slot, `pawn_lock` confirms the pawns. What a passed pawn is worth depends on
// the rooks as well, so the table keeps only which files have one.
//
// The table is one block for the whole process, without a lock: whichever thread searches uses it.
#pragma once

#include "board/game.h"

namespace varn {

/// Memory for the pawn hash table. Read from the settings file before the table is allocated.
extern std::int32_t phash_bytes;

/// One slot, written by the position that came last.
struct PawnEntry {
    std::int32_t score;        // doubled, isolated and backward pawns, from white's point of view
    std::uint8_t w_passed;     // bit n: a white passed pawn on file number n + 1
    std::uint8_t b_passed;     // the same for black
    std::uint16_t generation;  // of the table when the slot was written; of any other the slot counts as empty
    std::uint64_t lock;
};
static_assert(sizeof(PawnEntry) == 16);

/// Allocates the table from `phash_bytes`, one slot at least; a table that exists is kept as it is. Ends the process
/// with a message and status 1 where the setting isn't positive or memory doesn't suffice.
void pawn_hash_allocate();

/// Empties every slot. Costs nothing, however large the table.
void pawn_hash_clear();

// Both need an allocated table.

/// The slot of these pawns if it is theirs, else null; valid until the next store.
const PawnEntry* pawn_hash_probe(const Game* game);
void pawn_hash_store(const Game* game, int score, std::uint8_t w_passed, std::uint8_t b_passed);

/// The pawns' score in centipawns from white's point of view. Where the table knows the pawns it scores one passed pawn
/// a file, the one on the lowest square, and doesn't ask again whether that one is passed; otherwise it scores all of
/// them. So two pawns of one colour on a file can make the second score of a position differ from its first.
int pawn_terms(const Game* game);

}  // namespace varn
