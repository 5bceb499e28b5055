// How a game stands.
#pragma once

#include <initializer_list>
#include <string_view>

#include "board/game.h"

namespace varn {

/// The ways in which a game can be over.
enum class GameStatus : std::uint8_t {
    goes_on,
    mate,  // of the side to move
    stalemate,
    fifty_moves,
    repetition,        // the position stood once before: a draw in the search only
    third_repetition,  // it stood twice before
    insufficient_material,
    full_record,
};

/// Whether the game is over in this way; never for `goes_on`.
bool is_over_by(const Game& game, GameStatus status);

/// The first of these ways in which the game is over, or `goes_on`. Several may hold at once, and who asks says which
/// counts: a mate on the hundredth ply, for one, is a mate to some and a draw to others.
GameStatus status_of(const Game& game, std::initializer_list<GameStatus> ways);

/// Whether the engine can generate moves in the position: exactly one king a side, no pawn on the first or last rank.
bool is_playable(const Game& game);
/// What is said of a position that can't be played.
inline constexpr std::string_view unplayable_text =
    "this position cannot be played: it needs one king a side and no pawn on the first or last rank.\n";

}  // namespace varn
