// Progress display of long runs.
#pragma once

#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>

namespace varn {

/// Where the result goes: on a terminal progress would mix with it.
enum class Result : std::uint8_t { to_standard_output, to_file };

/// A status line on the error stream. It is shown only if that is a terminal, the result goes elsewhere, and the run
/// has taken more than two seconds.
class Progress {
public:
    /// `unit`: what is counted, such as "lines".
    Progress(std::string unit, Result result)
        : unit_(std::move(unit)),
          watched_(isatty(STDERR_FILENO) == 1 && (result == Result::to_file || isatty(STDOUT_FILENO) == 0)) {}
    ~Progress() { erase(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void show(long count) {
        if (!watched_) return;
        const auto now = Clock::now();
        if (now < next_) return;
        next_ = now + std::chrono::milliseconds(200);
        static_cast<void>(std::fprintf(stderr, "\r%ld %s", count, unit_.c_str()));
        shown_ = true;
    }
    /// Erases the line before other output.
    void erase() {
        if (shown_) static_cast<void>(std::fputs("\r\033[K", stderr));
        shown_ = false;
    }

private:
    using Clock = std::chrono::steady_clock;

    std::string unit_;
    bool watched_;
    bool shown_ = false;
    Clock::time_point next_ = Clock::now() + std::chrono::seconds(2);
};

}  // namespace varn
