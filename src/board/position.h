// Positions as text, an EPD-like line of four fields, and the tests of a record's soundness.
#pragma once

#include <string>
#include <string_view>

#include "board/game.h"
#include "board/reset.h"

namespace varn {

/// Overwrites the game with the position read; no moves are recorded in it, and the book goes off.
/// The text ends at its end or at its first newline, whichever comes first; missing fields count as empty. A foreign
/// character in the board field ends the process with a message and status 1; a foreign side field gets a message and
/// leaves `turn` as it was; a castling right whose king or rook isn't on its square is dropped; an en-passant field is
/// not understood and said so. Whether the position can be played is another question: see `is_playable`.
void set_position(Game* game, std::string_view text, KeepTables keep);

/// The four fields, as `set_position` reads them; the game must be consistent.
std::string position_text(const Game* game);
/// Prints the position text as a line of its own, or says that the game is corrupt.
void print_position_text(const Game* game);

/// Whether `cells` and the boards agree. Looks at nothing else: not at the rotated boards, the keys or the counts.
bool is_consistent(const Game* game);

/// Whether the engine can generate moves in the position: exactly one king a side, no pawn on the first or last rank.
bool is_playable(const Game* game);
/// What is said of a position that can't be played.
inline constexpr std::string_view unplayable_text =
    "this position cannot be played: it needs one king a side and no pawn on the first or last rank.\n";

}  // namespace varn
