// Memory for the large tables: zeroed, and, up to a few hundred megabytes, real only where it is touched, so that a
// table of a common size costs nothing before its use.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <type_traits>

namespace varn {

/// Zeroed bytes for `std::free`; null if there isn't enough memory.
void* zeroed_bytes(std::uint64_t bytes);

/// Touches every page of a block, so that no later use of it waits for memory. What the block holds stays.
void make_real(void* block, std::uint64_t bytes);

/// Asks for the memory of a record that is soon to be read, so that it is on its way while other work goes on.
template <typename T> void prefetch(const T& record) {
    const char* first = reinterpret_cast<const char*>(&record);
    __builtin_prefetch(first);
    __builtin_prefetch(first + sizeof(T) - 1);  // it may lie across two lines of the cache
}

struct FreeDeleter {
    void operator()(void* block) const { std::free(block); }
};
template <typename T> using ZeroedBlock = std::unique_ptr<T[], FreeDeleter>;

/// A block of `count` entries with all bits zero; null if there isn't enough memory.
template <typename T> ZeroedBlock<T> zeroed_block(std::uint64_t count) {
    static_assert(std::is_trivially_default_constructible_v<T> && std::is_trivially_destructible_v<T>);
    constexpr std::uint64_t largest = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(T);
    if (count > largest) return {};
    return ZeroedBlock<T>(static_cast<T*>(zeroed_bytes(count * sizeof(T))));
}

}  // namespace varn
