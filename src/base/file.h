// Files that close themselves or come into being as a whole, and descriptors that aren't ready yet.
#pragma once

#include <poll.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace varn {

/// For files that are read: one that is written must be released and closed by hand, since that may fail.
struct FileCloser {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Which files besides regular ones will do. A pipe or another device could keep its user waiting or reading for ever.
enum class Devices : bool { none, terminals_and_null };

/// Null where there is no such file that can be read.
File open_for_reading(const char* name, Devices devices = Devices::none);

/// Created or overwritten; null where that can't be done.
File open_for_writing(const char* name, Devices devices);

/// A new file that holds the text. Its name begins with `beginning` and is no file's yet; none where it can't be
/// written, and then no file is left behind.
std::optional<std::string> write_new_file(const std::string& beginning, std::string_view text);

/// Writes a file that comes into being as a whole or not at all; returns whether it did. A signal that would end the
/// process has to wait, so that no part of it is left behind.
bool write_whole_file(const std::string& file_name, std::string_view text);

/// Whether the text could be written as such a file now; leaves nothing behind.
bool can_write_whole_file(const std::string& file_name, std::string_view text);

/// To be asked after a failed read or write: waits where the descriptor only wasn't ready, as happens where another
/// process that has it, too, told it not to wait. False where it failed for good.
inline bool wait_until_ready(int descriptor, short event) {
    if (errno == EINTR) return true;
    if (errno != EAGAIN) return false;
    pollfd waiting = {descriptor, event, 0};
    poll(&waiting, 1, -1);
    return true;
}

}  // namespace varn
