// Temporary folders, removed with all their contents.
#pragma once

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace varn {

/// A temporary folder.
class Folder {
public:
    Folder() {
        std::string name = (std::filesystem::temp_directory_path() / "varn-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category(), name);
        path_ = name;
    }
    ~Folder() {
        std::error_code ignored;  // failing to remove it is no test failure
        std::filesystem::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string path_to(const std::string& name) const { return (path_ / name).string(); }

    void write(const std::string& name, const std::string& content) const {
        std::ofstream stream(path_to(name), std::ios::binary);
        stream << content;
        if (!stream.flush()) throw std::system_error(errno, std::generic_category(), name);
    }
    /// Names of all files in it, sorted.
    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path_)) names.push_back(entry.path().filename());
        std::ranges::sort(names);
        return names;
    }
    std::string read(const std::string& name) const {
        std::ifstream stream(path_to(name), std::ios::binary);
        if (!stream) throw std::system_error(errno, std::generic_category(), name);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

private:
    std::filesystem::path path_;
};

/// An environment variable with another value while this exists.
class Environment {
public:
    Environment(const char* name, const char* value) : name_(name) {
        if (const char* const before = std::getenv(name)) before_ = before;
        setenv(name, value, 1);
    }
    ~Environment() {
        if (before_) {
            setenv(name_, before_->c_str(), 1);
        } else {
            unsetenv(name_);
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    const char* name_;
    std::optional<std::string> before_;
};

/// A temporary folder that is the working directory while it exists.
class WorkingFolder : public Folder {
public:
    WorkingFolder() { std::filesystem::current_path(path_to(".")); }
    ~WorkingFolder() { std::filesystem::current_path(before_); }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

private:
    std::filesystem::path before_ = std::filesystem::current_path();
};

}  // namespace varn
