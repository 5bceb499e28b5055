// Positions as text, an EPD-like line of four fields, and a consistency check.
#pragma once

#include <string>
#include <string_view>

#include "board/game.h"

namespace varn {

/// What `set_position` found wrong.
struct PositionRemarks {
    bool foreign_piece = false;      // invalid character in the board field; reading stopped there
    bool foreign_side = false;       // the side field is neither "w" nor "b"; `turn` is unchanged
    bool foreign_enpassant = false;  // an en-passant field, which isn't supported
};

/// Sets up the position and clears the game's moves. The text ends at its first newline; missing fields are empty.
/// Castling letters are added up as the values of their rights, so that "KK" is the queenside right; rights without
/// king and rook in place are dropped. The hashes are those of the board field alone, with plain rooks and the previous
/// side to move: `complete_record` recomputes them. Whether the position can be played is not tested: see
/// `is_playable`. After `foreign_piece` the game must be set again before use.
PositionRemarks set_position(Game& game, std::string_view text);

/// The four fields as read by `set_position`; the game must be consistent.
std::string position_text(const Game& game);

/// Whether `cells` and the piece boards agree. Rotated boards, keys and counts are not checked.
bool is_consistent(const Game& game);

}  // namespace varn
