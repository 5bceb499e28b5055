// The order in which the engine comes to life.
#pragma once

#include <memory>

#include "frontend/engine.h"

namespace varn {

/// What every program of the engine begins with: output, what to do where memory runs out, and the hash numbers, which
/// differ from run to run. After this games may exist; all other tables are built by the compiler.
void set_up_process();

/// Reads the settings and the book, and sets up the first game with tables of the sizes set. A missing settings file or
/// too little memory ends the process with a message and status 1.
std::unique_ptr<Engine> start_up();

}  // namespace varn
