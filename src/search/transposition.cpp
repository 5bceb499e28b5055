#include "search/transposition.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>

#include "board/memory.h"
#include "board/output.h"
#include "board/zobrist.h"
#include "search/settings.h"

namespace varn {

namespace {

constexpr int empty_score = -1;
constexpr std::int8_t empty_depth = -1;
constexpr std::uint8_t empty_bound = 255;
constexpr std::int32_t etc_bonus = 1000000;  // above any history score that the list could hold instead

/// A block of slots. A slot written under another generation than the table's counts as empty, so that clearing is one
/// increment; fresh memory holds generation 0, which is never the table's.
struct HashTable {
    ZeroedBlock<HashEntry> slots;
    std::uint64_t entries = 0;
    std::uint32_t generation = 1;
};

HashTable transposition_table;
HashTable quiescence_table;

void clear(HashTable& table) {
    if (table.generation < std::numeric_limits<std::uint32_t>::max()) {
        ++table.generation;
        return;
    }
    // The stamps have run out once in four thousand million clears: wipe for real and start over.
    for (std::uint64_t i = 0; i < table.entries; ++i) table.slots[i] = HashEntry{};
    table.generation = 1;
}

/// Whether the table now has this many entries.
bool allocate(HashTable& table, std::uint64_t entries) {
    if (entries == table.entries) {
        clear(table);
        return true;
    }
    table.slots.reset();
    table.entries = 0;
    table.slots = zeroed_block<HashEntry>(entries);
    if (table.slots == nullptr) return false;
    table.entries = entries;
    table.generation = 1;
    return true;
}

[[noreturn]] void refuse(const char* message) {
    say_text(message);
    std::exit(1);
}

std::uint64_t slot_index(const HashTable& table, std::uint64_t key) { return key % table.entries; }

/// The slot of a key, emptied first if what it holds was cleared away.
HashEntry& live_slot(HashTable& table, std::uint64_t key) {
    HashEntry& entry = table.slots[slot_index(table, key)];
    if (entry.generation != table.generation) {
        entry = {{0, 0, 0}, empty_score, empty_depth, empty_bound, table.generation, 0, 0, 0, 0};
    }
    return entry;
}

// Credit stops at the ends of its type: a small table in a long search would pass them.
void add_credit(HashEntry& entry) {
    if (entry.credit < std::numeric_limits<std::int32_t>::max()) ++entry.credit;
}
void take_credit(HashEntry& entry) {
    if (entry.credit > std::numeric_limits<std::int32_t>::min()) --entry.credit;
}

HashEntry* probe(PositionKeys keys, int depth) {
    HashEntry& entry = live_slot(transposition_table, keys.key);
    if (entry.depth < depth || entry.lock != keys.lock) {
        take_credit(entry);
        return nullptr;
    }
    add_credit(entry);
    return &entry;
}

/// Both keys at once, as make changes them.
struct KeyDelta {
    PositionKeys keys;

    void toggle(std::uint64_t number) { keys ^= in_both(number); }
    void toggle_man(int square, int code) { keys ^= zobrist_numbers[square][code]; }
    void move_man(int from, int to, int code) {
        toggle_man(from, code);
        toggle_man(to, code);
    }
    /// Toggles the numbers of those of the rights that side S still has.
    template <Side S> void lose_rights(const Game& g, std::uint32_t rights) {
        const std::uint32_t lost = castle_of<S>(g) & rights;
        if ((lost & kingside_right) != 0) toggle(kingside_number<S>());
        if ((lost & queenside_right) != 0) toggle(queenside_number<S>());
    }
};

/// The rights that go with a man of this kind when it moves or is captured.
constexpr std::uint32_t rights_of(Man man) {
    switch (man) {
        case king: return kingside_right | queenside_right;
        case kingside_rook: return kingside_right;
        case queenside_rook: return queenside_right;
        default: return 0;
    }
}

template <Side S> PositionKeys child_keys_of(const Game& g, Move move) {
    constexpr Side them = other(S);
    const int mover = g.cells[move.from];
    const int captured = g.cells[move.to];
    KeyDelta delta = {keys_of(g)};
    delta.toggle(zobrist_side_number);
    if (g.enpassant != 0) delta.toggle(zobrist_ep_numbers[first_one(g.enpassant)]);
    delta.lose_rights<S>(g, rights_of(man_of(mover)));
    if (captured != no_piece) {
        delta.toggle_man(move.to, captured);
        if (man_of(captured) != king) delta.lose_rights<them>(g, rights_of(man_of(captured)));
    }

    if (is_promotion(move.kind)) {
        delta.toggle_man(move.from, mover);
        delta.toggle_man(move.to, move.kind);
        return delta.keys;
    }
    delta.move_man(move.from, move.to, mover);
    switch (move.kind) {
        case kind_double_step: {
            const int passed = move.from + up<S>;
            if ((pawn_attacks<S>[passed] & pawns_of<them>(g)) != 0) delta.toggle(zobrist_ep_numbers[passed]);
            break;
        }
        case kind_en_passant: delta.toggle_man(move.to - up<S>, code_of(them, pawn)); break;
        case kind_kingside_castling:
            delta.move_man(own_square<S>(h1), own_square<S>(f1), code_of(S, kingside_rook));
            break;
        case kind_queenside_castling:
            delta.move_man(own_square<S>(a1), own_square<S>(d1), code_of(S, queenside_rook));
            break;
        default: break;
    }
    return delta.keys;
}

}  // namespace

void hash_allocate(int bits) {
    const bool in_range = bits >= 1 && bits <= 30;
    if (!in_range || !allocate(transposition_table, (std::uint64_t{1} << bits) - 1)) {
        refuse("Cannot allocate enough memory for transposition hash tables.\n");
    }
}

void qhash_allocate() {
    const std::uint64_t bytes = qhash_bytes > 0 ? static_cast<std::uint64_t>(qhash_bytes) : 0;
    const std::uint64_t entries = std::max<std::uint64_t>(1, bytes / sizeof(HashEntry));
    if (bytes == 0 || !allocate(quiescence_table, entries)) refuse("error: out of memory.\n");
}

void make_tables_real() {
    for (HashTable* table : {&transposition_table, &quiescence_table}) {
        make_real(table->slots.get(), table->entries * sizeof(HashEntry));
    }
}

void hash_clear() { clear(transposition_table); }
void qhash_clear() { clear(quiescence_table); }

void prefetch_hashes(const Game* game) {
    prefetch(transposition_table.slots[slot_index(transposition_table, game->zobrist_key)]);
    prefetch_qhash(game);
}

void prefetch_qhash(const Game* game) {
    prefetch(quiescence_table.slots[slot_index(quiescence_table, game->zobrist_key)]);
}

HashEntry* hash_probe(const Game* game, int depth) { return probe(keys_of(*game), depth); }

void hash_store(const Game* game, int depth, const Move* move, int score, std::uint8_t bound) {
    HashEntry& entry = live_slot(transposition_table, game->zobrist_key);
    if (entry.lock != game->zobrist_lock) {
        if (entry.credit > 0) {
            take_credit(entry);
            return;
        }
        entry.credit = depth * depth;
    }
    if (is_mate_score(score)) score += score > 0 ? depth : -depth;
    entry.score = score;
    entry.has_move = move != nullptr ? 1 : 0;
    if (move != nullptr) entry.move = *move;
    entry.lock = game->zobrist_lock;
    entry.key = game->zobrist_key;
    entry.depth = static_cast<std::int8_t>(depth);
    entry.bound = bound;
}

HashEntry* qhash_probe(const Game* game) {
    HashEntry& entry = quiescence_table.slots[slot_index(quiescence_table, game->zobrist_key)];
    const bool known = entry.generation == quiescence_table.generation && entry.lock == game->zobrist_lock;
    return known ? &entry : nullptr;
}

void qhash_store(const Game* game, int line_ply, int score, std::uint8_t bound) {
    HashEntry& entry = quiescence_table.slots[slot_index(quiescence_table, game->zobrist_key)];
    entry.generation = quiescence_table.generation;
    entry.lock = game->zobrist_lock;
    entry.score = score;
    entry.bound = bound;
    entry.depth = static_cast<std::int8_t>(line_ply);
}

PositionKeys child_keys(const Game* game, Move move) {
    return game->turn == 0 ? child_keys_of<Side::white>(*game, move) : child_keys_of<Side::black>(*game, move);
}

bool enhanced_transposition(const Game* game, MoveList* list, int wanted_depth, int beta) {
    Table<PositionKeys, MoveList::capacity> keys;
    for (int i = 0; i < list->count; ++i) {
        list->scores[i] = 0;
        keys[i] = child_keys(game, list->moves[i]);
        prefetch(transposition_table.slots[slot_index(transposition_table, keys[i].key)]);
    }
    for (int i = 0; i < list->count; ++i) {
        const HashEntry* child = probe(keys[i], wanted_depth);
        if (child != nullptr && child->bound != bound_upper && -child->score >= beta) {
            list->scores[i] = etc_bonus;
            return true;
        }
    }
    return false;
}

void print_hash_stats() {
    const HashTable& table = transposition_table;
    std::uint64_t used = 0;
    for (std::uint64_t i = 0; i < table.entries; ++i) {
        if (table.slots[i].generation == table.generation && table.slots[i].lock != 0) ++used;
    }
    const std::uint64_t all = std::max<std::uint64_t>(1, table.entries);
    say("Transposition table usage: %d%%\n", static_cast<int>(used * 100 / all));
    say("Transposition table size (bytes): %s\n", std::to_string(table.entries * sizeof(HashEntry)).c_str());
}

}  // namespace varn
