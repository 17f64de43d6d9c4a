#include "menus/NetworkMenuRules.h"

#include <gtest/gtest.h>

namespace gantrix {
namespace {

TEST(NetworkMenuRules, ModeFromTheNetworkFlagAndTheLowSixBitsOf2560) {
    const struct {
        int b1024, b2560, previous, mode;
    } cases[] = {
        {0, 63, 2, 0},  // no network data, whatever the mode bits
        {1, 1, 0, 1},    {5, 2, 0, 2},    {1, 63, 0, 3},
        {1, 0xC1, 0, 1},                                 // the upper two bits are ignored
        {1, 0x42, 3, 2}, {1, 0xFF, 0, 3}, {1, 5, 2, 2},  // other bits keep the previous mode
        {1, 0, 1, 1},    {1, 0x80, 0, 0},
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
        int expected = before[i];
        if (i == 1024) expected = 0;
        if ((i >= 1025 && i <= 2058 && i != 1071) || (i >= 2560 && i <= 3042)) expected = 255;
        EXPECT_EQ(image[i], expected) << i;
    }
}

}  // namespace
}  // namespace gantrix
