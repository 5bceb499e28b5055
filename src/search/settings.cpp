#include "search/settings.h"

#include "board/reset.h"
#include "eval/pawns.h"
#include "search/ordering.h"
#include "search/transposition.h"

namespace varn {

std::int32_t hash_bits = 21;
std::int32_t qhash_bytes = 16777216;
std::int32_t xboard_mode = 0;
std::int32_t book_enabled = 0;
std::atomic<std::int32_t> ply_limit = 50;
std::atomic<std::int32_t> post_thinking = 1;

namespace {

void allocate_tables() {
    hash_allocate(hash_bits);
    qhash_allocate();
    pawn_hash_allocate();
}

void clear_tables() {
    clear_history();
    pawn_hash_clear();
    hash_clear();
    qhash_clear();
}

void position_set(KeepTables keep) {
    if (keep == KeepTables::no) {
        clear_killer_counts();
        clear_tables();
    }
    book_enabled = 0;
}

}  // namespace

void install_reset_hooks() { reset_hooks = {allocate_tables, clear_tables, position_set}; }

}  // namespace varn
