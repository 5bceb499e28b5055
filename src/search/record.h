// The record of a search: all that it reads and writes beside the game. Whoever searches owns one and hands it to every
// function of the search; two of them can be at work side by side.
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

/// A line of moves with the keys of the position before each. Behind a tail that a child left there, moves may not
/// follow.
struct PvLine {
    std::int32_t length;
    Table<Move, ply_slots> moves;
    Table<std::uint64_t, ply_slots> keys;
    Table<std::uint64_t, ply_slots> locks;
};

/// What a search tells of itself while it runs.
struct SearchReport {
    const Game& game;  // the root
    const PvLine& line;
    int depth;
    int score;            // for the side to move at the root
    std::uint32_t nodes;  // of the iteration, like the two numbers below
    std::uint32_t quiescent_nodes;
    std::uint32_t milliseconds;  // 0 while it is under way
    std::uint64_t search_nodes;  // of all iterations of the search
    int selective_depth;         // the deepest ply that the search has come to
    int line_number;             // 1 is the best line
    bool fails_high;             // the score is a lower bound, and a search with a wider window follows
};

/// Who listens to a search: called on the thread that searches. What is left empty isn't told.
struct SearchListener {
    std::function<void()> search_started;
    std::function<void(const SearchReport&)> line_improved;       // alpha rose at the root
    std::function<void(const SearchReport&)> iteration_finished;  // for each line that is asked for, the best first
    std::function<void(Move, int)> root_move_started;             // and its number, from 1
    std::function<void(double)> search_finished;  // nodes a second of the last finished iteration; 0 without one
};

/// The move made at a ply and the code that stood on its target, -1 for none, en passant and a null move. An internal
/// search, at which its parent has made no move yet, finds what was tried last at the parent's ply, quiescence and
/// illegal tries included: the extensions rest on it, and so the signature does.
struct SearchPly {
    Move move;
    std::int32_t captured;
};

/// The time is read once in 16384 nodes.
inline constexpr std::uint32_t usual_clock_interval = 0x3fff;
inline constexpr std::uint32_t no_node_limit = std::numeric_limits<std::uint32_t>::max();

struct Search {
    Clock clock;

    // Entries of the search and of quiescence, and of quiescence alone, in this iteration.
    std::uint32_t nodes = 0;
    std::uint32_t quiescent_nodes = 0;
    std::uint64_t search_nodes = 0;               // the first of these over all iterations, the unfinished one included
    std::uint32_t nodes_allowed = no_node_limit;  // in this iteration
    std::uint32_t clock_interval_mask =
        usual_clock_interval;                                 // the limits are looked at where `nodes` has no bit of it
    std::uint32_t time_interval_mask = usual_clock_interval;  // and of these, the time where it has no bit of this
    std::int32_t selective_depth = 0;                         // the deepest ply of quiescence that was worked out

    HashTables tables;
    EvalContext eval;
    Killers killers;
    History history{};

    std::int32_t iteration_depth = 0;
    std::int32_t root_score = 0;         // of the last root search, kept from one `think` to the next
    std::optional<Move> predicted_move;  // the reply that the last `think` expects
    const SearchListener* listener = nullptr;
    std::int32_t line_number = 1;  // of the line that the root is searched for; 1 is the best
    std::vector<Move> left_out;    // moves that the root passes over; none in an ordinary search
    PvLine main_pv{};              // the line of the root: the best found so far, also in an unfinished iteration

    // What the line of the search leaves at each ply.
    Table<SearchPly, ply_slots> search_stack{};
    Table<std::uint8_t, ply_slots> null_move_at{};  // 1 while a null move made at this ply is being searched
    Table<std::uint8_t, ply_slots> in_check_at{};   // whether the side to move at this ply is in check
    Table<UndoRecord, ply_slots> undo_stack;
    // Not set before they are used: memory is real only as deep as the search has come.
    Table<PvLine, ply_slots> lines;         // filled by the children of the node at this ply
    Table<PvLine, ply_slots> iid_pvs;       // of the internal iterative deepening at this ply
    PvLine null_pv;                         // below a null move; never read
    Table<MoveList, ply_slots> move_lists;  // of quiescence
    Table<MoveList, ply_slots> capture_lists, promotion_lists, quiet_lists;  // of the move picker
};

/// A search that has searched nothing yet. Its tables must be allocated before it is used.
std::unique_ptr<Search> new_search();

/// Sizes of the tables of a search.
struct TableSizes {
    std::int32_t hash_bits = 21;          // the transposition table has (1 << hash_bits) - 1 entries
    std::int32_t qhash_bytes = 16777216;  // memory for the quiescence table
    std::int32_t phash_bytes = 1048576;   // memory for the pawn hash table
};

enum class TableFault : std::uint8_t { none, transposition, quiescence, pawns };

/// Allocates the tables and empties the first two; a pawn hash table that is there already keeps its size. Returns the
/// first that couldn't be had.
TableFault allocate_tables(Search& s, const TableSizes& sizes);

/// A new game begins: the history and all tables are emptied.
void clear_tables(Search& s);
/// A position is set: the killers' counts go, too.
void clear_for_position(Search& s);
/// Nothing is left of earlier searches: the next one is as the first of the process.
void forget_all(Search& s);

}  // namespace varn
