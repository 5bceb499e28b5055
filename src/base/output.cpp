#include "base/output.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "base/file.h"

namespace varn {

namespace {

bool is_pipe(int descriptor) {
    struct stat status = {};
    return fstat(descriptor, &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode));
}

// Signal handler: calls only async-signal-safe functions. The signals may have other causes as well.
extern "C" void exit_if_reader_gone(int) {
    const int interrupted_error = errno;
    pollfd output = {STDOUT_FILENO, 0, 0};
    if (poll(&output, 1, 0) == 1 && (output.revents & (POLLERR | POLLHUP)) != 0) _exit(0);
    errno = interrupted_error;
}

}  // namespace

void exit_when_reader_gone() {
    if (!is_pipe(STDOUT_FILENO)) return;
    struct sigaction action = {};
    action.sa_handler = exit_if_reader_gone;
    action.sa_flags = SA_RESTART;
    sigaction(SIGPIPE, &action, nullptr);
    sigaction(SIGIO, &action, nullptr);
    // The kernel sends SIGIO when something happens at either end of the pipe.
    fcntl(STDOUT_FILENO, F_SETOWN, getpid());
    fcntl(STDOUT_FILENO, F_SETFL, fcntl(STDOUT_FILENO, F_GETFL) | O_ASYNC);
    exit_if_reader_gone(SIGIO);  // the reader may already be gone
}

void set_up_output() {
    static_cast<void>(std::signal(SIGPIPE, SIG_DFL));
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
}

// Errors are not reported: there is no place left to report them.
void say_text(std::string_view text) {
    std::size_t said = 0;
    while (said < text.size()) {
        const ssize_t written = write(STDOUT_FILENO, text.data() + said, text.size() - said);
        if (written >= 0) {
            said += static_cast<std::size_t>(written);
        } else if (!wait_until_ready(STDOUT_FILENO, POLLOUT)) {
            return;
        }
    }
}

// NOLINTNEXTLINE(cert-dcl50-cpp): printf-style; the compiler checks the arguments.
void say(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    if (length > 0) {
        std::string text(static_cast<std::size_t>(length), '\0');
        static_cast<void>(std::vsnprintf(text.data(), text.size() + 1, format, again));
        say_text(text);
    }
    va_end(again);
}

}  // namespace varn
