// What all fuzz targets share: an engine that is started once, a folder to write files in, and a way out of whatever
// would end the process.
#pragma once

#include <string_view>

#include "frontend/engine.h"

namespace varn {

/// Starts the engine with small tables in an empty folder of its own, and drops all output. The first call does it.
void start_engine();

/// The engine at the beginning of a game, as a session that begins finds it. Its tables are those of the last session,
/// emptied.
Engine& fresh_engine();

/// Calls `action`. Where the engine ends the process, the call returns instead.
void run_to_exit(void (*action)(std::string_view input), std::string_view input);

/// Puts a file into the folder.
void write_file(const char* name, std::string_view content);

}  // namespace varn

/// What a target does with an input of any bytes.
void run_input(std::string_view input);
