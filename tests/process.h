// The engine as its users meet it: a process behind two pipes, in a folder of its own.
//
// A dialogue is led step by step:
//
//     Process engine;
//     engine.read_until("Varn> ");
//     engine.send("show\n");
//     EXPECT_EQ(engine.read_until("Varn> "), board);
//     engine.send("quit\n");
//     EXPECT_EQ(engine.finish().status, 0);
//
// and a transcript in one go: `run_console("show\nquit\n").output`.
//
// Whatever the system refuses is thrown as an exception, so that it fails the test that needed it.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <string>
#include <string_view>

#include "folder.h"

namespace varn {

/// File names and contents, for the folder in which the engine starts.
using Files = std::map<std::string, std::string>;

/// A `varn.ini` with small hash tables: a process then starts at once, under a sanitizer too.
const Files& default_files();

/// How long the engine may take before a test gives up on it; far longer than anything that works needs.
inline constexpr std::chrono::milliseconds patience = std::chrono::minutes(2);

struct Outcome {
    std::string output;
    int status;  // of the exit; minus the number of the signal where one ended the process
};

class Process {
public:
    /// Starts the engine, or another program of its, in a fresh folder that holds the files. What it writes on the
    /// error stream, as a sanitizer does, goes to the test's own.
    explicit Process(const Files& files = default_files(), const char* program = VARN_EXECUTABLE);
    /// Ends the engine if it still runs, and removes the folder.
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// Hands the engine more input without waiting for it: what its pipe has no room for follows during later reads.
    /// Input for an engine that has ended is dropped.
    void send(std::string_view text);
    /// The engine finds the end of its input behind everything sent.
    void close_input();
    /// Nobody reads what the engine says any more.
    void close_output();
    void send_signal(int number);

    /// Waits for `text` and returns all output since the last call, up to its end. Throws, with what was read, if the
    /// text isn't there in time or the output ends without it.
    std::string read_until(std::string_view text, std::chrono::milliseconds timeout = patience);

    /// Waits for the process to end by itself and returns the output since the last call. It is killed where it doesn't
    /// end in time, and the output then says so in a last line.
    Outcome finish(std::chrono::milliseconds timeout = patience);

    /// From now on the engine gets no more memory than this beside what it has; an allocation beyond it fails.
    void limit_memory(std::size_t bytes);
    /// The stack of its main thread grows no further than this.
    void limit_stack(std::size_t bytes);

    /// No file that it writes grows beyond this.
    void limit_files(std::size_t bytes);

    /// The engine's folder, for a look at what it wrote.
    const Folder& folder() const { return folder_; }
    /// The content of a file there; throws if there is none.
    std::string file(const std::string& name) const { return folder_.read(name); }

private:
    using Clock = std::chrono::steady_clock;

    void start(const char* program);
    void limit(int resource, std::size_t bytes);
    bool exchange(Clock::time_point deadline);
    void write_pending();
    void read_available();
    bool has_ended(Clock::time_point deadline);
    void kill_and_reap();

    Folder folder_;
    pid_t pid_ = -1;  // -1 before the start and once its status was taken
    int status_ = 0;  // as `waitpid` gave it
    int input_ = -1;  // our ends of the pipes, -1 once closed
    int output_ = -1;
    bool input_ends_ = false;  // close the input when nothing is pending
    std::string pending_;      // sent, but not yet written
    std::string unread_;       // read from the engine, but not yet asked for
};

/// Feeds a whole input, closes it, and waits for the end. Neither input nor output has a limit of size.
Outcome run_console(std::string_view input, const Files& files = default_files(),
                    std::chrono::milliseconds timeout = patience);

}  // namespace varn
