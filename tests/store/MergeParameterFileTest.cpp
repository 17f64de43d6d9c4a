// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "store/ParameterFiles.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

// A file of 0x11 bytes merged into an image of 0x22 bytes, for cpu, after change set bytes of both.
StoreState Merged(const std::string& cpu,
                  const std::function<void(std::vector<uint8_t>&, StoreState&)>& change = {}) {
    test::TempDir dir;
    StoreState state;
    state.CpuType = cpu;
    state.ProjectDir = dir.Path();
    state.image.bytes().fill(0x22);
    std::vector<uint8_t> file(kImageSize, 0x11);
    if (change) change(file, state);
    dir.Write("param.$$$", file);
    MergeParameterFile(state, "param.$$$");
    return state;
}

TEST(MergeParameterFile, TakesTheNetworkPartAndKeepsTheComponentsOwnBytes) {
    const StoreState m = Merged("A3 ");
    for (int i = 0; i < kImageSize; ++i) {
        const bool fromImage =
            i < 1024 || i == 1071 || (i >= 2304 && i <= 2417) || i == 2434 || i == 2435;
        ASSERT_EQ(m.image[i], fromImage ? 0x22 : 0x11) << "byte " << i;
    }
    const StoreState shortFile =
        Merged("A3 ", [](auto& file, auto&) { file.resize(2000); });  // zeros past its end
    EXPECT_EQ(shortFile.image[1999], 0x11);
    EXPECT_EQ(shortFile.image[2000], 0);
    EXPECT_EQ(shortFile.image[3071], 0);
}

TEST(MergeParameterFile, Byte1071DecidesTheNetworkSum) {
    // clang-format off
    const struct { uint8_t image, file, result; bool sumValid; } cases[] = {
        {3, 0xFF, 3, true},    // the image keeps its flag; the file differed
        {0xFF, 1, 1, false},   // no flag in the image: the file's is taken
        {0xFF, 0xFF, 0xFF, false}, {1, 1, 1, false},  // equal: nothing changed
        {0, 1, 0, true},
    };
    // clang-format on
    for (const auto& c : cases) {
        const StoreState m = Merged("A3 ", [&c](auto& file, StoreState& state) {
            state.NetworkSumValid = !c.sumValid;
            state.image[1071] = c.image;
            file[1071] = c.file;
        });
        SCOPED_TRACE(std::to_string(c.image) + "/" + std::to_string(c.file));
        EXPECT_EQ(m.image[1071], c.result);
        EXPECT_EQ(m.NetworkSumValid, c.sumValid);
    }
}

TEST(MergeParameterFile, UTypesTakeTheReservedAreaFromTheFileAndReadErasedPairsAsZero) {
    const auto erased = [](auto& file, auto&) {
        for (int i : {138, 139, 2432, 2433}) file[i] = 0xFF;
    };
    for (const char* cpu : {"A2U", "A3U", "A4U"}) {
        const StoreState m = Merged(cpu, erased);
        for (int i : {138, 139, 2432, 2433}) EXPECT_EQ(m.image[i], 0) << cpu << " " << i;
    }
    const StoreState u = Merged("A3U", [](auto& file, auto&) { file[139] = 0x04; });
    EXPECT_EQ(u.image.GetParamWord(138), 0x0411);
    const StoreState a2 = Merged("A2 ", erased);
    EXPECT_EQ(a2.image.GetParamWord(138), 0x2222);
}

}  // namespace
}  // namespace gantrix
