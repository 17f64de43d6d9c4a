// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "store/ParameterFiles.h"
#include "store/RuntimeError.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

TEST(Dir, FindsRegularFilesRegardlessOfCaseAndReturnsTheirSpelling) {
    test::TempDir dir;
    dir.Write("TEMP.DAT", {});
    ::mkdir(dir.File("netpara.tmp").c_str(), 0755);
    EXPECT_EQ(Dir(dir.File("temp.dat")), "TEMP.DAT");
    EXPECT_EQ(Dir(dir.File("netpara.tmp")), "");  // a directory is not a file
    EXPECT_EQ(Dir(dir.Path() + "nodir/param.tmp"), "");
}

TEST(DeleteWorkFiles, RemovesTheWorkingFilesByTheirComparisons) {
    test::TempDir dir;
    for (const char* name :
         {"param.$$p", "TEMP.DAT", "netpara.$$$", "param.$$$", "Netpara.NET", "param.net",
          "PARAM.$$$", "NETPARA.$$$", "param.tmp", "netpara.tmp", "other"}) {
        dir.Write(name, {});
    }
    StoreState state;
    state.ProjectDir = dir.Path();
    EXPECT_EQ(DeleteWorkFiles(state), std::vector<std::string>{});
    // Exact names go, "temp.dat", "netpara.net", "param.net" in any case; not "PARAM.$$$".
    EXPECT_EQ(dir.List(), (std::vector<std::string>{"NETPARA.$$$", "PARAM.$$$", "netpara.tmp",
                                                    "other", "param.tmp"}));
}

// Only a regular file is ever replaced, whatever write it is (the run's save, new, set,
// import, export -o, the workbook's Save): anything else at the end of the links is refused
// naming the path and its kind, and stays as it was.
TEST(WriteFileAtomically, ReplacesOnlyARegularFileAtTheEndOfTheLinks) {
    test::TempDir dir;
    ::mkfifo(dir.File("fifo").c_str(), 0644);
    ::mkdir(dir.File("directory").c_str(), 0755);
    const bool root = ::geteuid() == 0;  // a device node of its own, so none is at risk
    if (root) ::mknod(dir.File("device").c_str(), S_IFCHR | 0666, ::makedev(1, 3));
    for (const char* link : {"fifo", "device", "to-fifo"})
        [[maybe_unused]] int made = ::symlink(link, dir.File(std::string("to-") + link).c_str());
    // clang-format off
    const struct { const char* name; const char* refusal; } cases[] = {
        {"fifo", "it is a FIFO"}, {"directory", "it is a directory"}, {"device", "it is a character device"},
        {"to-fifo", "fifo\", a FIFO, not a regular file"}, {"to-to-fifo", "a FIFO, not a regular file"},
        {"to-device", "a character device, not a regular file"},
    };
    // clang-format on
    const auto listing = dir.List();
    for (const auto& c : cases) {
        if (!root && std::string(c.name).ends_with("device")) continue;
        SCOPED_TRACE(c.name);
        try {
            WriteFileAtomically(dir.File(c.name), {1, 2, 3});
            ADD_FAILURE() << "written";
        } catch (const RuntimeError& error) {
            const std::string text = error.Description();
            EXPECT_TRUE(text.starts_with("Cannot write \"" + dir.File(c.name) + "\": ") &&
                        text.find(c.refusal) != std::string::npos)
                << error.Description();
        }
        EXPECT_EQ(dir.List(), listing);
    }
    struct stat info {};
    EXPECT_TRUE(::stat(dir.File("fifo").c_str(), &info) == 0 && S_ISFIFO(info.st_mode));

    // A run's save carrying "netpara.$$$" over a "netpara.tmp" that leads to a FIFO fails
    // before "param.tmp" is touched.
    test::TempProject project("A3 ");
    const auto before = project.Read("param.tmp");
    project.Write("netpara.$$$", {1});
    [[maybe_unused]] int made =
        ::symlink(dir.File("fifo").c_str(), project.File("netpara.tmp").c_str());
    StoreState state = test::StateFor("A3 ", project.Path());
    state.image[300] = 9;
    EXPECT_THROW(SaveRunFiles(state), RuntimeError);
    EXPECT_EQ(project.Read("param.tmp"), before);
    EXPECT_TRUE(::stat(dir.File("fifo").c_str(), &info) == 0 && S_ISFIFO(info.st_mode));
}

}  // namespace
}  // namespace gantrix
