#include <gtest/gtest.h>

#include "store/CheckSum.h"
#include "store/ParameterImage.h"
#include "store/RuntimeError.h"

namespace gantrix {
namespace {

TEST(ParameterImage, WordsAreLittleEndianAndZeroStoresBothBytesZero) {
    ParameterImage image;
    image[64] = 0xAA;
    image[65] = 0xBB;
    image.SetParamWord(256, 64);
    EXPECT_EQ(image[64], 0);
    EXPECT_EQ(image[65], 1);
    EXPECT_EQ(image.GetParamWord(64), 256);
    image.SetParamWord(0, 64);
    EXPECT_EQ(image[64], 0);
    EXPECT_EQ(image[65], 0);
    image.SetParamWord(65535, 3070);
    EXPECT_EQ(image[3070], 255);
    EXPECT_EQ(image[3071], 255);
    EXPECT_TRUE(image.IsErased(3070));
    image.SetParamWord(1000, 16);
    EXPECT_EQ(image[16], 0xE8);
    EXPECT_EQ(image[17], 0x03);
}

TEST(ParameterImage, AValueOutsideTheWordRaisesOverflowAndLeavesTheBytes) {
    ParameterImage image;
    image.SetParamWord(0x1234, 70);
    for (long long value : {65536LL, -1LL, 1LL << 40}) {
        try {
            image.SetParamWord(value, 70);
            FAIL() << value << " was stored";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.Number(), kErrOverflow);
        }
        EXPECT_EQ(image.GetParamWord(70), 0x1234);
    }
}

TEST(ParameterImage, IndicesOutsideTheImageAreProgramErrors) {
    ParameterImage image;
    EXPECT_THROW(image[3072], std::out_of_range);
    EXPECT_THROW(image[-1], std::out_of_range);
    EXPECT_THROW(image.GetParamWord(3071), std::out_of_range);
    EXPECT_THROW(image.SetParamWord(1, 3071), std::out_of_range);
}

TEST(KConversions, TruncateTowardZero) {
    EXPECT_EQ(NumberToK(1023), 0);
    EXPECT_EQ(NumberToK(1024), 1);
    EXPECT_EQ(NumberToK(0), 0);
    EXPECT_EQ(NumberToK(65535), 63);
    EXPECT_EQ(KToNumber(8), 8192);
    EXPECT_EQ(KToNumber(0), 0);
    EXPECT_EQ(KToNumber(64), 65536);  // fits the 32-bit result; storing it overflows
}

// Bytes 0..524 summing to 74565 (0x012345).
ParameterImage ImageSummingTo74565() {
    ParameterImage image;
    long remaining = 74565;
    for (int i = 0; i <= 524 && remaining > 0; ++i) {
        image[i] = static_cast<uint8_t>(std::min<long>(255, remaining));
        remaining -= image[i];
    }
    return image;
}

TEST(CheckSum, EachFamilyWritesItsForm) {
    struct Case {
        const char* cpu;
        uint8_t b525, b526, b527;
    };
    const Case cases[] = {
        {"A3 ", 0x45, 0x23, 0x01}, {"A0J", 0x45, 0x23, 0x01}, {"A3H", 0x45, 0x23, 0x01},
        {"A3A", 0xBA, 0xDC, 0xFE}, {"A2A", 0xBA, 0xDC, 0xFE}, {"A3U", 0xBA, 0xDC, 0x5B},
        {"A4U", 0xBA, 0xDC, 0x5B},
    };
    for (const Case& c : cases) {
        ParameterImage image = ImageSummingTo74565();
        SetCheckSum(image, c.cpu, false);
        EXPECT_EQ(image[525], c.b525) << c.cpu;
        EXPECT_EQ(image[526], c.b526) << c.cpu;
        EXPECT_EQ(image[527], c.b527) << c.cpu;
    }
}

TEST(CheckSum, UnknownCodesAndAnInvalidNetworkSumLeaveTheirBytes) {
    for (const char* cpu : {"A4 ", "A3", "", "a3u"}) {
        ParameterImage image = ImageSummingTo74565();
        image[525] = 7;
        image[526] = 8;
        image[527] = 9;
        SetCheckSum(image, cpu, false);
        EXPECT_EQ(image[525], 7) << cpu;
        EXPECT_EQ(image[526], 8) << cpu;
        EXPECT_EQ(image[527], 9) << cpu;
    }
    ParameterImage image;
    image[1500] = 200;
    image[2056] = 1;
    SetCheckSum(image, "A3U", false);
    EXPECT_EQ(image[2056], 1);
    EXPECT_EQ(image[2057], 0);
}

TEST(CheckSum, TheNetworkSumIsNeverComplementedAndExcludesTheMainBlock) {
    ParameterImage image;
    for (int i = 1024; i <= 2055; ++i) image[i] = 255;  // 1032 x 255 = 263160 = 0x0403F8
    image[100] = 99;
    image[2059] = 99;
    for (const char* cpu : {"A3 ", "A3A", "A3U"}) {
        SetCheckSum(image, cpu, true);
        EXPECT_EQ(image[2056], 0xF8) << cpu;
        EXPECT_EQ(image[2057], 0x03) << cpu;
        EXPECT_EQ(image[2058], 0x04) << cpu;
    }
}

}  // namespace
}  // namespace gantrix
