// Memory for large tables: zeroed and, up to a few hundred megabytes, committed only when touched, so that tables of a
// common size cost nothing at start-up.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <type_traits>

namespace varn {

/// Installed memory; the maximum value if unknown.
std::uint64_t physical_memory_bytes();

/// Zeroed bytes, to be freed with `std::free`; null if memory is short.
void* zeroed_bytes(std::uint64_t bytes);

/// Touches every page of a block, so that later accesses don't fault. The content is kept.
void prefault(void* block, std::uint64_t bytes);

/// Prefetches a record, which must lie within one cache line.
template <typename T> void prefetch(const T& record) {
    static_assert(alignof(T) == sizeof(T));
    __builtin_prefetch(&record);
    // Keeps g++ from treating a function that only prefetches as pure and dropping calls of it.
    asm volatile("" : : "r"(&record));
}

struct FreeDeleter {
    void* block;
    void operator()(void*) const { std::free(block); }
};
template <typename T> using ZeroedBlock = std::unique_ptr<T[], FreeDeleter>;

/// A zeroed block of `count` entries; null if memory is short.
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
