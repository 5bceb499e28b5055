// Moves as clients write them.
#pragma once

#include <optional>
#include <string_view>

#include "board/game.h"

namespace varn {

/// A text that names two squares of the board and perhaps a piece; whether that is a move, the position tells.
bool is_move_shaped(std::string_view text);

/// The legal move that the text is, in coordinate form of either case; none where it is no such move.
std::optional<Move> read_move(const Game& game, std::string_view text);

}  // namespace varn
