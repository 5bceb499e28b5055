// Preloaded into an engine under test; causes the fault named by VARN_FAULT.
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <string_view>

namespace {

bool is_fault(std::string_view name) {
    const char* fault = std::getenv("VARN_FAULT");
    return fault != nullptr && fault == name;
}

/// The original function that this one replaces.
template <typename Function> Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

constexpr std::size_t largest_block = 28U << 20U;  // enough for a search record and its lists
bool is_refused(std::size_t bytes) { return bytes > largest_block && is_fault("memory"); }

constexpr std::int64_t ms_until_fault = 200;  // after the first clock read
std::atomic<std::int64_t> first_ms = 0;

/// The clock's value after the fault.
std::int64_t wrong_ms(std::int64_t ms) {
    constexpr std::int64_t hour_ms = 3'600'000;
    constexpr std::int64_t wrap_ms = std::int64_t{1} << 32;
    if (first_ms == 0) first_ms = ms;
    const std::int64_t passed = ms - first_ms;
    if (is_fault("clock wraps")) return wrap_ms - ms_until_fault + passed;
    if (is_fault("clock jumps back")) return passed < ms_until_fault ? hour_ms + passed : passed;
    return ms;
}

[[gnu::constructor]] void disturb_input_and_output() {
    const bool waits = !is_fault("ends that don't wait");
    if (waits && !is_fault("interrupted calls")) return;
    struct sigaction interrupt = {};
    interrupt.sa_handler = [](int) {};  // without SA_RESTART
    sigaction(SIGURG, &interrupt, nullptr);
    for (const int end : {STDIN_FILENO, STDOUT_FILENO}) {
        if (!waits) fcntl(end, F_SETFL, fcntl(end, F_GETFL) | O_NONBLOCK);
    }
}

}  // namespace

extern "C" {

void* malloc(std::size_t bytes) { return is_refused(bytes) ? nullptr : next<void*(std::size_t)>("malloc")(bytes); }

void* calloc(std::size_t count, std::size_t bytes) {
    return is_refused(count * bytes) ? nullptr : next<void*(std::size_t, std::size_t)>("calloc")(count, bytes);
}

int clock_gettime(clockid_t clock, timespec* time) {
    const int status = next<int(clockid_t, timespec*)>("clock_gettime")(clock, time);
    if (clock != CLOCK_MONOTONIC || status != 0) return status;
    const std::int64_t ms = wrong_ms(time->tv_sec * 1000 + time->tv_nsec / 1'000'000);
    *time = {ms / 1000, ms % 1000 * 1'000'000};
    return status;
}

// Functions that remove or rename files.

int unlink(const char* name) {
    if (is_fault("signal behind a file")) raise(SIGTERM);
    return next<int(const char*)>("unlink")(name);
}

}  // extern "C"
