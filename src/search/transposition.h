// Two tables of one record that remember positions by their keys. The transposition table serves the search: a bound
// with its depth and a best move, replaced by credits. The quiescence table serves quiescence: a bound without a depth,
// always replaced. `zobrist_key` chooses the slot, `zobrist_lock` confirms the position.
//
// A slot's credit is its right to stay: a new entry starts with its depth squared, hits add to it, misses and refused
// stores take from it, and only a slot without credit can be taken over.
#pragma once

#include "board/game.h"
#include "search/score.h"

namespace varn {

inline constexpr std::uint8_t bound_exact = 0;
inline constexpr std::uint8_t bound_upper = 1;
inline constexpr std::uint8_t bound_lower = 2;

struct HashEntry {
    Move move;  // valid only if has_move is 1
    std::int32_t score;
    std::int8_t depth;  // in the quiescence table the distance from the root, which nobody asks
    std::uint8_t bound;
    std::uint32_t generation;  // of the table when the slot was last in use; of any other the slot counts as empty
    std::uint64_t lock;
    std::uint64_t key;
    std::uint8_t has_move;
    std::int32_t credit;
};
static_assert(sizeof(HashEntry) == 40);

/// Allocates (1 << bits) - 1 empty entries and frees the block before; the same size again is cleared instead. Where
/// bits lies outside 1..30, or memory doesn't suffice, ends the process with a message and status 1.
void hash_allocate(int bits);
/// The same for `qhash_bytes`, at least one entry for a positive number; a negative one ends the process, too.
void qhash_allocate();
/// Waits for the memory of both tables now instead of in the first searches, where a clock may be running. Entries
/// stay.
void make_tables_real();

/// Empties every slot. Costs nothing, however large the table.
void hash_clear();
void qhash_clear();

/// The entry of the present position if it was searched to `depth` or deeper, else null; valid until the next call on
/// the table. Adds to the slot's credit or takes from it.
HashEntry* hash_probe(const Game* game, int depth);
/// The score is the side to move's; `move` may be null. Refused by a slot that holds another position with credit left.
void hash_store(const Game* game, int depth, const Move* move, int score, std::uint8_t bound);

/// Fetches the slots of the present position in both tables: to be called as soon as its keys are known.
void prefetch_hashes(const Game* game);
void prefetch_qhash(const Game* game);

HashEntry* qhash_probe(const Game* game);
void qhash_store(const Game* game, int line_ply, int score, std::uint8_t bound);

/// Both keys of the position after a pseudo-legal move, as make would leave them; changes nothing.
PositionKeys child_keys(const Game* game, Move move);

/// Looks for a move whose child is known to a depth of `wanted_depth` or more to be good enough for beta, and scores it
/// above all others of the list. Returns whether there is one; the scores of all others are 0.
bool enhanced_transposition(const Game* game, MoveList* list, int wanted_depth, int beta);

/// Two lines on the transposition table's use and size.
void print_hash_stats();

}  // namespace varn
