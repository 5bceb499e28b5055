// Which files can be opened.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "base/file.h"
#include "folder.h"

namespace varn {
namespace {

TEST(File, RefusesFilesThatCouldBlock) {
    const WorkingFolder folder;
    folder.write("file", "text");
    std::filesystem::create_directory("folder");
    ASSERT_EQ(mkfifo("pipe", 0666), 0);
    std::filesystem::create_symlink("pipe", "link");
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(terminal >= 0 && grantpt(terminal) == 0 && unlockpt(terminal) == 0);
    const std::string terminal_name = ptsname(terminal);
    for (const Devices devices : {Devices::none, Devices::terminals_and_null}) {
        for (const char* name : {"missing", "folder", "pipe", "link", "/dev/zero", "/dev/full"}) {
            EXPECT_EQ(open_for_reading(name, devices), nullptr) << name;
        }
        for (const char* name : {"folder", "pipe", "link", "/dev/full"}) {
            EXPECT_EQ(open_for_writing(name, devices), nullptr) << name;
        }
        for (const std::string& name : {std::string("/dev/null"), terminal_name}) {
            const bool will_do = devices == Devices::terminals_and_null;
            EXPECT_EQ(open_for_reading(name.c_str(), devices) != nullptr, will_do) << name;
            EXPECT_EQ(open_for_writing(name.c_str(), devices) != nullptr, will_do) << name;
        }
        EXPECT_NE(open_for_reading("file", devices), nullptr);
        EXPECT_EQ(folder.read("file"), devices == Devices::none ? "text" : "");
        EXPECT_NE(open_for_writing("file", devices), nullptr);
    }
    close(terminal);
}

}  // namespace
}  // namespace varn
