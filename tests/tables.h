// Test cases as data: files below `tables`, one case per line.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace varn {

inline std::vector<std::string> split(std::string_view text, std::string_view separator) {
    std::vector<std::string> parts;
    for (std::size_t start = 0, end; start <= text.size(); start = end + separator.size()) {
        end = std::min(text.find(separator, start), text.size());
        parts.emplace_back(text.substr(start, end - start));
    }
    return parts;
}

/// The cases of a file: fields separated by bars and trimmed. Text after "  # " is a comment.
inline std::vector<std::vector<std::string>> table_rows(const std::string& name) {
    std::vector<std::vector<std::string>> rows;
    std::ifstream file(VARN_TEST_FOLDER "/tables/" + name);
    for (std::string line; std::getline(file, line);) {
        line.resize(std::min(line.find("  # "), line.size()));
        if (line.empty() || line.starts_with('#')) continue;
        rows.push_back(split(line, "|"));
        for (std::string& field : rows.back()) {
            field.erase(0, std::min(field.find_first_not_of(' '), field.size()));
            field.resize(field.find_last_not_of(' ') + 1);
        }
    }
    EXPECT_FALSE(rows.empty()) << name;
    return rows;
}

}  // namespace varn
