// Standard output: each text is written at once, in one piece.
#pragma once

#include <string_view>

namespace varn {

/// Makes writing to a closed pipe end the process, even if SIGPIPE was ignored by the parent. Work that prints nothing
/// runs to its end. Exceeding the file size limit becomes a write error like on a full disk.
void set_up_output();

/// From now on the process ends with status 0 as soon as the reader of its standard output closes the pipe, even in the
/// middle of a search.
void exit_when_reader_gone();

/// Like `printf`, in one write.
[[gnu::format(printf, 1, 2)]] void say(const char* format, ...);

/// Prints the text unchanged; blocks while the reader is slow.
void say_text(std::string_view text);

}  // namespace varn
