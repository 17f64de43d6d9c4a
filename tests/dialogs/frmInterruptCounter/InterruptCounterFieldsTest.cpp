#include "dialogs/frmInterruptCounter/InterruptCounterFields.h"

#include <gtest/gtest.h>

#include <set>

#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

std::set<int> Ticked(const InterruptCounterFields& f) {
    std::set<int> ticked;
    for (int k = 0; k < kInterruptCounters; ++k) {
        if (f.PointerFlag[k]) ticked.insert(k);
    }
    return ticked;
}

// A clear bit marks an interrupt counter; bytes 188..191 hold I0-7, I8-15, I16-23, I24-31.
TEST(InterruptCounterBits, LoadAndSaveMapEachFlagToItsBit) {
    const struct {
        std::array<uint8_t, 4> bytes;
        std::set<int> ticked;
    } cases[] = {
        {{255, 255, 255, 255}, {}},
        {{0xFE, 255, 255, 255}, {0}},
        {{255, 255, 255, 0x7F}, {31}},
        {{0x7F, 0xFE, 0xEF, 0xBF}, {7, 8, 20, 30}},
        {{0, 0, 0, 0},
         [] {
             std::set<int> all;
             for (int k = 0; k < 32; ++k) all.insert(k);
             return all;
         }()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.ticked));
        ParameterImage image = test::DefaultImage("A3 ");
        for (int j = 0; j < 4; ++j) image[188 + j] = c.bytes[j];
        const InterruptCounterFields f = ReadInterruptCounter(image);
        EXPECT_EQ(Ticked(f), c.ticked);

        InterruptCounterFields fields;
        for (int k : c.ticked) fields.PointerFlag[k] = true;
        ParameterImage saved = test::DefaultImage("A3 ");
        const ParameterImage before = saved;
        WriteInterruptCounter(fields, saved);
        EXPECT_EQ(saved, image);
        for (int index : test::DifferingBytes(before, saved)) {
            EXPECT_TRUE(index >= 188 && index <= 191) << index;
        }
    }
    // Clear: no interrupt counters, four erased bytes.
    ParameterImage image;
    WriteInterruptCounter(DefaultsInterruptCounter(), image);
    for (int j = 0; j < 4; ++j) EXPECT_EQ(image[188 + j], 255);
}

TEST(InterruptCounterBits, CaptionsAndLabelsOfEqualWidth) {
    EXPECT_EQ(PointerFlagCaption(0), "I0");
    EXPECT_EQ(PointerFlagCaption(31), "I31");
    EXPECT_EQ(PointerLabel(0, true), " ( C 224 ) ");
    EXPECT_EQ(PointerLabel(31, true), " ( C 255 ) ");
    EXPECT_EQ(PointerLabel(5, false), " (       ) ");
    EXPECT_EQ(PointerLabel(5, false).size(), PointerLabel(5, true).size());
}

}  // namespace
}  // namespace gantrix
