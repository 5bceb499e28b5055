#include "base/memory.h"

#include <sys/mman.h>
#include <unistd.h>

namespace varn {

namespace {

/// Asks for huge pages: hash tables are accessed at random, and with small pages nearly every access misses the TLB.
/// Failure only costs speed.
void prefer_large_pages([[maybe_unused]] void* block, [[maybe_unused]] std::uint64_t bytes) {
#ifdef MADV_HUGEPAGE
    const auto page_bytes = static_cast<std::uintptr_t>(sysconf(_SC_PAGE_SIZE));
    const auto start = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t first_page = (start + page_bytes - 1) / page_bytes * page_bytes;
    if (first_page >= start + bytes) return;
    madvise(static_cast<char*>(block) + (first_page - start), start + bytes - first_page, MADV_HUGEPAGE);
#endif
}

/// Blocks from this size on are prefaulted when allocated. Page faults slow the search; with a small table that is soon
/// over, with a large one it would cost the first moves of a game most of their time.
constexpr std::uint64_t lazy_bytes = 256 << 20;

}  // namespace

std::uint64_t physical_memory_bytes() {
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long page_bytes = sysconf(_SC_PAGE_SIZE);
    if (pages < 0 || page_bytes < 0) return std::numeric_limits<std::uint64_t>::max();
    return static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(page_bytes);
}

// Checked here because the system overcommits: the process would be killed when the memory is touched.
void* zeroed_bytes(std::uint64_t bytes) {
    if (bytes > physical_memory_bytes()) return nullptr;
    void* block = std::calloc(1, bytes);
    if (block == nullptr) return nullptr;
    prefer_large_pages(block, bytes);
    if (bytes >= lazy_bytes) prefault(block, bytes);
    return block;
}

void prefault(void* block, std::uint64_t bytes) {
    const auto page_bytes = static_cast<std::uint64_t>(sysconf(_SC_PAGE_SIZE));
    auto* first = static_cast<volatile char*>(block);
    for (std::uint64_t offset = 0; offset < bytes; offset += page_bytes) {
        const char kept = first[offset];
        first[offset] = kept;
    }
}

}  // namespace varn
