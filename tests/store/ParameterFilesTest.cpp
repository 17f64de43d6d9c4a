#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

#include "platform/rkcmnt/rkcmnt.h"
#include "store/CheckSum.h"
#include "store/ParameterFiles.h"
#include "store/Project.h"
#include "store/ProjectLock.h"
#include "store/RuntimeError.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::TempDir;

std::vector<uint8_t> Bytes(size_t size, uint8_t value) {
    return std::vector<uint8_t>(size, value);
}

// Limits the size of files this process may write, so that a write fails as on a full disk.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &saved_);
        previous_ = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit = saved_;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &saved_);
        std::signal(SIGXFSZ, previous_);
    }

  private:
    rlimit saved_{};
    void (*previous_)(int) = nullptr;
};

StoreState StateIn(const TempDir& dir, const std::string& cpu = "A3 ") {
    StoreState state;
    state.ProjectDir = dir.Path();
    state.CpuType = cpu;
    state.CpuCode = CpuCodeOf(cpu);
    return state;
}

TEST(ParameterFiles, SaveWritesTheWholeImageAndReplacesTheFile) {
    TempDir dir;
    StoreState state = StateIn(dir);
    for (int i = 0; i < kImageSize; ++i) state.image[i] = static_cast<uint8_t>(i * 7);
    dir.Write("param.tmp", Bytes(5000, 1));
    SaveParameterTemp(state);
    EXPECT_EQ(dir.Read("param.tmp"),
              std::vector<uint8_t>(state.image.bytes().begin(), state.image.bytes().end()));
    SaveParameterFile(state, "param.$$$");
    EXPECT_EQ(dir.Read("param.$$$").size(), 3072u);
    // No temporary file is left beside the targets.
    EXPECT_EQ(dir.List(), (std::vector<std::string>{"param.$$$", "param.tmp"}));
}

TEST(ParameterFiles, AFailingWriteLeavesThePreviousFileIntactAndNamesIt) {
    TempDir dir;
    StoreState state = StateIn(dir);
    state.image.bytes().fill(0x5A);
    const auto previous = Bytes(3072, 0x11);
    dir.Write("param.tmp", previous);
    try {
        FileSizeLimit limit(1000);  // the disk fills after 1000 bytes
        SaveParameterTemp(state);
        FAIL() << "the write did not fail";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number(), kErrDiskFull);
        EXPECT_NE(error.Description().find(dir.File("param.tmp")), std::string::npos)
            << error.Description();
    }
    EXPECT_EQ(dir.Read("param.tmp"), previous);
    EXPECT_EQ(dir.List(), (std::vector<std::string>{"param.tmp"}));
}

TEST(ParameterFiles, AMissingDirectoryIsAnErrorNamingTheFile) {
    TempDir dir;
    StoreState state = StateIn(dir);
    state.ProjectDir = dir.Path() + "gone/";
    try {
        SaveParameterTemp(state);
        FAIL();
    } catch (const RuntimeError& error) {
        EXPECT_NE(error.Description().find("gone/param.tmp"), std::string::npos);
    }
}

TEST(ParameterFiles, SavingKeepsTheModeOfTheReplacedFile) {
    TempDir dir;
    StoreState state = StateIn(dir);
    dir.Write("param.tmp", Bytes(3072, 0));
    ::chmod(dir.File("param.tmp").c_str(), 0640);
    SaveParameterTemp(state);
    struct stat info {};
    ::stat(dir.File("param.tmp").c_str(), &info);
    EXPECT_EQ(info.st_mode & 0777, 0640u);
}

TEST(Dir, FindsFilesRegardlessOfCaseAndReturnsTheirSpelling) {
    TempDir dir;
    dir.Write("param.tmp", {});
    dir.Write("TEMP.DAT", {});
    ::mkdir(dir.File("netpara.tmp").c_str(), 0755);
    EXPECT_EQ(Dir(dir.File("param.tmp")), "param.tmp");
    EXPECT_EQ(Dir(dir.File("PARAM.TMP")), "param.tmp");
    EXPECT_EQ(Dir(dir.File("temp.dat")), "TEMP.DAT");
    EXPECT_EQ(Dir(dir.File("netpara.tmp")), "");  // a directory is not a file
    EXPECT_EQ(Dir(dir.File("missing")), "");
    EXPECT_EQ(Dir(dir.Path() + "nodir/param.tmp"), "");
}

TEST(DeleteWorkFiles, RemovesTheWorkingFilesByTheirComparisons) {
    TempDir dir;
    for (const char* name : {"param.$$p", "TEMP.DAT", "netpara.$$$", "param.$$$", "Netpara.NET",
                             "param.net", "PARAM.$$$", "param.tmp", "netpara.tmp", "other"}) {
        dir.Write(name, {});
    }
    DeleteWorkFiles(StateIn(dir));
    // The exact names go; "temp.dat", "netpara.net" and "param.net" go in any case; an
    // upper-case "PARAM.$$$" is not the working file.
    EXPECT_EQ(dir.List(),
              (std::vector<std::string>{"PARAM.$$$", "netpara.tmp", "other", "param.tmp"}));
}

TEST(RunFiles, TheStartCopiesAndTheEndSavesCarriesOverAndCleansUp) {
    TempDir dir;
    StoreState state = StateIn(dir, "A3U");
    dir.Write("param.tmp", Bytes(3072, 0x44));
    dir.Write("netpara.tmp", Bytes(10, 0x55));
    CopyWorkFiles(state);
    EXPECT_EQ(dir.Read("param.$$$"), Bytes(3072, 0x44));
    EXPECT_EQ(dir.Read("netpara.$$$"), Bytes(10, 0x55));

    // An existing "netpara.$$$" is the spreadsheet's work and is not overwritten.
    dir.Write("netpara.$$$", Bytes(4, 0x66));
    CopyWorkFiles(state);
    EXPECT_EQ(dir.Read("netpara.$$$"), Bytes(4, 0x66));

    state.image.bytes().fill(0);
    state.image[10] = 5;
    FinishRunFiles(state, true);
    ParameterImage expected = state.image;
    SetCheckSum(expected, "A3U", false);
    EXPECT_EQ(dir.Read("param.tmp"),
              std::vector<uint8_t>(expected.bytes().begin(), expected.bytes().end()));
    EXPECT_EQ(dir.Read("param.tmp")[525], static_cast<uint8_t>(~5));
    EXPECT_EQ(dir.Read("netpara.tmp"), Bytes(4, 0x66));
    EXPECT_EQ(dir.List(), (std::vector<std::string>{"netpara.tmp", "param.tmp"}));
}

TEST(RunFiles, ASavedRunWithoutNetworkWorkFileDeletesNetparaAndAnUnsavedOneKeepsAll) {
    TempDir dir;
    StoreState state = StateIn(dir);
    dir.Write("param.tmp", Bytes(3072, 1));
    dir.Write("netpara.tmp", Bytes(3, 2));
    dir.Write("param.$$$", Bytes(3072, 1));
    dir.Write("temp.dat", {});
    FinishRunFiles(state, false);
    EXPECT_EQ(dir.List(), (std::vector<std::string>{"netpara.tmp", "param.tmp"}));
    EXPECT_EQ(dir.Read("param.tmp"), Bytes(3072, 1));

    FinishRunFiles(state, true);
    EXPECT_EQ(dir.List(), (std::vector<std::string>{"param.tmp"}));
}

TEST(ClearAllParameters, AsksWritesTheDefaultsAndTheWorkingFile) {
    TempDir dir;
    StoreState state = StateIn(dir, "A2U");
    dir.Write("netpara.$$$", {});
    std::vector<int> asked;
    auto answer = [&](const std::string& reply) {
        return [&asked, reply](int n) {
            asked.push_back(n);
            return n == 12 ? reply : std::string("OK");
        };
    };
    EXPECT_FALSE(ClearAllParameters(state, answer("No")));
    EXPECT_EQ(asked, std::vector<int>{12});
    EXPECT_EQ(state.image.GetParamWord(64), 0);
    EXPECT_TRUE(dir.Exists("netpara.$$$"));

    asked.clear();
    EXPECT_TRUE(ClearAllParameters(state, answer("YES")));
    EXPECT_EQ(asked, (std::vector<int>{12, 10}));
    EXPECT_EQ(state.image, test::DefaultImage("A2U"));
    EXPECT_EQ(dir.Read("param.$$$"),
              std::vector<uint8_t>(state.image.bytes().begin(), state.image.bytes().end()));
    EXPECT_FALSE(dir.Exists("netpara.$$$"));
}

TEST(ClearAllParameters, AnUnknownCpuTypeEndsSilently) {
    TempDir dir;
    StoreState state = StateIn(dir, "A4 ");
    state.image.bytes().fill(9);
    std::vector<int> asked;
    EXPECT_FALSE(ClearAllParameters(state, [&](int n) {
        asked.push_back(n);
        return std::string("YES");
    }));
    EXPECT_EQ(asked, std::vector<int>{12});
    EXPECT_EQ(state.image[100], 9);
    EXPECT_FALSE(dir.Exists("param.$$$"));
}

TEST(LoadParameter, FillsTheImageOnlyFromAWholeFile) {
    TempDir dir;
    ParameterImage image;
    image.bytes().fill(7);
    EXPECT_EQ(LoadParameter(dir.File("param.tmp"), image), kRkLoadMissing);
    dir.Write("param.tmp", Bytes(3071, 1));
    EXPECT_EQ(LoadParameter(dir.File("param.tmp"), image), kRkLoadWrongSize);
    dir.Write("param.tmp", Bytes(3073, 1));
    EXPECT_EQ(LoadParameter(dir.File("param.tmp"), image), kRkLoadWrongSize);
    EXPECT_EQ(image[0], 7);
    dir.Write("param.tmp", Bytes(3072, 1));
    EXPECT_EQ(LoadParameter(dir.File("param.tmp"), image), kRkLoadOk);
    EXPECT_EQ(image[3071], 1);
}

TEST(CreateProject, WritesTheDefaultsWithCheckBytesAndRefusesToOverwrite) {
    TempDir dir;
    const std::string project = dir.Path() + "a/b/line1";
    CreateProject("A3U", project, false);
    const auto bytes = dir.Read("a/b/line1/param.tmp");
    ASSERT_EQ(bytes.size(), 3072u);
    ParameterImage image;
    std::copy(bytes.begin(), bytes.end(), image.bytes().begin());
    ParameterImage resummed = image;
    SetCheckSum(resummed, "A3U", true);
    EXPECT_EQ(image, resummed);

    EXPECT_THROW(CreateProject("A3U", project, false), RuntimeError);
    CreateProject("A0J", project, true);
    EXPECT_EQ(dir.Read("a/b/line1/param.tmp")[64 + 1], 12);  // 3 K steps: 3072
}

TEST(CreateProject, BadInputLeavesNothingBehind) {
    TempDir dir;
    EXPECT_THROW(CreateProject("A5 ", dir.Path() + "x/y", false), RuntimeError);
    EXPECT_FALSE(dir.Exists("x"));
    dir.Write("file", {});
    try {
        CreateProject("A3 ", dir.Path() + "file/p", false);
        FAIL();
    } catch (const RuntimeError& error) {
        EXPECT_NE(error.Description().find("is a file"), std::string::npos);
    }
    EXPECT_EQ(dir.List(), std::vector<std::string>{"file"});
    {
        FileSizeLimit limit(100);  // the directory is made, the file cannot be written
        EXPECT_THROW(CreateProject("A3 ", dir.Path() + "full/p", false), RuntimeError);
    }
    EXPECT_FALSE(dir.Exists("full"));
}

TEST(CreateProject, WritesTheFilesAlongsideAllOrNone) {
    TempDir dir;
    const std::string project = dir.Path() + "p";
    CreateProject("A3 ", project, false, {{"rkparam.cpu", {'A', '3', ' ', '\n'}}});
    EXPECT_EQ(dir.Read("p/rkparam.cpu"), (std::vector<uint8_t>{'A', '3', ' ', '\n'}));
    EXPECT_EQ(dir.Read("p/param.tmp").size(), 3072u);

    // A file alongside that does not fit on the disk: nothing of the new project stays, and
    // a replaced project keeps its files as they were.
    const auto previous = dir.Read("p/param.tmp");
    for (const bool force : {false, true}) {
        const std::string target = force ? project : dir.Path() + "q";
        FileSizeLimit limit(4000);  // "param.tmp" fits, the second file does not
        EXPECT_THROW(CreateProject("A0J", target, force, {{"rkparam.cpu", Bytes(5000, 'x')}}),
                     RuntimeError);
    }
    EXPECT_FALSE(dir.Exists("q"));
    EXPECT_EQ(dir.Read("p/param.tmp"), previous);
    EXPECT_EQ(dir.Read("p/rkparam.cpu"), (std::vector<uint8_t>{'A', '3', ' ', '\n'}));
    EXPECT_EQ(dir.List(), std::vector<std::string>{"p"});
}

TEST(CreateProject, RefusesAFileAlongsideThatIsNotARegularFileAndAProjectInUse) {
    TempDir dir;
    ASSERT_EQ(::mkfifo(dir.File("rkparam.cpu").c_str(), 0644), 0);
    try {
        CreateProject("A3 ", dir.Path(), false, {{"rkparam.cpu", {'x'}}});
        FAIL();
    } catch (const RuntimeError& error) {
        EXPECT_NE(error.Description().find("rkparam.cpu\": not a regular file"), std::string::npos)
            << error.Description();
    }
    ::unlink(dir.File("rkparam.cpu").c_str());
    {
        ProjectLock run(dir.Path());
        ASSERT_TRUE(run.Held());
        try {
            CreateProject("A3 ", dir.Path(), false);
            FAIL();
        } catch (const RuntimeError& error) {
            EXPECT_NE(error.Description().find("in use"), std::string::npos);
        }
    }
    EXPECT_EQ(dir.List(), std::vector<std::string>{});
}

TEST(ProjectLock, OneHolderAtATimeAndNoFileLeftAfterwards) {
    TempDir dir;
    // A lock file left by a process that died holds nothing.
    dir.Write(".param.lock", {});
    {
        ProjectLock first(dir.Path());
        EXPECT_TRUE(first.Held());
        ProjectLock second(dir.Path());
        EXPECT_FALSE(second.Held());
    }
    EXPECT_EQ(dir.List(), std::vector<std::string>{});
    ProjectLock again(dir.Path());
    EXPECT_TRUE(again.Held());
    EXPECT_THROW(ProjectLock(dir.Path() + "missing/"), RuntimeError);
}

TEST(ReadWholeFile, RefusesAFifoWithoutWaitingForAWriter) {
    TempDir dir;
    ASSERT_EQ(::mkfifo(dir.File("pipe").c_str(), 0644), 0);
    EXPECT_THROW(ReadWholeFile(dir.File("pipe")), RuntimeError);
}

TEST(CpuCodes, FamiliesAndTheTrailingBlank) {
    EXPECT_EQ(CpuCodeOf("A0J"), 0xA0);
    EXPECT_EQ(CpuCodeOf("A1 "), 0xA1);
    for (const char* cpu : {"A0H", "A1S", "A2 ", "A2C"}) EXPECT_EQ(CpuCodeOf(cpu), 0xA2) << cpu;
    EXPECT_EQ(CpuCodeOf("A3 "), 0xA3);
    for (const char* cpu : {"A3H", "A2A", "A3A", "A2U", "A3U", "A4U", "A1", "xyz"}) {
        EXPECT_EQ(CpuCodeOf(cpu), 0xA4) << cpu;
    }
    EXPECT_EQ(NormalizeCpuCode("A1"), "A1 ");
    EXPECT_EQ(NormalizeCpuCode("A3"), "A3 ");
    EXPECT_EQ(NormalizeCpuCode("A3U"), "A3U");
    EXPECT_EQ(NormalizeCpuCode("Z9"), "Z9");
}

}  // namespace
}  // namespace gantrix

namespace gantrix {
namespace {

TEST(GetDeviceMaxSize, ASizeAboveTheSixteenBitRangeOverflows) {
    EXPECT_EQ(DeviceSizeToModuleValue(32767, "M"), 32767);
    EXPECT_EQ(DeviceSizeToModuleValue(0, "R"), 0);
    try {
        DeviceSizeToModuleValue(32768, "M");
        FAIL();
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number(), kErrOverflow);
        EXPECT_NE(error.Description().find("M"), std::string::npos);
    }
}

}  // namespace
}  // namespace gantrix

namespace gantrix {
namespace {

TEST(GetAppPath, IsTheDirectoryOfTheComponentWithItsSeparator) {
    const std::string path = GetAppPath();
    ASSERT_FALSE(path.empty());
    EXPECT_EQ(path.back(), '/');
    EXPECT_EQ(path.front(), '/');
    struct stat info {};
    ASSERT_EQ(::stat(path.c_str(), &info), 0) << path;
    EXPECT_TRUE(S_ISDIR(info.st_mode));
    // The tests are linked from the build directory, so the component's directory is there.
    EXPECT_EQ(Dir(path + "core_tests"), "core_tests");
}

}  // namespace
}  // namespace gantrix
