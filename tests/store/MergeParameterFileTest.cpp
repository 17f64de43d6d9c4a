#include <gtest/gtest.h>

#include "store/ParameterFiles.h"
#include "store/RuntimeError.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::TempDir;

// A file whose every byte is 0x11 and an image whose every byte is 0x22, with the given
// bytes set, merged for cpu.
struct Merge {
    TempDir dir;
    StoreState state;
    std::vector<uint8_t> file = std::vector<uint8_t>(kImageSize, 0x11);

    explicit Merge(const std::string& cpu) {
        state.CpuType = cpu;
        state.ProjectDir = dir.Path();
        state.image.bytes().fill(0x22);
    }
    void Run() {
        dir.Write("param.$$$", file);
        MergeParameterFile(state, "param.$$$");
    }
};

TEST(MergeParameterFile, TakesTheNetworkPartAndKeepsTheComponentsOwnBytes) {
    Merge m("A3 ");
    m.Run();
    for (int i = 0; i < kImageSize; ++i) {
        const bool fromImage =
            i < 1024 || i == 1071 || (i >= 2304 && i <= 2417) || i == 2434 || i == 2435;
        ASSERT_EQ(m.state.image[i], fromImage ? 0x22 : 0x11) << "byte " << i;
    }
}

TEST(MergeParameterFile, Byte1071DecidesTheNetworkSum) {
    struct Case {
        uint8_t image, file;
        uint8_t result;
        bool sumValid;
    };
    const Case cases[] = {
        {3, 0xFF, 3, true},                           // the image keeps its flag; the file differed
        {0xFF, 1, 1, false},                          // no flag in the image: the file's is taken
        {0xFF, 0xFF, 0xFF, false}, {1, 1, 1, false},  // equal: nothing changed
        {0, 1, 0, true},
    };
    for (const Case& c : cases) {
        Merge m("A3 ");
        m.state.NetworkSumValid = !c.sumValid;
        m.state.image[1071] = c.image;
        m.file[1071] = c.file;
        m.Run();
        EXPECT_EQ(m.state.image[1071], c.result) << int(c.image) << "/" << int(c.file);
        EXPECT_EQ(m.state.NetworkSumValid, c.sumValid) << int(c.image) << "/" << int(c.file);
    }
}

TEST(MergeParameterFile, UTypesTakeTheReservedAreaFromTheFileAndReadErasedPairsAsZero) {
    for (const char* cpu : {"A2U", "A3U", "A4U"}) {
        Merge m(cpu);
        m.file[138] = 0xFF;
        m.file[139] = 0xFF;
        m.file[2432] = 0xFF;
        m.file[2433] = 0xFF;
        m.Run();
        EXPECT_EQ(m.state.image[138], 0) << cpu;
        EXPECT_EQ(m.state.image[139], 0) << cpu;
        EXPECT_EQ(m.state.image[2432], 0) << cpu;
        EXPECT_EQ(m.state.image[2433], 0) << cpu;
    }
    Merge u("A3U");
    u.file[138] = 0x01;
    u.file[139] = 0x04;
    u.Run();
    EXPECT_EQ(u.state.image.GetParamWord(138), 0x0401);
    EXPECT_EQ(u.state.image[137], 0x22);

    Merge a2("A2 ");
    a2.file[138] = 0xFF;
    a2.file[139] = 0xFF;
    a2.Run();
    EXPECT_EQ(a2.state.image[138], 0x22);
    EXPECT_EQ(a2.state.image[139], 0x22);
}

TEST(MergeParameterFile, AShortFileReadsAsZerosAndAMissingOneIsAnError) {
    Merge m("A3 ");
    m.file.resize(2000);
    m.Run();
    EXPECT_EQ(m.state.image[1999], 0x11);
    EXPECT_EQ(m.state.image[2000], 0);
    EXPECT_EQ(m.state.image[3071], 0);
    EXPECT_EQ(m.state.image[2400], 0x22);  // kept range, whatever the file holds

    StoreState state;
    TempDir dir;
    state.ProjectDir = dir.Path();
    state.image.bytes().fill(0x33);
    try {
        MergeParameterFile(state, "param.$$$");
        FAIL() << "a missing file merged";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number(), kErrFileNotFound);
        EXPECT_NE(error.Description().find("param.$$$"), std::string::npos);
    }
    EXPECT_EQ(state.image[1500], 0x33);
}

}  // namespace
}  // namespace gantrix
