// Standard output, where everything the engine has to say goes: each text leaves the process in one piece, at once.
#pragma once

#include <string_view>

namespace varn {

/// Writing to a closed pipe ends the process, also where it was started to ignore that signal. Work that prints nothing
/// goes on to its end. A file that grows past the limit of its size fails like one on a full disk.
void set_up_output();

/// From now on the process ends, with status 0, as soon as the reader of the pipe that is its standard output is gone:
/// at once, also in the middle of a long search.
void end_when_unheard();

/// Prints as `printf` does, in one write.
[[gnu::format(printf, 1, 2)]] void say(const char* format, ...);

/// Prints the text as it stands, and waits for a slow reader for as long as it takes.
void say_text(std::string_view text);

}  // namespace varn
