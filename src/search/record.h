// The search record: all state of one search except the game. The caller owns it and passes it to every function of the
// search, so several searches can run side by side.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

#include "board/make.h"
#include "eval/evaluate.h"
#include "search/clock.h"
#include "search/ordering.h"
#include "search/transposition.h"

namespace varn {

/// A principal variation: moves, and the keys of the position before each. A tail taken over from a child may be stale:
/// its moves need not be legal.
struct PvLine {
    std::int32_t length;
    Table<Move, ply_slots> moves;
    Table<std::uint64_t, ply_slots> keys;
    Table<std::uint64_t, ply_slots> locks;
};

/// Progress of a running search.
struct SearchReport {
    const Game& game;  // the root
    const PvLine& line;
    int depth;
    int score;            // for the side to move at the root
    std::uint32_t nodes;  // of this iteration, like the next two
    std::uint32_t quiescent_nodes;
    std::uint32_t milliseconds;  // 0 while the iteration is running
    std::uint64_t search_nodes;  // of all iterations
    int selective_depth;         // deepest ply reached
    int line_number;             // 1 is the best line
    bool fails_high;             // the score is a lower bound; a re-search follows
};

/// Callbacks of a search, called on the searching thread. Any of them may be empty.
struct SearchListener {
    std::function<void()> search_started;
    std::function<void(const SearchReport&)> line_improved;       // alpha rose at the root
    std::function<void(const SearchReport&)> iteration_finished;  // once per line, best line first
    std::function<void(Move, int)> root_move_started;             // with its number, from 1
    std::function<void(double)> search_finished;  // nodes per second of the last finished iteration, or 0
};

/// The move made at a ply and the code of the piece on its target square, -1 for none, en passant and a null move.
/// Internal iterative deepening starts before its parent has made a move, so it reads whatever was tried last at the
/// parent's ply, including quiescence and illegal moves. The extensions depend on that, and so does the node count.
struct SearchPly {
    Move move;
    std::int32_t captured;
};

/// Mask: the time is read every 16384 nodes.
inline constexpr std::uint32_t usual_clock_interval = 0x3fff;
inline constexpr std::uint32_t no_node_limit = std::numeric_limits<std::uint32_t>::max();

struct Search {
    Clock clock;

    // Counts of this iteration: all nodes, and those of quiescence.
    std::uint32_t nodes = 0;
    std::uint32_t quiescent_nodes = 0;
    std::uint64_t search_nodes = 0;               // all nodes of all iterations, the unfinished one included
    std::uint32_t nodes_allowed = no_node_limit;  // in this iteration
    std::uint32_t clock_interval_mask = usual_clock_interval;  // limits are checked when `nodes & mask` is 0
    std::uint32_t time_interval_mask = usual_clock_interval;   // the same for the time
    std::int32_t selective_depth = 0;                          // deepest ply reached in quiescence

    HashTables tables;
    EvalContext eval;
    Killers killers;
    History history{};

    std::int32_t iteration_depth = 0;
    std::int32_t root_score = 0;         // of the last root search, kept between searches
    std::optional<Move> predicted_move;  // expected reply, for pondering
    const SearchListener* listener = nullptr;
    std::int32_t line_number = 1;      // the line being searched; 1 is the best
    std::vector<Move> excluded_moves;  // root moves not to be searched; usually none
    PvLine main_pv{};                  // best line so far, also in an unfinished iteration

    // The stack of the search, by ply.
    Table<SearchPly, ply_slots> search_stack{};
    Table<std::uint8_t, ply_slots> null_move_at{};  // 1 while a null move at this ply is searched
    Table<std::uint8_t, ply_slots> in_check_at{};   // 1 if the side to move at this ply is in check
    Table<UndoRecord, ply_slots> undo_stack;
    // Not initialised, so that untouched pages cost no memory.
    Table<PvLine, ply_slots> lines;                                          // filled by this ply's children
    Table<PvLine, ply_slots> iid_pvs;                                        // internal iterative deepening
    PvLine null_pv;                                                          // null-move searches; never read
    Table<MoveList, ply_slots> move_lists;                                   // quiescence
    Table<MoveList, ply_slots> capture_lists, promotion_lists, quiet_lists;  // move picker
};

/// A new search record. Its tables must be allocated before use.
std::unique_ptr<Search> new_search();

struct TableSizes {
    std::int32_t hash_bits = 21;          // the transposition table gets (1 << hash_bits) - 1 entries
    std::int32_t qhash_bytes = 16777216;  // quiescence table
    std::int32_t phash_bytes = 1048576;   // pawn hash table
};

enum class TableFault : std::uint8_t { none, transposition, quiescence, pawns };

/// Allocates and clears the tables; an existing pawn hash table keeps its size. Returns the first table whose
/// allocation failed.
TableFault allocate_tables(Search& s, const TableSizes& sizes);

/// For a new game: clears the history and all tables.
void clear_tables(Search& s);
/// For a new position: clears the killer counts as well.
void clear_for_position(Search& s);
/// Resets everything, as if no search had run before.
void reset_search(Search& s);

}  // namespace varn
