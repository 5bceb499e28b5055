// Where the console hands over to the search, and how a game ends there.
#pragma once

#include "console/console.h"

namespace varn {

/// What a move gets when the game's record has no room for it.
inline constexpr std::string_view full_record_text = "the game record is full: 1000 moves have been played.\n";
static_assert(max_game_moves == 1000);

/// The engine's answer to the move just played; where no legal move is left, the game's result instead.
void reply_to_move(Console& console);

/// Recommends a move and leaves it to the user; the book isn't asked.
void give_hint(Console& console, const CommandLine& line);

/// The engine plays both sides until the game is over, draws by rule included, and then says how.
void play_itself(Console& console, const CommandLine& line);

/// One search of fixed depth. Doesn't start the clock: it goes by that of the last search, and without one, or where
/// that one ran out of time, it is stopped at once.
void search_fixed_depth(Console& console, const CommandLine& line);

}  // namespace varn
