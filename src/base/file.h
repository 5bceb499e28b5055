// Files that close themselves, and descriptors that aren't ready yet.
#pragma once

#include <poll.h>

#include <cerrno>
#include <cstdio>
#include <memory>

namespace varn {

/// For files that are read: one that is written must be closed by hand, since that may fail.
struct FileCloser {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Null where there is no regular file of that name that can be read: a pipe or a device could keep whoever reads it
/// waiting for ever.
File open_for_reading(const char* name);

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
