#include "process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace varn {

namespace {

using std::chrono::milliseconds;

[[noreturn]] void refuse(const std::string& what) { throw std::system_error(errno, std::generic_category(), what); }

void close_end(int& end) {
    if (end >= 0) close(end);
    end = -1;
}

/// Closed on exec: an end inherited by another process would hide the end of input.
struct Pipe {
    int read_end = -1;
    int write_end = -1;

    explicit Pipe(Link link) {
        std::array<int, 2> ends{};
        const int made = link == Link::pipes ? pipe2(ends.data(), O_CLOEXEC)
                                             : socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data());
        if (made != 0) refuse("pipe");
        read_end = ends[0];
        write_end = ends[1];
    }
    ~Pipe() {
        close_end(read_end);
        close_end(write_end);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
};

int take(int& end) { return std::exchange(end, -1); }

/// The child after the fork: other threads are gone but their locks are not, so only system calls are safe.
[[noreturn]] void become_engine(const char* program, const char* folder, const Pipe& input, const Pipe& output) {
    constexpr int cannot_execute = 127;  // the shell's convention
    const bool connected = dup2(input.read_end, STDIN_FILENO) >= 0 && dup2(output.write_end, STDOUT_FILENO) >= 0;
    // Background shells start their children with interrupts ignored; undo that.
    // SIGPIPE stays ignored, as some clients leave it: the engine must see to it itself.
    for (const int number : {SIGINT, SIGHUP, SIGTERM}) std::signal(number, SIG_DFL);
    if (connected && chdir(folder) == 0) execl(program, program, static_cast<char*>(nullptr));
    _exit(cannot_execute);
}

/// Milliseconds until the deadline for `poll`, rounded up, at least 0.
int remaining_ms(std::chrono::steady_clock::time_point deadline) {
    const auto left = std::chrono::ceil<milliseconds>(deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::max(left, milliseconds(0)).count());
}

}  // namespace

const Files& default_files() {
    static const Files files = {{"varn.ini", "hash 16\nqhash 1048576\n"}};
    return files;
}

Process::Process(const Files& files, const char* program, Link link) {
    for (const auto& [name, content] : files) folder_.write(name, content);
    start(program, link);
}

Process::~Process() {
    kill_and_reap();
    close_end(input_);
    close_end(output_);
}

void Process::start(const char* program, Link link) {
    Pipe input(link);
    Pipe output(link);
    // Writing to an engine that has exited is an error, not a signal.
    std::signal(SIGPIPE, SIG_IGN);
    const std::string folder = folder_.path_to(".");
    pid_ = fork();
    if (pid_ < 0) refuse("fork");
    if (pid_ == 0) become_engine(program, folder.c_str(), input, output);
    fcntl(input.write_end, F_SETFL, O_NONBLOCK);
    fcntl(output.read_end, F_SETFL, O_NONBLOCK);
    input_ = take(input.write_end);
    output_ = take(output.read_end);
}

void Process::send(std::string_view text) {
    pending_ += text;
    write_pending();
}

void Process::close_input() {
    input_ends_ = true;
    write_pending();
}

void Process::close_output() { close_end(output_); }

void Process::send_signal(int number) {
    if (kill(pid_, number) != 0) refuse("kill");
}

void Process::limit(int resource, std::size_t bytes) {
    const rlimit limits = {bytes, bytes};
    if (prlimit(pid_, static_cast<__rlimit_resource>(resource), &limits, nullptr) != 0) refuse("prlimit");
}

void Process::limit_memory(std::size_t bytes) {
    std::ifstream statistics("/proc/" + std::to_string(pid_) + "/statm");
    rlim_t pages = 0;
    statistics >> pages;
    limit(RLIMIT_AS, pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + bytes);
}

void Process::limit_stack(std::size_t bytes) { limit(RLIMIT_STACK, bytes); }
void Process::limit_files(std::size_t bytes) { limit(RLIMIT_FSIZE, bytes); }

std::string Process::read_until(std::string_view text, milliseconds timeout) {
    const Clock::time_point deadline = Clock::now() + timeout;
    std::size_t searched = 0;
    for (bool going = true;; going = exchange(deadline)) {
        const std::size_t found = unread_.find(text, searched);
        if (found != std::string::npos) {
            std::string read = unread_.substr(0, found + text.size());
            unread_.erase(0, read.size());
            return read;
        }
        if (!going) {
            throw std::runtime_error("no \"" + std::string(text) +
                                     (output_ < 0 ? "\" before the end of the output: \"" : "\" in time in: \"") +
                                     unread_ + '"');
        }
        // The text may start in what was read before.
        searched = unread_.size() - std::min(unread_.size(), text.size());
    }
}

Outcome Process::finish(milliseconds timeout) {
    const Clock::time_point deadline = Clock::now() + timeout;
    while (exchange(deadline)) {
    }
    const bool ended = has_ended(deadline);
    kill_and_reap();
    Outcome outcome = {std::exchange(unread_, {}), 0};
    if (!ended) outcome.output += "\n[killed: still running after " + std::to_string(timeout.count()) + " ms]\n";
    outcome.status = WIFEXITED(status_) ? WEXITSTATUS(status_) : -WTERMSIG(status_);
    return outcome;
}

/// Waits for input or output and transfers what it can. Returns false at the end of output or the deadline.
bool Process::exchange(Clock::time_point deadline) {
    if (output_ < 0) return false;
    // Negative descriptors are skipped: an idle input would always be ready.
    std::array<pollfd, 2> ends = {{{output_, POLLIN, 0}, {pending_.empty() ? -1 : input_, POLLOUT, 0}}};
    const int ready = poll(ends.data(), ends.size(), remaining_ms(deadline));
    if (ready < 0 && errno != EINTR) refuse("poll");
    if (ready > 0 && ends[1].revents != 0) write_pending();
    if (ready > 0 && ends[0].revents != 0) read_available();
    return output_ >= 0 && Clock::now() < deadline;
}

void Process::write_pending() {
    while (input_ >= 0 && !pending_.empty()) {
        const ssize_t written = write(input_, pending_.data(), pending_.size());
        if (written >= 0) {
            pending_.erase(0, static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            return;
        } else if (errno != EINTR) {
            close_end(input_);
        }
    }
    if (input_ < 0) pending_.clear();
    if (input_ends_) close_end(input_);
}

void Process::read_available() {
    std::vector<char> buffer(1 << 16);
    for (;;) {
        const ssize_t length = read(output_, buffer.data(), buffer.size());
        if (length > 0) {
            unread_.append(buffer.data(), static_cast<std::size_t>(length));
        } else if (length < 0 && errno == EINTR) {
            continue;
        } else {
            if (length == 0) close_end(output_);
            return;
        }
    }
}

/// Waits for the process to exit; its output may have ended earlier.
bool Process::has_ended(Clock::time_point deadline) {
    while (pid_ >= 0) {
        const pid_t ended = waitpid(pid_, &status_, WNOHANG);
        if (ended == pid_) {
            pid_ = -1;
        } else if (Clock::now() >= deadline) {
            return false;
        } else {
            std::this_thread::sleep_for(milliseconds(1));
        }
    }
    return true;
}

void Process::kill_and_reap() {
    if (pid_ < 0) return;
    kill(pid_, SIGKILL);
    while (waitpid(pid_, &status_, 0) < 0 && errno == EINTR) {
    }
    pid_ = -1;
}

Outcome run_console(std::string_view input, const Files& files, milliseconds timeout) {
    Process engine(files);
    engine.send(input);
    engine.close_input();
    return engine.finish(timeout);
}

}  // namespace varn
