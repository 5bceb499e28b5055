// Playing a move on a game and taking it back. Make keeps everything in the record exact as it goes; unmake restores
// the scalars from a saved record and moves only the men back. Neither asks whether the move is legal: they play any
// pseudo-legal move, whoever's turn it is, and the caller asks afterwards whether the mover's king stands attacked.
// A move whose `from` is empty or whose `to` holds a king is no valid input.
#pragma once

#include "board/game.h"
#include "board/restraints.h"

namespace varn {

/// What a move overwrites. Valid only for the position and the move it was taken for, last in, first out.
/// All but the last field are the front of the game, copied as one.
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
    std::uint8_t turn;
    std::int16_t ep_side;
    PieceCode captured;  // on the move's target before it, -1 for an empty square, en passant included
};

/// The move made at a ply and the code that stood on its target, -1 for none, en passant and a null move.
struct SearchPly {
    Move move;
    std::int32_t captured;
};

// What the line of the running search leaves at each ply. Written by make below and by the search; owned by whichever
// thread searches. Only the first has a slot behind the plies.
extern Table<UndoRecord, ply_slots + 1> undo_stack;
extern Table<SearchPly, ply_slots> search_stack;
extern Table<std::uint8_t, ply_slots> null_move_at;  // 1 while a null move made at this ply is being searched

/// Fills the record while the position before `move` still stands.
void fill_undo(const Game* game, Move move, UndoRecord* undo);
/// The same into `undo_stack[slot]`; gives that record.
UndoRecord* save_undo(const Game* game, Move move, int slot);

void make_move(Game* game, Move move);
void unmake_move(Game* game, Move move, const UndoRecord* undo);
// The same for a mover that is known to be of side S.
template <Side S> void make_for(Game& g, Move move);
template <Side S> void unmake_for(Game& g, Move move, const UndoRecord& undo);

/// The keys of the present position go to the end of `draw_hash`, or the last ones leave it.
void push_keys(Game* game);
void pop_keys(Game* game);
/// `draw_hash` holds the present position alone.
void reset_draw_hash(Game* game);

void make_and_push(Game* game, Move move);
/// The inverse of `make_and_push`.
void retract_move(Game* game, Move move, const UndoRecord* undo);

/// Appends to the moves of the game; a full record stays as it is.
void add_game_move(Game* game, Move move);
/// A move of the real game: made, its keys pushed, recorded. Returns false, with nothing changed, on a full record.
bool play_move(Move move, Game* game);

/// Makes the move unless it leaves the mover's own king attacked; returns whether it stands. Leaves the captured code
/// in `search_stack[ply]` and pushes no keys. `undo` must have been filled.
bool make_if_legal(Game* game, Move move, int ply, const UndoRecord* undo);

/// The same for a move of side S under its restraints. `undo` may have been filled for any move of the position: the
/// captured man is set here.
template <Side S> bool make_if_legal(Game& game, Move move, int ply, const Restraints& restraints, UndoRecord& undo);

/// Passes the turn: clears the en-passant square, pushes the keys, and marks `ply` in `null_move_at`.
void make_null(Game* game, int ply, UndoRecord* undo);
void unmake_null(Game* game, const UndoRecord* undo);

}  // namespace varn
