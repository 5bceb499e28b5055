// Search output in UCI form.
#pragma once

#include <cstdint>
#include <string>

#include "search/record.h"

namespace varn {

/// "cp 35" or "mate -3": mates in moves, from the point of view of the side to move.
std::string score_text(int score);

/// The moves of a line in coordinate notation, as far as they are legal.
std::string pv_text(const Game& game, const PvLine& line);

/// One `info` line; `milliseconds` is the time of the whole search.
std::string info_text(const SearchReport& report, std::uint32_t milliseconds, int hash_permille);

/// Nodes per second. A search faster than a clock tick counts as one tick.
std::uint64_t speed_of(std::uint64_t nodes, std::uint32_t milliseconds);

/// Prints an `info string` line for the user.
void say_info(const std::string& text);

}  // namespace varn
