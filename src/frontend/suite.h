// Test suites: files of positions with their best moves, solved by the engine, which keeps score.
//
// A line starts with a position as read by `set_position`. The best moves follow in any form, in the engine's algebraic
// notation: a position counts as solved if the text of the engine's move occurs in the line.
#pragma once

#include <string>

#include "frontend/engine.h"

namespace varn {

/// Solves the positions of a suite with the current time limit and reports on standard output and in the log, which is
/// created or overwritten. A position that can't be played, or is over, counts as unsolved, with a reason. The book is
/// switched off; only the run's own game is changed.
void run_suite(Engine& engine, const std::string& suite_name, const std::string& log_name,
               const SearchListener& listener);

}  // namespace varn
