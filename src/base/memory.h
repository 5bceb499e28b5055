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

/// Of the machine, in use or not; as much as can be counted where the machine doesn't tell.
std::uint64_t physical_memory_bytes();

/// Zeroed bytes for `std::free`; null if there isn't enough memory.
void* zeroed_bytes(std::uint64_t bytes);

/// Touches every page of a block, so that no later use of it waits for memory. What the block holds stays.
void prefault(void* block, std::uint64_t bytes);

/// Asks for the memory of a record that is soon to be read, so that it is on its way while other work goes on. The
/// record must lie within one line of the cache.
template <typename T> void prefetch(const T& record) {
    static_assert(alignof(T) == sizeof(T));
    __builtin_prefetch(&record);
    // An empty statement that counts as an effect: g++ takes a function that does no more than prefetch for one without
    // any, and drops the calls of it.
    asm volatile("" : : "r"(&record));
}

/// Frees the block that a table stands in, whatever of its front is left out.
struct FreeDeleter {
    void* block;
    void operator()(void*) const { std::free(block); }
};
template <typename T> using ZeroedBlock = std::unique_ptr<T[], FreeDeleter>;

/// A block of `count` entries with all bits zero; null if there isn't enough memory.
template <typename T> ZeroedBlock<T> zeroed_block(std::uint64_t count) {
    static_assert(std::is_trivially_default_constructible_v<T> && std::is_trivially_destructible_v<T>);
    constexpr std::uint64_t largest = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(T) - 1;
    if (count > largest) return {};
    std::size_t space = (count + 1) * sizeof(T);
    void* const block = zeroed_bytes(space);
    void* first = block;
    if (block != nullptr) std::align(alignof(T), count * sizeof(T), first, space);
    return ZeroedBlock<T>(static_cast<T*>(first), FreeDeleter{block});
}

}  // namespace varn
