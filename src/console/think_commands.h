// Console commands that search, and the end of a game.
#pragma once

#include "console/console.h"

namespace varn {

/// The message when the game's record is full.
inline constexpr std::string_view full_record_text = "the game record is full: 1000 moves have been played.\n";
static_assert(max_game_moves == 1000);

/// Plays the engine's reply, or prints the result if there is no legal move.
void reply_to_move(Console& console);

/// Prints a recommended move without playing it. The book isn't used.
void give_hint(Console& console, const CommandLine& line);

/// The engine plays both sides until the game is over, draws by rule included, and prints the result.
void play_itself(Console& console, const CommandLine& line);

/// A search to a fixed depth. It doesn't start the clock: the clock of the last search applies, and if that has expired
/// or there was none the search stops at once.
void search_fixed_depth(Console& console, const CommandLine& line);

}  // namespace varn
