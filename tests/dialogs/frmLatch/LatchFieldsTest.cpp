// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmLatch/LatchFields.h"

#include <gtest/gtest.h>

#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using Limits = std::vector<std::pair<int, int>>;  // (low, high) per row, (-1, -1) for "--"
constexpr std::pair<int, int> kNone{-1, -1};

Limits LimitsOn(const std::string& cpu, const ParameterImage& image) {
    const LatchLimits limits = LatchRowLimits(image, test::ContextFor(cpu));
    Limits out;
    for (int r = 0; r < limits.rows; ++r) out.emplace_back(limits.row[r].low, limits.row[r].high);
    return out;
}

LatchFields With(std::initializer_list<std::pair<int, const char*>> boxes) {
    LatchFields fields;
    for (const auto& [box, text] : boxes) fields.Text1[box] = text;
    return fields;
}

ParameterImage DefaultWith(const std::string& cpu, std::vector<std::pair<int, int>> words) {
    ParameterImage image = test::DefaultImage(cpu);
    for (const auto& [index, value] : words) image.SetParamWord(value, index);
    return image;
}

// clang-format off
TEST(LatchFields, LimitsOfEachTypeOnItsDefaultImage) {
    const Limits base = {{0, 2047}, {0, 1023}, {0, 199}, {200, 255}, kNone, {0, 255}, {0, 1023}, {0, 1023}};
    const Limits extA = {{0, 8191}, {0, 4095}, {0, 199}, {200, 255}, kNone, {0, 255}, {0, 6143}, {0, 4095}, kNone, kNone, kNone, kNone};
    const Limits extU = {{0, 8191}, {0, 8191}, {0, 199}, {200, 255}, kNone, {0, 255}, {0, 8191}, {0, 8191}, kNone, kNone, kNone, kNone};
    // The fixed patterns of the smallest type fit its partition and device sizes.
    const Limits a0j = {{0, 2047}, {0, 1023}, {0, 79}, {80, 119}, {120, 127}, {0, 127}, {0, 511}, {0, 1023}};
    const std::pair<const char*, Limits> cases[] = {
        {"A0J", a0j}, {"A0H", base}, {"A1S", base}, {"A1 ", base}, {"A2C", base}, {"A2 ", base}, {"A3 ", base},
        {"A3H", base}, {"A2A", extA}, {"A3A", extA}, {"A2U", extU}, {"A3U", extU}, {"A4U", extU}};
    for (const auto& [cpu, expected] : cases) EXPECT_EQ(LimitsOn(cpu, test::DefaultImage(cpu)), expected) << cpu;
}

TEST(LatchFields, TimerAndCounterRowsFollowThePartitionInTheImage) {
    const struct { const char* cpu; std::vector<std::pair<int, int>> words; Limits rows; int first; } cases[] = {
        // Both blocks in use; the U types count their points from 2304, not in 210/214.
        {"A3A", {{210, 2048}, {214, 1024}, {194, 100}, {196, 200}, {200, 256}, {202, 1024}, {204, 1536}},
         {{0, 99}, {100, 199}, {200, 255}, {0, 255}, {0, 6143}, {0, 4095}, {256, 1023}, {1024, 1535}, {1536, 2047}, {256, 1023}}, 2},
        {"A4U", {{210, 2048}, {214, 1024}, {2304, 512}, {2308, 640}, {200, 256}, {202, 400}},
         {{256, 399}, {400, 511}, kNone, {256, 639}}, 8},
        {"A2U", {{2304, 65535}, {2308, 65535}, {200, 256}}, {kNone, kNone, kNone, kNone}, 8},  // erased: 256
        {"A2A", {{210, 272}, {214, 272}, {200, 256}}, {{256, 271}, kNone, kNone, {256, 271}}, 8},
        {"A2A", {{210, 4000}, {214, 4000}, {200, 256}}, {{256, 2047}, kNone, kNone, {256, 1023}}, 8},  // device ends
        {"A3U", {{2304, 1024}, {200, 100}, {202, 512}}, {kNone, {512, 1023}}, 8},  // T100 is no second block
        // An erased kind is skipped; an erased first kind, or one out of order, has no timers.
        {"A3 ", {{194, 65535}, {196, 100}}, {{0, 99}, kNone, {100, 255}}, 2},
        {"A3 ", {{194, 255}}, {{0, 254}, {255, 255}, kNone}, 2},  // a kind of one timer
        {"A2 ", {{192, 65535}, {194, 50}}, {kNone, {50, 255}}, 2},
        {"A1S", {{192, 100}, {194, 50}}, {kNone, {50, 255}}, 2},
        {"A2A", {{210, 128}, {214, 64}}, {{0, 127}, kNone, kNone, {0, 63}}, 2},  // points end the block
        {"A3A", {{210, 0}, {214, 0}}, {kNone, kNone, kNone, kNone}, 2},
    };
    for (const auto& c : cases) {
        const Limits limits = LimitsOn(c.cpu, DefaultWith(c.cpu, c.words));
        EXPECT_EQ(Limits(limits.begin() + c.first, limits.begin() + c.first + c.rows.size()), c.rows) << c.cpu;
    }
}

TEST(LatchFields, LoadShowsStartAndEndOfTheLatchedRows) {
    // B 1A0-3FF; an erased end shows as stored; an end without start is no latch; 8 rows only.
    const ParameterImage a3 = DefaultWith("A3 ", {{20, 416}, {22, 1023}, {24, 40}, {26, 65535}, {34, 7}, {48, 10}, {50, 20}});
    EXPECT_EQ(ReadLatch(a3, test::ContextFor("A3 ")).Text1, With({{0, "1000"}, {1, "2047"}, {2, "1A0"}, {3, "3FF"}, {4, "40"}, {5, "65535"}}).Text1);
    const ParameterImage a3u = DefaultWith("A3U", {{52, 300}, {54, 400}, {44, 255}, {46, 4096}});
    EXPECT_EQ(ReadLatch(a3u, test::ContextFor("A3U")).Text1, With({{0, "1000"}, {1, "2047"}, {14, "FF"}, {15, "1000"}, {18, "300"}, {19, "400"}}).Text1);
    // The smallest type shows L up to its last M device whatever its step relay word says.
    EXPECT_EQ(ReadLatch(test::DefaultImage("A0J"), test::ContextFor("A0J")).Text1, LatchFields{}.Text1);
    EXPECT_EQ(ReadLatch(DefaultWith("A0J", {{16, 1024}, {18, 1535}}), test::ContextFor("A0J")).Text1, With({{0, "1024"}, {1, "2047"}}).Text1);
}

TEST(LatchFields, EveryCheckRuleWithItsMessageAndControl) {
    // "A2 " default image; control 9 + box; (7) out of range, (8) invalid range.
    const struct { LatchFields fields; const char* expected; } cases[] = {
        {With({{0, "0"}, {1, "2047"}, {2, "0"}, {3, "3FF"}, {4, "199"}, {5, "199"}, {6, "200"}, {7, "255"},
               {10, "0"}, {11, "255"}, {12, "0"}, {13, "1023"}, {14, "3FF"}, {15, "3FF"}}), ""},
        {With({{0, "5"}, {1, "5"}}), ""},  {With({{0, "1000"}, {1, "2048"}}), "7:10"},
        {With({{0, "2048"}, {1, "2047"}}), "7:9"},  // no order test past the limit
        {With({{12, "1024"}, {13, "9999"}}), "7:21 7:22"}, {With({{0, "1500"}, {1, "1000"}}), "8:10"},
        {With({{0, "5"}}), "8:10"}, {With({{1, "5"}}), "8:9"},  // the missing box is painted
        {With({{6, "199"}, {7, "255"}}), "7:15"},  // below its kind's first number
        {With({{4, "0"}, {5, "200"}}), "7:14"},    // into the next kind
        {With({{8, "124"}, {9, "127"}}), "8:17 8:18"}, {With({{9, "0"}}), "8:18"},  // no such kind
        {With({{2, "1A0"}, {3, "400"}}), "7:12"}, {With({{2, "3FF"}, {3, "1A0"}}), "8:12"},
        {With({{14, "0"}, {15, "FFFF"}}), "7:24"},
    };
    const DialogContext context = test::ContextFor("A2 ");
    const LatchLimits limits = LatchRowLimits(test::DefaultImage("A2 "), context);
    for (const auto& c : cases) {
        EXPECT_EQ(test::RecordedErrors(ValidateLatch(c.fields, limits, context)), c.expected)
            << c.fields.Text1[0] << " " << c.fields.Text1[1];
    }
}

TEST(LatchFields, WriteStoresEveryBoxOfThePresentRowsAndNothingElse) {
    ParameterImage image = test::DefaultImage("A2 ");
    for (int i = 16; i <= 63; ++i) image[i] = 0x11;
    ParameterImage expected = image;
    WriteLatch(With({{0, "1000"}, {1, "2047"}, {2, "1A0"}, {3, "3FF"}, {12, "10"}, {14, "0"}, {15, "3FF"}}), image, test::ContextFor("A2 "));
    const int E = 65535, words[16] = {1000, 2047, 0x1A0, 0x3FF, E, E, E, E, E, E, E, E, 10, E, 0, 0x3FF};
    for (int box = 0; box < 16; ++box) expected.SetParamWord(words[box], 16 + 2 * box);
    // Rows 8..11 and the step relay word 14 belong to the 12-row types only.
    EXPECT_EQ(test::DifferingBytes(image, expected), std::vector<int>{});
    ParameterImage ext = DefaultWith("A3U", {{14, 65535}});
    WriteLatch(With({{0, "0"}, {1, "8191"}, {22, "256"}, {23, "1023"}}), ext, test::ContextFor("A3U"));
    EXPECT_EQ(test::DifferingBytes(ext, DefaultWith("A3U", {{16, 0}, {18, 8191}, {60, 256}, {62, 1023}})), std::vector<int>{});
}

TEST(LatchFields, RowLKeepsTheStepRelayBoundaryItDoesNotSet) {
    const struct { const char* cpu; int start, end; LatchFields fields; int startAfter, endAfter; } cases[] = {
        {"A3 ", 65535, 65535, With({}), 65535, 65535},
        {"A3 ", 1000, 1535, With({}), 65535, 1535},  // clearing L keeps the boundary
        {"A2A", 65535, 1535, With({}), 65535, 1535},
        {"A3 ", 65535, 2047, With({{0, "500"}, {1, "1535"}}), 500, 1535},
        {"A3 ", 65535, 1535, With({{0, "500"}}), 500, 1535},
        // The smallest type's shown end never replaces its step relays; only an erased end
        // under a latch gets it.
        {"A0J", 65535, 1535, With({{0, "1024"}, {1, "2047"}}), 1024, 1535},
        {"A0J", 1024, 2047, With({{0, "0"}, {1, "2047"}}), 0, 2047},
        {"A0J", 65535, 65535, With({{0, "1024"}, {1, "2047"}}), 1024, 2047},
        {"A0J", 1024, 1535, With({}), 65535, 1535},
        {"A0J", 65535, 65535, With({}), 65535, 65535},
    };
    for (const auto& c : cases) {
        // A step relay boundary of the 12-row types in word 14 stays too.
        ParameterImage image = DefaultWith(c.cpu, {{16, c.start}, {18, c.end}, {14, 1536}});
        WriteLatch(c.fields, image, test::ContextFor(c.cpu));
        EXPECT_EQ(std::tuple(image.GetParamWord(16), image.GetParamWord(18), image.GetParamWord(14)),
                  std::tuple(c.startAfter, c.endAfter, 1536)) << c.cpu << " " << c.start << " " << c.end;
    }
}
// clang-format on

TEST(LatchFields, FixedPatternsPassOnTheDefaultA0JImageAndSaveTheirWords) {
    const DialogContext context = test::ContextFor("A0J");
    const ParameterImage start = test::DefaultImage("A0J");
    const LatchLimits limits = LatchRowLimits(start, context);
    const int E = 65535;  // words 16..46; the end of L stays the step relay word 2047
    const std::vector<std::vector<int>> words = {
        {E, 2047, E, E, E, E, E, E, E, E, E, E, E, E, E, E},
        {1024, 2047, 0x200, 0x3FF, 40, 79, 100, 119, 124, 127, 64, 127, 256, 511, 0x200, 0x3FF},
        {0, 2047, 0, 1023, 0, 79, 80, 119, 120, 127, 0, 127, 0, 511, 0, 1023},
    };
    for (int pattern = 0; pattern < kLatchPatterns; ++pattern) {
        LatchFields fields = ReadLatch(start, context);
        ApplyLatchPattern(fields, pattern);
        EXPECT_FALSE(ValidateLatch(fields, limits, context).Any()) << pattern;
        ParameterImage image = start;
        WriteLatch(fields, image, context);
        ParameterImage expected = start;
        for (int i = 0; i < 16; ++i) expected.SetParamWord(words[pattern][i], 16 + 2 * i);
        EXPECT_EQ(test::DifferingBytes(image, expected), std::vector<int>{}) << pattern;
        EXPECT_EQ(ReadLatch(image, context), fields) << pattern;  // reading back shows it again
    }
}

}  // namespace
}  // namespace gantrix
