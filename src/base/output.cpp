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

// A signal handler, and all that it calls is allowed in one. The signals come for other reasons, too.
extern "C" void end_if_unheard(int) {
    const int interrupted_error = errno;
    pollfd output = {STDOUT_FILENO, 0, 0};
    if (poll(&output, 1, 0) == 1 && (output.revents & (POLLERR | POLLHUP)) != 0) _exit(0);
    errno = interrupted_error;
}

}  // namespace

void end_when_unheard() {
    if (!is_pipe(STDOUT_FILENO)) return;
    struct sigaction action = {};
    action.sa_handler = end_if_unheard;
    action.sa_flags = SA_RESTART;
    sigaction(SIGPIPE, &action, nullptr);
    sigaction(SIGIO, &action, nullptr);
    // The kernel says by SIGIO when something happens at either end of the pipe.
    fcntl(STDOUT_FILENO, F_SETOWN, getpid());
    fcntl(STDOUT_FILENO, F_SETFL, fcntl(STDOUT_FILENO, F_GETFL) | O_ASYNC);
    end_if_unheard(SIGIO);  // what happened before
}

void set_up_output() {
    static_cast<void>(std::signal(SIGPIPE, SIG_DFL));
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
}

// A failure for good is not reported: there is nowhere left to report it.
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

// NOLINTNEXTLINE(cert-dcl50-cpp): it takes what `printf` takes, and the compiler checks its arguments.
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
