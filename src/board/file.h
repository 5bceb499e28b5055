// Files that close themselves.
#pragma once

#include <cstdio>
#include <memory>

namespace varn {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Null where the file can't be opened.
inline File open_for_reading(const char* name) { return File(std::fopen(name, "r")); }

}  // namespace varn
