#include "board/memory.h"

#include <unistd.h>

namespace varn {

bool fits_in_memory(std::uint64_t bytes) {
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long page_bytes = sysconf(_SC_PAGE_SIZE);
    if (pages < 0 || page_bytes < 0) return true;  // the machine doesn't tell: let the allocation decide
    return bytes <= static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(page_bytes);
}

}  // namespace varn
