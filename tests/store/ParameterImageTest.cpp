// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <array>

#include "store/CheckSum.h"
#include "store/ParameterImage.h"
#include "store/RuntimeError.h"

namespace gantrix {
namespace {

TEST(ParameterImage, WordsAreLittleEndianAndWhatDoesNotFitIsRefused) {
    ParameterImage image;
    image.SetParamWord(1000, 16);
    EXPECT_EQ(image[16], 0xE8);
    EXPECT_EQ(image[17], 0x03);
    image.SetParamWord(65535, 3070);
    EXPECT_TRUE(image.IsErased(3070));
    for (long long value : {65536LL, -1LL, 1LL << 40}) {
        try {
            image.SetParamWord(value, 16);
            FAIL() << value << " was stored";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.Number(), kErrOverflow);
        }
        EXPECT_EQ(image.GetParamWord(16), 1000);
    }
    EXPECT_THROW(image.GetParamWord(3071), std::out_of_range);
    EXPECT_THROW(image.SetParamWord(1, 3071), std::out_of_range);
}

TEST(CheckSum, EachFamilyWritesItsFormAndTheNetworkSumOnlyWhenAsked) {
    // Bytes 0..524 summing to 74565 (0x012345); the network block to 263160 (0x0403F8).
    ParameterImage summed;
    for (int i = 0; i < 292; ++i) summed[i] = 255;
    summed[292] = 105;  // 292 x 255 + 105
    // clang-format off
    const struct { const char* cpu; std::array<uint8_t, 3> sum; } cases[] = {
        {"A3 ", {0x45, 0x23, 0x01}}, {"A0J", {0x45, 0x23, 0x01}}, {"A3A", {0xBA, 0xDC, 0xFE}},
        {"A2A", {0xBA, 0xDC, 0xFE}}, {"A3U", {0xBA, 0xDC, 0x5B}}, {"A4U", {0xBA, 0xDC, 0x5B}},
        {"A4 ", {7, 8, 9}}, {"a3u", {7, 8, 9}},  // unknown codes leave their bytes
    };
    // clang-format on
    const auto at = [](const ParameterImage& image, int first) {
        return std::array<uint8_t, 3>{image[first], image[first + 1], image[first + 2]};
    };
    for (const auto& c : cases) {
        ParameterImage image = summed;
        for (int i : {525, 526, 527}) image[i] = static_cast<uint8_t>(i - 518);
        image[2056] = 1;
        SetCheckSum(image, c.cpu, false);
        EXPECT_EQ(at(image, 525), c.sum) << c.cpu;
        EXPECT_EQ(image[2056], 1) << c.cpu;
        for (int i = 1024; i <= 2055; ++i) image[i] = 255;
        image[2059] = 99;
        SetCheckSum(image, c.cpu, true);
        EXPECT_EQ(at(image, 2056), (std::array<uint8_t, 3>{0xF8, 0x03, 0x04})) << c.cpu;
    }
}

}  // namespace
}  // namespace gantrix
