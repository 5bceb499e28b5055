// Self-closing files, atomic writing of files, and waiting for descriptors.
#pragma once

#include <poll.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace varn {

/// For reading: a file that is written must be released and closed explicitly, since closing can fail.
struct FileCloser {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Which files besides regular ones are accepted. Pipes and other devices could block or be read forever.
enum class Devices : bool { none, terminals_and_null };

/// Opens a file for reading; null if there is no such file.
File open_for_reading(const char* name, Devices devices = Devices::none);

/// Creates or overwrites a file; null on failure.
File open_for_writing(const char* name, Devices devices);

/// Writes the text to a new file with a unique name that begins with `beginning`, and returns the name. None on
/// failure; then no file is left behind.
std::optional<std::string> write_new_file(const std::string& beginning, std::string_view text);

/// Writes a file atomically; returns whether it succeeded. Signals that would end the process are delayed, so that no
/// partial file is left behind.
bool write_whole_file(const std::string& file_name, std::string_view text);

/// Whether such a file could be written now; leaves nothing behind.
bool can_write_whole_file(const std::string& file_name, std::string_view text);

/// Call after a failed read or write: if the descriptor was only not ready (another process may have made it
/// non-blocking) waits until it is, and returns true. Returns false on a real error.
inline bool wait_until_ready(int descriptor, short event) {
    if (errno == EINTR) return true;
    if (errno != EAGAIN) return false;
    pollfd waiting = {descriptor, event, 0};
    poll(&waiting, 1, -1);
    return true;
}

}  // namespace varn
