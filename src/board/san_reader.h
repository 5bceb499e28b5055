// Moves as people and other programs write them, looked up on a board.
#pragma once

#include <optional>
#include <string_view>

#include "board/game.h"

namespace varn {

/// The one legal move that the text names, or none: where it names no legal move or more than one, or can't be read.
///
/// Reads algebraic text with as much or as little of the from-square as leaves one move ("Nf3", "Nbd2", "Ng1-f3",
/// "g1f3"), castling with letters or zeros, and promotions however they are set off ("e8Q", "e8=Q", "e8(Q)", "e7e8q").
/// A "P" before a pawn's move, "e.p." behind it, a missing sign of capture, and signs of check, mate and praise, right
/// or wrong, make no difference. Pieces are told from files by their capital letters. The game must be playable.
std::optional<Move> read_san(const Game& game, std::string_view text);

}  // namespace varn
