// Checks at start-up whether the processor has the instructions that the engine is compiled for. This file itself is
// compiled for any processor and without link-time optimisation: see CMakeLists.txt.
#include <unistd.h>

#include <string_view>

namespace {

constexpr std::string_view too_old_text = "error: this processor is too old: Varn needs SSE4.2 and POPCNT.\n";

// Runs before all other initialisers.
[[gnu::constructor(101)]] void refuse_old_processor() {
    __builtin_cpu_init();
    if (__builtin_cpu_supports("ssse3") != 0 && __builtin_cpu_supports("sse4.2") != 0 &&
        __builtin_cpu_supports("popcnt") != 0) {
        return;
    }
    const bool said = write(STDOUT_FILENO, too_old_text.data(), too_old_text.size()) > 0;
    _exit(said ? 1 : 2);
}

}  // namespace
