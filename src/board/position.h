// Positions as text, an EPD-like line of four fields, and the test of a record's soundness.
#pragma once

#include <string>
#include <string_view>

#include "board/game.h"

namespace varn {

/// What a position's text leaves to say.
struct PositionRemarks {
    bool foreign_piece = false;      // a foreign character in the board field, where reading stopped: no position
    bool foreign_side = false;       // the side field is neither "w" nor "b": `turn` is as it was
    bool foreign_enpassant = false;  // an en-passant field, which isn't understood
};

/// Overwrites the game with the position read; no moves are recorded in it.
/// The text ends at its end or at its first newline, whichever comes first; missing fields count as empty. Castling
/// letters are added up at the value of their rights, so that "KK" is the queenside right, and a right whose king or
/// rook isn't on its square is dropped. The hashes are those of the board field alone: rooks count as plain ones, and
/// it is still the turn of before. `complete_record` makes them a function of the position. Whether the position can be
/// played is another question: see `is_playable`. Where there was a foreign piece the game is good for nothing but to
/// be set again.
PositionRemarks set_position(Game& game, std::string_view text);

/// The four fields, as `set_position` reads them; the game must be consistent.
std::string position_text(const Game& game);

/// Whether `cells` and the boards agree. Looks at nothing else: not at the rotated boards, the keys or the counts.
bool is_consistent(const Game& game);

}  // namespace varn
