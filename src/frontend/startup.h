// Start-up sequence.
#pragma once

#include <cstdint>
#include <memory>

#include "frontend/engine.h"

namespace varn {

/// First call of every program: sets up output, the out-of-memory handler and the hash numbers, which differ from run
/// to run. No game may exist before; all other tables are compile-time constants.
void set_up_process();

/// A seed that differs between runs.
std::uint64_t clock_seed();

/// Reads the settings and the book, allocates the tables and sets up the first game. A missing settings file or too
/// little memory ends the process with a message and status 1.
std::unique_ptr<Engine> start_up();

}  // namespace varn
