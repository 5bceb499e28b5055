// The status of a game.
#pragma once

#include <initializer_list>
#include <string_view>

#include "board/game.h"

namespace varn {

enum class GameStatus : std::uint8_t {
    goes_on,
    mate,  // of the side to move
    stalemate,
    fifty_moves,
    repetition,        // second occurrence: a draw in the search only
    third_repetition,  // third occurrence
    insufficient_material,
    full_record,
};

/// Whether the game is over for this reason; never for `goes_on`.
bool is_over_by(const Game& game, GameStatus status);

/// The first of these reasons that applies, or `goes_on`. Several may apply at once, and the order decides: mate on the
/// hundredth ply, for example, counts as mate in some places and as a draw in others.
GameStatus status_of(const Game& game, std::initializer_list<GameStatus> ways);

/// Whether the engine can generate moves in the position: exactly one king a side, no pawn on the first or last rank.
bool is_playable(const Game& game);
/// The message for a position that can't be played.
inline constexpr std::string_view unplayable_text =
    "this position cannot be played: it needs one king a side and no pawn on the first or last rank.\n";

}  // namespace varn
