// Which files are opened at all.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "base/file.h"
#include "folder.h"

namespace varn {
namespace {

TEST(File, IsNothingThatCouldKeepItsUserWaiting) {
    const WorkingFolder folder;
    folder.write("file", "text");
    std::filesystem::create_directory("folder");
    ASSERT_EQ(mkfifo("pipe", 0666), 0);
    std::filesystem::create_symlink("pipe", "link");
    for (const Devices devices : {Devices::none, Devices::terminals_and_null}) {
        for (const char* name : {"missing", "folder", "pipe", "link", "/dev/zero", "/dev/full"}) {
            EXPECT_EQ(open_for_reading(name, devices), nullptr) << name;
        }
        for (const char* name : {"folder", "pipe", "link", "/dev/full"}) {
            EXPECT_EQ(open_for_writing(name, devices), nullptr) << name;
        }
        EXPECT_EQ(open_for_reading("/dev/null", devices) != nullptr, devices == Devices::terminals_and_null);
        EXPECT_EQ(open_for_writing("/dev/null", devices) != nullptr, devices == Devices::terminals_and_null);
        EXPECT_NE(open_for_reading("file", devices), nullptr);
        EXPECT_EQ(folder.read("file"), devices == Devices::none ? "text" : "");
        EXPECT_NE(open_for_writing("file", devices), nullptr);
    }
}

}  // namespace
}  // namespace varn
