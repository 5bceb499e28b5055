// The staged move picker: hands a node its legal moves one at a time, the most promising first, and does only the work
// that the node asks for. The stages: the first move, which the node brings along; captures that don't lose material;
// promotions; two killers; quiet moves; captures that lose material.
#pragma once

#include <optional>

#include "board/pins.h"
#include "search/record.h"

namespace varn {

/// A list that is handed out from the front; what lies before `next` is gone.
struct Supply {
    MoveList& list;
    std::int32_t next = 0;
};

/// One node's way through the stages. It belongs to the node and goes with it; the lists are those of its ply in the
/// record of the search.
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

    // Of the node.
    const Pins& pins;  // of the side to move
    int ply;
    int line_ply;
    int beta;
    int depth;
    std::optional<Move> first_move;

    Supply captures;  // the bad ones stay in it until the last stage
    Supply promotions;
    Supply quiets;
    Stage stage = Stage::first_move;
    bool quiets_in_order = false;  // those left have no history, and come as they were generated
    // Those that were handed out, and must not come again among the quiet moves.
    std::optional<Move> killer_one = {};
    std::optional<Move> killer_two = {};
};

/// A picker at its start. `first_move` must be legal.
Picker make_picker(Search& s, const Pins& pins, int ply, int line_ply, int beta, int depth,
                   std::optional<Move> first_move);

/// The next legal move of the node, already made on `game` with its keys pushed; none when there are no more, then and
/// ever after. The caller takes it back with `retract_move` and `undo_stack[ply]`. Leaves the move and what it captured
/// in `search_stack[ply]`.
std::optional<Move> next_move(Search& s, Game& game, Picker& picker);

/// Whether a killer, a quiet move from another position, can legally be played in this one.
bool killer_valid(const Game& game, Move move);
/// The same where the pins of the side to move are known.
bool killer_valid(const Game& game, const Pins& pins, Move move);

}  // namespace varn
