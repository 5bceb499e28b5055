// What the search tells of itself, in the protocol's words.
#pragma once

#include <cstdint>
#include <string>

#include "search/record.h"

namespace varn {

/// "cp 35" or "mate -3": mates in moves, from the point of view of the side to move.
std::string score_text(int score);

/// The moves of a line in coordinate form, as far as they are legal.
std::string pv_text(const Game& game, const PvLine& line);

/// One `info` line; `milliseconds` are those of the whole search.
std::string info_text(const SearchReport& report, std::uint32_t milliseconds, int hash_permille);

/// Nodes a second; a search faster than the clock's tick counts as one tick.
std::uint64_t speed_of(std::uint64_t nodes, std::uint32_t milliseconds);

/// What a person should know and no client needs.
void say_info(const std::string& text);

}  // namespace varn
