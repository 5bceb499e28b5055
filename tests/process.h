// Runs the engine as a child process behind two pipes, in a temporary folder.
//
// Step by step:
//
//     Process engine;
//     engine.read_until("Varn> ");
//     engine.send("show\n");
//     EXPECT_EQ(engine.read_until("Varn> "), board);
//     engine.send("quit\n");
//     EXPECT_EQ(engine.finish().status, 0);
//
// or in one go: `run_console("show\nquit\n").output`.
//
// System errors are thrown as exceptions and fail the test.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <string>
#include <string_view>

#include "folder.h"

namespace varn {

/// File names and contents for the engine's working directory.
using Files = std::map<std::string, std::string>;

/// A `varn.ini` with small hash tables, for a fast start also under sanitizers.
const Files& default_files();

/// Timeout of a test, far longer than needed.
inline constexpr std::chrono::milliseconds patience = std::chrono::minutes(2);

/// Whether the act takes no less than the first time, and at least once in five attempts no more than the second: other
/// processes use the machine, too. Sanitizers get more time.
template <typename Act> bool is_done_within(std::chrono::milliseconds least, std::chrono::milliseconds most, Act act) {
    if (!std::string_view(VARN_SANITIZERS).empty()) most += 5 * (most - least);
    for (int attempt = 0; attempt < 5; ++attempt) {
        const auto started = std::chrono::steady_clock::now();
        act();
        const auto taken = std::chrono::steady_clock::now() - started;
        if (taken < least || taken <= most) return taken >= least;
    }
    return false;
}

/// What connects a process with the test.
enum class Link { pipes, sockets };

struct Outcome {
    std::string output;
    int status;  // exit status, or minus the signal number
};

class Process {
public:
    /// Starts the engine or another program in a temporary folder with the files. Its standard error is the test's own.
    explicit Process(const Files& files = default_files(), const char* program = VARN_EXECUTABLE,
                     Link link = Link::pipes);
    /// Kills the engine if it still runs and removes the folder.
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// Sends input without waiting: what doesn't fit the pipe follows during later reads. Input to an exited engine is
    /// dropped.
    void send(std::string_view text);
    /// Ends the input after everything sent.
    void close_input();
    /// Closes the engine's output pipe.
    void close_output();
    void send_signal(int number);

    /// Waits for `text` and returns all output since the last call up to its end. Throws, with the output, on timeout
    /// or if the output ends before.
    std::string read_until(std::string_view text, std::chrono::milliseconds timeout = patience);

    /// Waits for the process to exit and returns the output since the last call. On timeout it is killed, and the
    /// output says so in its last line.
    Outcome finish(std::chrono::milliseconds timeout = patience);

    /// Limits the engine's memory to this much more than it has; further allocations fail.
    void limit_memory(std::size_t bytes);
    /// Limits the stack of its main thread.
    void limit_stack(std::size_t bytes);

    /// Limits the size of files that it writes.
    void limit_files(std::size_t bytes);

    /// The engine's folder.
    const Folder& folder() const { return folder_; }
    /// The content of a file in it; throws if there is none.
    std::string file(const std::string& name) const { return folder_.read(name); }

private:
    using Clock = std::chrono::steady_clock;

    void start(const char* program, Link link);
    void limit(int resource, std::size_t bytes);
    bool exchange(Clock::time_point deadline);
    void write_pending();
    void read_available();
    bool has_ended(Clock::time_point deadline);
    void kill_and_reap();

    Folder folder_;
    pid_t pid_ = -1;  // -1 if not running
    int status_ = 0;  // as `waitpid` gave it
    int input_ = -1;  // our ends of the pipes, -1 if closed
    int output_ = -1;
    bool input_ends_ = false;  // close the input once nothing is pending
    std::string pending_;      // sent but not yet written
    std::string unread_;       // received but not yet returned
};

/// Sends the whole input, closes it and waits for the exit. Input and output may be of any size.
Outcome run_console(std::string_view input, const Files& files = default_files(),
                    std::chrono::milliseconds timeout = patience);

}  // namespace varn
