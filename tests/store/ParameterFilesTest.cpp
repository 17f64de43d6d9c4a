#include <gtest/gtest.h>
#include <sys/stat.h>

#include "store/ParameterFiles.h"
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

}  // namespace
}  // namespace gantrix
