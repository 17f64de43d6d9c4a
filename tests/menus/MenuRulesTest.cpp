// SPDX-License-Identifier: Apache-2.0
#include "menus/MenuRules.h"
#include "menus/NetworkMenuRules.h"

#include <gtest/gtest.h>

#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::ScriptedMessages;
using test::StateFor;

// clang-format off
TEST(CheckEndPlace, EachProgramAgainstItsCapacityRoundedUpToK) {
    const struct { const char* cpu; std::array<int16_t, 4> end; int mainK; bool refused; } cases[] = {
        {"A3 ", {2049, 0, 0, 0}, 2, true}, {"A3 ", {2048, 0, 0, 0}, 2, false},  // 3 K > 2 K, 2 K fits
        {"A3 ", {1, 0, 0, 0}, 0, false},     // positions of 1 and below are not checked
        {"A0J", {7000, 0, 0, 0}, 6, true},   {"A2 ", {0, 9000, 9000, 9000}, 6, false},  // no subs on an A2
        {"A3 ", {0, 1025, 0, 0}, 6, true},   {"A3H", {0, 2, 0, 0}, 6, true},  // word 66 = 0
        {"A3U", {0, 0, 2000, 0}, 6, true},   {"A4U", {0, 0, 0, 2}, 6, true},  {"A4U", {6144, 1, 1, 1}, 6, false},
    };
    for (const auto& c : cases) {
        ModuleState state = StateFor(c.cpu);
        ScriptedMessages shown;
        state.Presenter = &shown;
        state.image.SetParamWord(c.mainK * 1024, 64);
        state.EndPosition = c.end;
        EXPECT_EQ(CheckEndPlace(state), c.refused) << c.cpu << " " << c.end[0] << " " << c.end[1];
        EXPECT_EQ(shown.Numbers(), c.refused ? std::vector<int>{9} : std::vector<int>{});
    }
}
// clang-format on

TEST(CheckTotalMemory, UTypesStayBelowThirtyOneK) {
    ModuleState state = StateFor("A3U");
    ScriptedMessages presenter;
    state.Presenter = &presenter;  // 30 K main + micro 1 K as typed / 2 (= 0) + reserved 0: 30
    state.image.SetParamWord(30 * 1024, 64);
    state.image.SetParamWord(1024, 2434);
    state.image.SetParamWord(100, 2432);
    EXPECT_TRUE(CheckTotalMemory(state) && presenter.shown.empty());
    EXPECT_EQ(state.image.GetParamWord(72), 1024 + 200);
    state.image.SetParamWord(1, 138);  // a reserved area of 1 byte takes 1 K: 31
    EXPECT_FALSE(CheckTotalMemory(state));
    EXPECT_EQ(presenter.Numbers(), std::vector<int>{23});
    state.image[138] = state.image[139] = 0xFF;  // erased reads as 0 and is written so
    EXPECT_TRUE(CheckTotalMemory(state));
    EXPECT_EQ(state.image.GetParamWord(138), 0);
    ModuleState a3 = StateFor("A3 ");
    a3.image.SetParamWord(65535, 64);
    a3.image[72] = 0x12;
    EXPECT_TRUE(CheckTotalMemory(a3) && a3.image[72] == 0x12);
}

// clang-format off
TEST(NetworkMenuRules, ModeFromTheNetworkFlagAndTheLowSixBitsOf2560) {
    // No network data is mode 0; the upper two bits are ignored; other values keep the mode.
    const struct { int b1024, b2560, previous, mode; } cases[] = {
        {0, 63, 2, 0}, {1, 1, 0, 1}, {5, 2, 0, 2}, {1, 63, 0, 3}, {1, 0xC1, 0, 1},
        {1, 0x42, 3, 2}, {1, 0xFF, 0, 3}, {1, 5, 2, 2}, {1, 0, 1, 1}, {1, 0x80, 0, 0},
    };
    for (const auto& c : cases) {
        ParameterImage image;
        image[1024] = static_cast<uint8_t>(c.b1024);
        image[2560] = static_cast<uint8_t>(c.b2560);
        EXPECT_EQ(NetworkModeOf(image, static_cast<int16_t>(c.previous)), c.mode)
            << c.b1024 << " " << c.b2560;
    }
}

TEST(NetworkMenuRules, ClearLinkByteByByte) {
    ParameterImage image;
    for (int i = 0; i < kImageSize; ++i) image[i] = static_cast<uint8_t>(i % 251);
    const ParameterImage before = image;
    ClearLink(image);
    for (int i = 0; i < kImageSize; ++i) {
        const bool erased = (i >= 1025 && i <= 2058 && i != 1071) || (i >= 2560 && i <= 3042);
        EXPECT_EQ(image[i], i == 1024 ? 0 : erased ? 255 : before[i]) << i;
    }
}
// clang-format on

}  // namespace
}  // namespace gantrix
