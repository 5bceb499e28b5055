#include "base/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>

#include "base/random.h"

namespace varn {

namespace {

constexpr mode_t created_mode = 0666;  // before the umask

bool is_null_device(const struct stat& status) {
    struct stat null_device = {};
    return stat("/dev/null", &null_device) == 0 && S_ISCHR(status.st_mode) && status.st_rdev == null_device.st_rdev;
}

bool is_usable(int descriptor, Devices devices) {
    struct stat status = {};
    if (fstat(descriptor, &status) != 0) return false;
    if (S_ISREG(status.st_mode)) return true;
    return devices == Devices::terminals_and_null && (isatty(descriptor) == 1 || is_null_device(status));
}

/// Opened without blocking, because a pipe without a peer would block; later reads and writes do block.
File open_usable(const char* name, int flags, const char* mode, Devices devices) {
    const int descriptor = open(name, flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, created_mode);
    if (descriptor < 0) return nullptr;
    const bool usable = is_usable(descriptor, devices) && fcntl(descriptor, F_SETFL, 0) == 0;
    File file(usable ? fdopen(descriptor, mode) : nullptr);
    if (file == nullptr) close(descriptor);
    return file;
}

/// While this exists, signals that would end the process are blocked.
class SignalsWait {
public:
    SignalsWait() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalsWait() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsWait(const SignalsWait&) = delete;
    SignalsWait& operator=(const SignalsWait&) = delete;

private:
    sigset_t before_ = {};
};

bool write_all(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (!wait_until_ready(descriptor, POLLOUT)) {
            return false;
        }
    }
    return true;
}

std::string random_letters(RandomSource& random) {
    std::string letters(8, 'a');
    for (char& letter : letters) letter = static_cast<char>('a' + random.below(26));
    return letters;
}

}  // namespace

File open_for_reading(const char* name, Devices devices) { return open_usable(name, O_RDONLY, "r", devices); }

File open_for_writing(const char* name, Devices devices) {
    return open_usable(name, O_WRONLY | O_CREAT | O_TRUNC, "w", devices);
}

// Exclusive creation follows no link and never takes an existing file.
std::optional<std::string> write_new_file(const std::string& beginning, std::string_view text) {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    RandomSource random(static_cast<std::uint64_t>(std::chrono::nanoseconds(now).count()));
    const SignalsWait signals_wait;
    for (int tries = 0; tries < 100; ++tries) {
        std::string name = beginning + random_letters(random);
        const int descriptor = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, created_mode);
        if (descriptor < 0 && errno == EEXIST) continue;
        if (descriptor < 0) break;
        const bool written = write_all(descriptor, text);
        if (close(descriptor) == 0 && written) return name;
        unlink(name.c_str());
        break;
    }
    return std::nullopt;
}

bool write_whole_file(const std::string& file_name, std::string_view text) {
    const SignalsWait signals_wait;
    const auto unfinished = write_new_file(file_name + '.', text);
    if (!unfinished) return false;
    if (rename(unfinished->c_str(), file_name.c_str()) == 0) return true;
    unlink(unfinished->c_str());
    return false;
}

bool can_write_whole_file(const std::string& file_name, std::string_view text) {
    const SignalsWait signals_wait;
    const auto written = write_new_file(file_name + '.', text);
    return written && unlink(written->c_str()) == 0;
}

}  // namespace varn
