// Standard output, where everything the engine has to say goes: each text leaves the process in one piece, at once.
#pragma once

#include <string_view>

namespace varn {

/// A text that nobody is left to read ends the process, whatever signals it was started to ignore; what it does without
/// a word, it still does to the end.
void set_up_output();

/// From now on the process ends, with status 0, as soon as nobody is left to read from the pipe that is its standard
/// output: at once, in the midst of a search that has hours to go, too.
void end_when_unheard();

/// Prints as `printf` does, in one write.
[[gnu::format(printf, 1, 2)]] void say(const char* format, ...);

/// Prints the text as it stands, and waits for a slow reader for as long as it takes.
void say_text(std::string_view text);

}  // namespace varn
