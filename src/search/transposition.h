// The transposition table and the quiescence table. A transposition entry holds a score bound with its depth and best
// move, and is replaced by credit. A quiescence entry has no depth and is always replaced. `zobrist_key` selects the
// slot, `zobrist_lock` verifies the position. Nearly every probe misses the cache, so entries are small and never cross
// a cache line.
//
// Credit protects a slot: a new entry starts with its depth squared, hits add to it, misses and refused stores subtract
// from it, and a slot can be overwritten only when it has no credit left.
#pragma once

#include <cassert>
#include <optional>
#include <string>

#include "base/divisor.h"
#include "base/memory.h"
#include "board/game.h"
#include "search/score.h"

namespace varn {

inline constexpr std::uint8_t bound_exact = 0;
inline constexpr std::uint8_t bound_upper = 1;
inline constexpr std::uint8_t bound_lower = 2;

struct alignas(32) HashEntry {
    std::uint64_t lock;
    std::int32_t score;
    std::int32_t credit;
    Move move;  // valid if has_move is 1
    std::uint8_t has_move;
    std::int8_t depth;
    std::uint8_t bound;
    std::uint16_t generation;  // an entry of another generation than the table's is empty
};
static_assert(sizeof(HashEntry) == 32);

struct alignas(16) QhashEntry {
    std::uint64_t lock;
    std::int32_t score;
    std::uint8_t bound;
    std::uint16_t generation;
};
static_assert(sizeof(QhashEntry) == 16);

/// A hash table. Entries of another generation than the table's are empty, so that clearing is one increment; zeroed
/// memory has generation 0, which the table never has.
template <typename Entry> struct HashTable {
    ZeroedBlock<Entry> slots;
    Divisor entries = divisor(1);
    std::uint16_t generation = 1;
    bool prefaulted = false;

    Entry& slot(std::uint64_t key) const {
        assert(slots != nullptr);
        return slots[remainder(key, entries)];
    }
};
using TranspositionTable = HashTable<HashEntry>;
using QuiescenceTable = HashTable<QhashEntry>;

struct HashTables {
    TranspositionTable transposition_table;
    QuiescenceTable quiescence_table;
};

/// Allocates (1 << bits) - 1 empty entries and frees the old block; if the size is unchanged the table is only cleared.
/// Returns false if `bits` is outside 1..30 or memory is short.
bool hash_allocate(TranspositionTable& table, int bits);
/// The same, with one entry per 40 bytes and at least one. Also returns false if `bytes` isn't positive.
bool qhash_allocate(QuiescenceTable& table, std::int32_t bytes);
/// Touches the memory of both tables now, so that page faults don't slow the first search. Entries are kept. Does
/// nothing the second time.
void prefault_tables(HashTables& tables);

/// Clears the table in constant time.
void hash_clear(TranspositionTable& table);
void qhash_clear(QuiescenceTable& table);

/// The entry of this position if its depth is at least `depth`, else null. Valid until the next call on the table.
/// Updates the slot's credit.
HashEntry* hash_probe(TranspositionTable& table, const Game& game, int depth);
/// Stores a score for the side to move, unless the slot holds another position with credit left.
void hash_store(TranspositionTable& table, const Game& game, int depth, std::optional<Move> move, int score,
                std::uint8_t bound);

/// Prefetches the entries of the position after a pseudo-legal move. Call it as early as possible: a cache miss costs
/// as much as a node.
void prefetch_child(const HashTables& tables, const Game& game, Move move);
/// The same for each move of the list. Most are never made, but the prefetches overlap with scoring the moves.
void prefetch_children(const HashTables& tables, const Game& game, const MoveList& list);
/// Prefetches the child's quiescence entry only.
void prefetch_quiescent_child(const QuiescenceTable& table, const Game& game, Move move);

const QhashEntry* qhash_probe(const QuiescenceTable& table, const Game& game);
void qhash_store(QuiescenceTable& table, const Game& game, int score, std::uint8_t bound);

/// Enhanced transposition cutoff: looks for a move whose child entry, of depth `wanted_depth` or more, causes a beta
/// cutoff, and scores that move above all others. All other scores become 0. Returns whether one was found.
bool enhanced_transposition(TranspositionTable& table, const Game& game, MoveList& list, int wanted_depth, int beta);

/// Table usage in permille, estimated from the first thousand slots.
int hash_permille(const TranspositionTable& table);

/// Two lines of text: table usage and size.
std::string hash_stats_text(const TranspositionTable& table);

}  // namespace varn
