// The order in which the engine comes to life.
#pragma once

#include <memory>

#include "board/game.h"

namespace varn {

/// Draws the hash numbers, which differ from run to run, and connects the rooms: after this games may exist. All tables
/// else are built by the compiler.
void build_tables();

/// Reads the settings, builds the tables, and sets up the first game, which allocates the hash tables at the sizes set.
/// A missing settings file or too little memory ends the process with a message and status 1; too little memory does so
/// later on, too.
std::unique_ptr<Game> start_up();

}  // namespace varn
