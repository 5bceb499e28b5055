// Memory for the large tables: zeroed, and real only where it is touched, so that a table costs nothing before its use.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <type_traits>

namespace varn {

/// Whether the machine has that much memory at all, in use or not. The system itself promises more than it has, and the
/// process would end without a word when it comes to be touched.
bool fits_in_memory(std::uint64_t bytes);

struct FreeDeleter {
    void operator()(void* block) const { std::free(block); }
};
template <typename T> using ZeroedBlock = std::unique_ptr<T[], FreeDeleter>;

/// A block of `count` entries with all bits zero; null if there isn't enough memory.
template <typename T> ZeroedBlock<T> zeroed_block(std::uint64_t count) {
    static_assert(std::is_trivially_default_constructible_v<T> && std::is_trivially_destructible_v<T>);
    constexpr std::uint64_t largest = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(T);
    if (count > largest || !fits_in_memory(count * sizeof(T))) return {};
    return ZeroedBlock<T>(static_cast<T*>(std::calloc(count, sizeof(T))));
}

}  // namespace varn
