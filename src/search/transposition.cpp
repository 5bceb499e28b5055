#include "search/transposition.h"

#include <algorithm>
#include <limits>

#include "board/make.h"
#include "board/move_keys.h"

namespace varn {

namespace {

constexpr int empty_score = -1;
constexpr std::int8_t empty_depth = -1;
constexpr std::uint8_t empty_bound = 255;
constexpr std::int32_t etc_bonus = 1000000;  // above any history score

/// Size of an entry in settings and reports. Kept: docs/compatibility.md#size-of-hash-entries
constexpr std::uint64_t nominal_entry_bytes = 40;

template <typename Entry> void clear(HashTable<Entry>& table) {
    if (table.generation < std::numeric_limits<std::uint16_t>::max()) {
        ++table.generation;
        return;
    }
    // The generation counter is used up: clear the memory and start over.
    std::fill_n(table.slots.get(), table.entries.value, Entry{});
    table.generation = 1;
}

/// Returns whether the table now has this many entries.
template <typename Entry> bool allocate(HashTable<Entry>& table, std::uint64_t entries) {
    if (table.slots != nullptr && entries == table.entries.value) {
        clear(table);
        return true;
    }
    table.slots.reset();
    table.prefaulted = false;
    table.slots = zeroed_block<Entry>(entries);
    if (table.slots == nullptr) return false;
    table.entries = divisor(entries);
    table.generation = 1;
    return true;
}

template <typename Entry> void prefault_once(HashTable<Entry>& table) {
    if (!table.prefaulted) prefault(table.slots.get(), table.entries.value * sizeof(Entry));
    table.prefaulted = true;
}

/// The slot of a key, reset if it is of an old generation.
HashEntry& current_slot(const TranspositionTable& table, std::uint64_t key) {
    HashEntry& entry = table.slot(key);
    if (entry.generation != table.generation) {
        entry = {0, empty_score, 0, {0, 0, 0}, 0, empty_depth, empty_bound, table.generation};
    }
    return entry;
}

// Credit saturates: a long search with a small table would overflow it.
void add_credit(HashEntry& entry) {
    if (entry.credit < std::numeric_limits<std::int32_t>::max()) ++entry.credit;
}
void take_credit(HashEntry& entry) {
    if (entry.credit > std::numeric_limits<std::int32_t>::min()) --entry.credit;
}

HashEntry* probe(const TranspositionTable& table, PositionKeys keys, int depth) {
    HashEntry& entry = current_slot(table, keys.key);
    if (entry.depth < depth || entry.lock != keys.lock) {
        take_credit(entry);
        return nullptr;
    }
    add_credit(entry);
    return &entry;
}

/// Used ones among the first `slots` slots.
std::uint64_t used_slots(const TranspositionTable& table, std::uint64_t slots) {
    std::uint64_t used = 0;
    for (std::uint64_t i = 0; i < slots; ++i) {
        if (table.slots[i].generation == table.generation && table.slots[i].lock != 0) ++used;
    }
    return used;
}

}  // namespace

bool hash_allocate(TranspositionTable& table, int bits) {
    return bits >= 1 && bits <= 30 && allocate(table, (std::uint64_t{1} << bits) - 1);
}

bool qhash_allocate(QuiescenceTable& table, std::int32_t bytes) {
    if (bytes <= 0) return false;
    return allocate(table, std::max<std::uint64_t>(1, static_cast<std::uint64_t>(bytes) / nominal_entry_bytes));
}

void prefault_tables(HashTables& tables) {
    prefault_once(tables.transposition_table);
    prefault_once(tables.quiescence_table);
}

void hash_clear(TranspositionTable& table) { clear(table); }
void qhash_clear(QuiescenceTable& table) { clear(table); }

void prefetch_child(const HashTables& tables, const Game& game, Move move) {
    const std::uint64_t key = child_keys(game, move).key;
    prefetch(tables.transposition_table.slot(key));
    prefetch(tables.quiescence_table.slot(key));
}

void prefetch_children(const HashTables& tables, const Game& game, const MoveList& list) {
    visit_child_keys(game, list.begin(), list.end(), [&tables](PositionKeys keys) {
        prefetch(tables.transposition_table.slot(keys.key));
        prefetch(tables.quiescence_table.slot(keys.key));
    });
}

void prefetch_quiescent_child(const QuiescenceTable& table, const Game& game, Move move) {
    prefetch(table.slot(child_keys(game, move).key));
}

HashEntry* hash_probe(TranspositionTable& table, const Game& game, int depth) {
    return probe(table, keys_of(game), depth);
}

void hash_store(TranspositionTable& table, const Game& game, int depth, std::optional<Move> move, int score,
                std::uint8_t bound) {
    HashEntry& entry = current_slot(table, game.zobrist_key);
    if (entry.lock != game.zobrist_lock) {
        if (entry.credit > 0) {
            take_credit(entry);
            return;
        }
        entry.credit = depth * depth;
    }
    // Kept: docs/compatibility.md#mate-scores-in-the-table
    if (is_mate_score(score)) score += score > 0 ? depth : -depth;
    entry.score = score;
    entry.has_move = move ? 1 : 0;
    if (move) entry.move = *move;
    entry.lock = game.zobrist_lock;
    entry.depth = static_cast<std::int8_t>(depth);
    entry.bound = bound;
}

const QhashEntry* qhash_probe(const QuiescenceTable& table, const Game& game) {
    const QhashEntry& entry = table.slot(game.zobrist_key);
    const bool known = entry.generation == table.generation && entry.lock == game.zobrist_lock;
    return known ? &entry : nullptr;
}

void qhash_store(QuiescenceTable& table, const Game& game, int score, std::uint8_t bound) {
    table.slot(game.zobrist_key) = {game.zobrist_lock, score, bound, table.generation};
}

bool enhanced_transposition(TranspositionTable& table, const Game& game, MoveList& list, int wanted_depth, int beta) {
    Table<PositionKeys, MoveList::capacity> keys;
    int count = 0;
    visit_child_keys(game, list.begin(), list.end(), [&](PositionKeys child) { keys[count++] = child; });
    std::fill_n(list.scores.begin(), list.count, 0);
    for (int i = 0; i < list.count; ++i) {
        const HashEntry* child = probe(table, keys[i], wanted_depth);
        if (child != nullptr && child->bound != bound_upper && -child->score >= beta) {
            list.scores[i] = etc_bonus;
            return true;
        }
    }
    return false;
}

int hash_permille(const TranspositionTable& table) {
    const std::uint64_t sampled = std::min<std::uint64_t>(1000, table.entries.value);
    return static_cast<int>(used_slots(table, sampled) * 1000 / sampled);
}

std::string hash_stats_text(const TranspositionTable& table) {
    const std::uint64_t used = used_slots(table, table.entries.value);
    const std::uint64_t all = std::max<std::uint64_t>(1, table.entries.value);
    return "Transposition table usage: " + std::to_string(used * 100 / all) +
           "%\nTransposition table size (bytes): " + std::to_string(table.entries.value * nominal_entry_bytes) + '\n';
}

}  // namespace varn
