#include "base/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace varn {

File open_for_reading(const char* name) {
    const int descriptor = open(name, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) return nullptr;
    struct stat status = {};
    const bool is_regular = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    File file(is_regular ? fdopen(descriptor, "r") : nullptr);
    if (file == nullptr) close(descriptor);
    return file;
}

}  // namespace varn
