// Making and unmaking moves. Make updates the whole game incrementally; unmake restores the saved fields and moves the
// pieces back. Neither tests legality: they play any pseudo-legal move of either side. `from` must not be empty and
// `to` must not hold a king.
#pragma once

#include "board/game.h"
#include "board/pins.h"

namespace varn {

/// Fields that a move overwrites, saved for unmake. All but `captured` are a copy of the front of the game.
struct UndoRecord {
    std::uint64_t zobrist_key;
    std::uint64_t zobrist_lock;
    std::uint64_t pawn_key;
    std::uint64_t pawn_lock;
    Bitboard enpassant;
    std::uint32_t w_castle;
    std::uint32_t b_castle;
    std::int32_t material;
    std::int32_t w_material;
    std::int32_t b_material;
    std::uint8_t fifty;
    Side turn;
    Side ep_side;
    alignas(8) PieceCode captured;  // piece on the target square, -1 if empty or en passant
};

/// Fills the record; call it before the move is made.
void fill_undo(const Game& game, Move move, UndoRecord& undo);
/// The same for any move of the position: `make_if_legal` sets the captured piece.
void save_undo(const Game& game, UndoRecord& undo);

void make_move(Game& game, Move move);
void unmake_move(Game& game, Move move, const UndoRecord& undo);
// The same for a known side.
template <Side S> void make_for(Game& g, Move move);
template <Side S> void unmake_for(Game& g, Move move, const UndoRecord& undo);

/// Adds the current keys to `draw_hash`, or removes the last ones.
void push_keys(Game& game);
void pop_keys(Game& game);
/// Leaves only the current position in `draw_hash`.
void reset_draw_hash(Game& game);

/// Drops the keys of positions that can no longer be repeated.
void drop_old_keys(Game& game);

void make_and_push(Game& game, Move move);
/// The inverse of `make_and_push`.
void retract_move(Game& game, Move move, const UndoRecord& undo);

/// Appends to the game's moves, unless the record is full.
void add_game_move(Game& game, Move move);
/// Plays a move of the real game: makes it, pushes its keys and records it. Does nothing and returns false if the
/// record is full.
bool play_move(Game& game, Move move);

/// Makes a pseudo-legal move of side S if it is legal; returns whether it was made. Pushes no keys. `pins` are those of
/// the position; `undo` comes from `save_undo` and receives the captured piece.
template <Side S> bool make_if_legal(Game& game, Move move, const Pins& pins, UndoRecord& undo);
/// The same for the side to move.
bool make_if_legal(Game& game, Move move, const Pins& pins, UndoRecord& undo);

/// Makes a null move: clears the en-passant square, passes the turn and pushes the keys.
void make_null(Game& game, UndoRecord& undo);
void unmake_null(Game& game, const UndoRecord& undo);

/// Both keys after a pseudo-legal move, without making it.
PositionKeys child_keys(const Game& game, Move move);

}  // namespace varn
