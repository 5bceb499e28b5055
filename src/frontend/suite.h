// Test suites: files of positions with the moves that solve them, played through by the engine, which keeps score.
//
// A line of a suite begins with a position as `set_position` reads it. Behind it, anywhere and in any form, stand the
// moves that solve it in the engine's own short algebraic form: the engine's move solves the position if its text
// occurs in the line.
#pragma once

#include <string>

#include "frontend/engine.h"

namespace varn {

/// Plays the positions of a suite, each with the present time limit, and reports on standard output and in the log,
/// which is created or overwritten. A position that can't be played, or in which the game is over, isn't solved, and
/// the report says why. The book is off afterwards; no game but the run's own is touched.
void run_suite(Engine& engine, const std::string& suite_name, const std::string& log_name,
               const SearchListener& listener);

}  // namespace varn
