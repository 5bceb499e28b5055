// Lenient reader of moves in algebraic notation.
#pragma once

#include <optional>
#include <string_view>

#include "board/game.h"

namespace varn {

/// The one legal move that the text names; none if it is ambiguous, illegal or unreadable.
///
/// The from-square may be given in part or in full ("Nf3", "Nbd2", "Ng1-f3", "g1f3"), castling with letters or zeros,
/// promotions in any usual form ("e8Q", "e8=Q", "e8(Q)", "e7e8q"). A pawn's "P", "e.p.", a missing capture sign, and
/// check, mate or annotation signs are ignored. Piece letters must be capital. The game must be playable.
std::optional<Move> read_san(const Game& game, std::string_view text);

}  // namespace varn
