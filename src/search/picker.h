// Staged move picker: generates and returns legal moves one at a time, best first. Stages: the first move (from the
// transposition table or internal iterative deepening), good captures, promotions, two killers, quiet moves, bad
// captures.
#pragma once

#include <optional>

#include "board/pins.h"
#include "search/record.h"

namespace varn {

/// A move list consumed from the front; moves before `next` have been tried.
struct MoveQueue {
    MoveList& list;
    std::int32_t next = 0;
};

/// The state of one node's picker. The lists belong to the search record and are indexed by ply.
struct Picker {
    enum class Stage : std::uint8_t {
        first_move,
        make_captures,
        good_captures,
        promotions,
        first_killer,
        second_killer,
        make_quiets,
        quiets,
        bad_captures,
        done,
    };

    const Pins& pins;  // of the side to move
    int ply;
    int line_ply;
    int beta;
    int depth;
    std::optional<Move> first_move;

    MoveQueue captures;  // bad captures stay here until the last stage
    MoveQueue promotions;
    MoveQueue quiets;
    Stage stage = Stage::first_move;
    // Killers already returned, to be skipped among the quiet moves.
    std::optional<Move> killer_one = {};
    std::optional<Move> killer_two = {};
};

/// A new picker. `first_move` must be legal.
Picker make_picker(Search& s, const Pins& pins, int ply, int line_ply, int beta, int depth,
                   std::optional<Move> first_move);

/// Makes the next legal move, pushes its keys and returns it; none when all moves have been tried. The caller unmakes
/// it with `retract_move` and `undo_stack[ply]`. The move and the piece it captured are left in `search_stack[ply]`.
std::optional<Move> next_move(Search& s, Game& game, Picker& picker);

/// Prefetches the children of both killers. Called before the first move of a node: by the time the killers are tried,
/// the entries have arrived.
void prefetch_killers(const Search& s, const Game& game, int line_ply);

/// Whether a killer is legal in this position.
bool killer_valid(const Game& game, Move move);
/// The same with known pins of the side to move.
bool killer_valid(const Game& game, const Pins& pins, Move move);

}  // namespace varn
