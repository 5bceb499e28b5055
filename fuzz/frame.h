// Shared by all fuzz targets: an engine that is started once, a folder for files, and interception of process exits.
#pragma once

#include <string_view>

#include "frontend/engine.h"

namespace varn {

/// Starts the engine with small tables in an empty folder and discards all output. Only the first call has an effect.
void start_engine();

/// The engine at the start of a game, with cleared tables.
Engine& fresh_engine();

/// Calls `action`. Returns if the engine tries to end the process.
void run_to_exit(void (*action)(std::string_view input), std::string_view input);

/// Writes a file into the folder.
void write_file(const char* name, std::string_view content);

}  // namespace varn

/// Runs a target on arbitrary input.
void run_input(std::string_view input);
