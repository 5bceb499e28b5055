#include "search/record.h"

namespace varn {

std::unique_ptr<Search> new_search() { return std::make_unique_for_overwrite<Search>(); }

TableFault allocate_tables(Search& s, const TableSizes& sizes) {
    if (!hash_allocate(s.tables.transposition_table, sizes.hash_bits)) return TableFault::transposition;
    if (!qhash_allocate(s.tables.quiescence_table, sizes.qhash_bytes)) return TableFault::quiescence;
    if (!pawn_hash_allocate(s.eval.pawns, sizes.phash_bytes)) return TableFault::pawns;
    return TableFault::none;
}

void clear_tables(Search& s) {
    clear_history(s.history);
    pawn_hash_clear(s.eval.pawns);
    hash_clear(s.tables.transposition_table);
    qhash_clear(s.tables.quiescence_table);
}

void clear_for_position(Search& s) {
    clear_killer_counts(s.killers);
    clear_tables(s);
}

void reset_search(Search& s) {
    clear_tables(s);
    s.killers = {};
    s.root_score = 0;
}

}  // namespace varn
