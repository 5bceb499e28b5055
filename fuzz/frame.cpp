#include "frame.h"

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "frontend/startup.h"

namespace {

/// Thrown instead of exiting while an input runs.
struct EndOfProcess {};
bool may_exit = true;
std::unique_ptr<varn::Engine> engine;  // null until started
std::string folder;                    // working directory of the engine

void remove_folder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

}  // namespace

// The linker redirects `exit` here (--wrap); the names are given by it.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {
[[noreturn]] void __real_exit(int status);
[[noreturn]] void __wrap_exit(int status);
void __wrap_exit(int status) {
    if (may_exit) __real_exit(status);
    throw EndOfProcess{};
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace varn {

void start_engine() {
    if (engine != nullptr) return;
    folder = (std::filesystem::temp_directory_path() / "varn_fuzz_XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr || chdir(folder.c_str()) != 0) std::abort();
    static_cast<void>(std::atexit(remove_folder));
    if (std::freopen("/dev/null", "w", stdout) == nullptr) std::abort();
    write_file("varn.ini", "hash 10\nqhash 40000\nphash 16000\n");
    set_up_process();
    engine = start_up();
}

Engine& fresh_engine() {
    engine->book_enabled = false;
    engine->ply_limit = deepest_iteration;
    engine->search->predicted_move.reset();
    start_game(*engine);
    return *engine;
}

void run_to_exit(void (*action)(std::string_view), std::string_view input) {
    const bool before = may_exit;
    may_exit = false;
    try {
        action(input);
    } catch (const EndOfProcess&) {
        // The session ended.
    }
    may_exit = before;
}

void write_file(const char* name, std::string_view content) {
    std::ofstream file(name, std::ios::binary);
    file << content;
}

}  // namespace varn

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    varn::start_engine();
    varn::run_to_exit(run_input, {reinterpret_cast<const char*>(data), size});
    return 0;
}
