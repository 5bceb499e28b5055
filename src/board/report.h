// The board as text.
#pragma once

#include <string>

#include "board/game.h"

namespace varn {

/// Board, keys, material, check, castling rights and side to move: the full report without the game status.
std::string board_text(const Game& game);
/// Eight lines drawn from the bitboards, rank 8 first.
std::string diagram_text(const Game& game);
/// The same from `cells`, between two empty lines.
std::string cells_text(const Game& game);
/// Eight lines of eight digits, a8 first and h1 last.
std::string bitboard_text(Bitboard board);

}  // namespace varn
