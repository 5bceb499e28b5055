// Two tables that remember positions by their keys. The transposition table serves the search: a bound with its depth
// and a best move, replaced by credits. The quiescence table serves quiescence: a bound without a depth, always
// replaced. `zobrist_key` chooses the slot, `zobrist_lock` confirms the position. Both are read all over, and nearly
// every look waits for memory: entries are small and never lie across two lines of the cache.
//
// A slot's credit is its right to stay: a new entry starts with its depth squared, hits add to it, misses and refused
// stores take from it, and only a slot without credit can be taken over.
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
    Move move;  // valid only if has_move is 1
    std::uint8_t has_move;
    std::int8_t depth;
    std::uint8_t bound;
    std::uint16_t generation;  // of the table when the slot was last in use; of any other the slot counts as empty
};
static_assert(sizeof(HashEntry) == 32);

/// The same for the quiescence table, as far as it keeps any.
struct alignas(16) QhashEntry {
    std::uint64_t lock;
    std::int32_t score;
    std::uint8_t bound;
    std::uint16_t generation;
};
static_assert(sizeof(QhashEntry) == 16);

/// A block of slots. A slot written under another generation than the table's counts as empty, so that clearing is one
/// increment; fresh memory holds generation 0, which is never the table's.
template <typename Entry> struct HashTable {
    ZeroedBlock<Entry> slots;
    Divisor entries = divisor(1);
    std::uint16_t generation = 1;

    Entry& slot(std::uint64_t key) const {
        assert(slots != nullptr);
        return slots[remainder(key, entries)];
    }
};
using TranspositionTable = HashTable<HashEntry>;
using QuiescenceTable = HashTable<QhashEntry>;

/// Both tables of a search.
struct HashTables {
    TranspositionTable transposition_table;
    QuiescenceTable quiescence_table;
};

/// Allocates (1 << bits) - 1 empty entries and frees the block before; the same size again is cleared instead. False
/// where bits lies outside 1..30 or memory doesn't suffice.
bool hash_allocate(TranspositionTable& table, int bits);
/// The same for an entry for each 40 bytes and at least one; false also where the number isn't positive.
bool qhash_allocate(QuiescenceTable& table, std::int32_t bytes);
/// Waits for the memory of both tables now instead of in the first searches, where a clock may be running. Entries
/// stay.
void make_tables_real(const HashTables& tables);

/// Empties every slot. Costs nothing, however large the table.
void hash_clear(TranspositionTable& table);
void qhash_clear(QuiescenceTable& table);

/// The entry of the present position if it was searched to `depth` or deeper, else null; valid until the next call on
/// the table. Adds to the slot's credit or takes from it.
HashEntry* hash_probe(TranspositionTable& table, const Game& game, int depth);
/// The score is the side to move's. Refused by a slot that holds another position with credit left.
void hash_store(TranspositionTable& table, const Game& game, int depth, std::optional<Move> move, int score,
                std::uint8_t bound);

/// Fetches the slots of the position after a pseudo-legal move: to be called as soon as the move is likely to be made.
/// Memory takes as long to answer as a whole node takes.
void prefetch_child(const HashTables& tables, const Game& game, Move move);
/// The same for each move of the list. Most are never made, but the fetches run beside the scoring of the moves.
void prefetch_children(const HashTables& tables, const Game& game, const MoveList& list);
/// The slot of the child in the quiescence table alone.
void prefetch_quiescent_child(const QuiescenceTable& table, const Game& game, Move move);

const QhashEntry* qhash_probe(const QuiescenceTable& table, const Game& game);
void qhash_store(QuiescenceTable& table, const Game& game, int score, std::uint8_t bound);

/// Looks for a move whose child is known to a depth of `wanted_depth` or more to be good enough for beta, and scores it
/// above all others of the list. Returns whether there is one; the scores of all others are 0.
bool enhanced_transposition(TranspositionTable& table, const Game& game, MoveList& list, int wanted_depth, int beta);

/// How full the table is, in thousandths, told by its first thousand slots.
int hash_permille(const TranspositionTable& table);

/// Two lines on the transposition table's use and size.
std::string hash_stats_text(const TranspositionTable& table);

}  // namespace varn
