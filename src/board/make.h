// Playing a move on a game and taking it back. Make keeps everything in the record exact as it goes; unmake restores
// the scalars from a saved record and moves only the pieces back. Neither asks whether the move is legal: they play any
// pseudo-legal move, whoever's turn it is, and the caller asks afterwards whether the mover's king stands attacked.
// A move whose `from` is empty or whose `to` holds a king is no valid input.
#pragma once

#include "board/game.h"
#include "board/pins.h"

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
    Side turn;
    Side ep_side;
    alignas(8) PieceCode captured;  // on the move's target before it, -1 for an empty square, en passant included
};

/// Fills the record while the position before `move` still stands.
void fill_undo(const Game& game, Move move, UndoRecord& undo);
/// The same for whatever moves the position has: `make_if_legal` sets the captured piece.
void save_undo(const Game& game, UndoRecord& undo);

void make_move(Game& game, Move move);
void unmake_move(Game& game, Move move, const UndoRecord& undo);
// The same for a mover that is known to be of side S.
template <Side S> void make_for(Game& g, Move move);
template <Side S> void unmake_for(Game& g, Move move, const UndoRecord& undo);

/// The keys of the present position go to the end of `draw_hash`, or the last ones leave it.
void push_keys(Game& game);
void pop_keys(Game& game);
/// `draw_hash` holds the present position alone.
void reset_draw_hash(Game& game);

/// Keys of positions that no later one can repeat leave `draw_hash`.
void drop_old_keys(Game& game);

void make_and_push(Game& game, Move move);
/// The inverse of `make_and_push`.
void retract_move(Game& game, Move move, const UndoRecord& undo);

/// Appends to the moves of the game; a full record stays as it is.
void add_game_move(Game& game, Move move);
/// A move of the real game: made, its keys pushed, recorded. Returns false, with nothing changed, on a full record.
bool play_move(Game& game, Move move);

/// Makes a pseudo-legal move of side S unless it leaves its own king attacked; returns whether it stands. Pushes no
/// keys. `pins` are the position's; `undo` was saved for any of its moves, and gets the captured piece.
template <Side S> bool make_if_legal(Game& game, Move move, const Pins& pins, UndoRecord& undo);
/// The same for the side to move.
bool make_if_legal(Game& game, Move move, const Pins& pins, UndoRecord& undo);

/// Passes the turn: clears the en-passant square and pushes the keys. Fills what `unmake_null` needs of `undo`.
void make_null(Game& game, UndoRecord& undo);
void unmake_null(Game& game, const UndoRecord& undo);

/// Both keys of the position after a pseudo-legal move, as make would leave them; changes nothing.
PositionKeys child_keys(const Game& game, Move move);

}  // namespace varn
