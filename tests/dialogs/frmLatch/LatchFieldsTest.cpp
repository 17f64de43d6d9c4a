#include "dialogs/frmLatch/LatchFields.h"

#include <gtest/gtest.h>

#include <set>
#include <utility>
#include <vector>

#include "platform/rkcmnt/DeviceTable.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using Limits = std::vector<std::pair<int, int>>;  // (low, high) per row, (-1, -1) for "--"
constexpr std::pair<int, int> kNone{-1, -1};

DialogContext ContextFor(const std::string& cpu) {
    return ContextOf(test::StateFor(cpu));
}

Limits LimitsOf(const LatchLimits& limits) {
    Limits out;
    for (int r = 0; r < limits.rows; ++r) out.emplace_back(limits.row[r].low, limits.row[r].high);
    return out;
}

Limits LimitsOn(const std::string& cpu, const ParameterImage& image) {
    return LimitsOf(LatchRowLimits(image, ContextFor(cpu)));
}

LatchFields With(std::initializer_list<std::pair<int, const char*>> boxes) {
    LatchFields fields;
    for (const auto& [box, text] : boxes) fields.Text1[box] = text;
    return fields;
}

// The (message, control) pairs recorded.
std::set<std::pair<int, int>> Recorded(const ErrorTables& errors) {
    std::set<std::pair<int, int>> out;
    for (int c = 0; c <= kMaxControlNo; ++c) {
        for (int m = 0; m <= kMaxMessageNo; ++m) {
            if (errors.ControlErrorFlags[c][m]) out.emplace(m, c);
        }
    }
    return out;
}

TEST(LatchFields, LimitsOfEachTypeOnItsDefaultImage) {
    const Limits base = {{0, 2047}, {0, 1023}, {0, 199},  {200, 255},
                         kNone,     {0, 255},  {0, 1023}, {0, 1023}};
    const Limits extA = {{0, 8191}, {0, 4095}, {0, 199}, {200, 255}, kNone, {0, 255},
                         {0, 6143}, {0, 4095}, kNone,    kNone,      kNone, kNone};
    const Limits extU = {{0, 8191}, {0, 8191}, {0, 199}, {200, 255}, kNone, {0, 255},
                         {0, 8191}, {0, 8191}, kNone,    kNone,      kNone, kNone};
    const std::vector<std::pair<std::string, Limits>> cases = {
        // The fixed patterns of the smallest type fit its partition and device sizes.
        {"A0J",
         {{0, 2047}, {0, 1023}, {0, 79}, {80, 119}, {120, 127}, {0, 127}, {0, 511}, {0, 1023}}},
        {"A0H", base},
        {"A1S", base},
        {"A1 ", base},
        {"A2C", base},
        {"A2 ", base},
        {"A3 ", base},
        {"A3H", base},
        {"A2A", extA},
        {"A3A", extA},
        {"A2U", extU},
        {"A3U", extU},
        {"A4U", extU},
    };
    for (const auto& [cpu, expected] : cases) {
        EXPECT_EQ(LimitsOn(cpu, test::DefaultImage(cpu)), expected) << cpu;
    }
}

TEST(LatchFields, TimerAndCounterRowsFollowThePartitionInTheImage) {
    struct Case {
        const char* name;
        const char* cpu;
        std::vector<std::pair<int, int>> words;  // (index, value) over the default image
        std::vector<std::pair<int, std::pair<int, int>>> rows;  // (row, limits)
    };
    const std::vector<Case> cases = {
        {"both blocks in use, points in the main block",
         "A3A",
         {{210, 2048},
          {214, 1024},
          {192, 0},
          {194, 100},
          {196, 200},
          {200, 256},
          {202, 1024},
          {204, 1536}},
         {{2, {0, 99}},
          {3, {100, 199}},
          {4, {200, 255}},
          {5, {0, 255}},
          {8, {256, 1023}},
          {9, {1024, 1535}},
          {10, {1536, 2047}},
          {11, {256, 1023}}}},
        {"U types count their points in the extension area, not in 210/214",
         "A4U",
         {{210, 2048}, {214, 1024}, {2304, 512}, {2308, 640}, {200, 256}, {202, 400}},
         {{8, {256, 399}}, {9, {400, 511}}, {10, kNone}, {5, {0, 255}}, {11, {256, 639}}}},
        {"erased points read as 256: no second block",
         "A2U",
         {{2304, 65535}, {2308, 65535}, {200, 256}},
         {{3, {200, 255}}, {8, kNone}, {11, kNone}}},
        {"points 257 open the second block up to T256",
         "A2A",
         {{210, 272}, {214, 272}, {200, 256}},
         {{8, {256, 271}}, {11, {256, 271}}}},
        {"an erased kind is skipped: low speed runs to the next kind that exists",
         "A3 ",
         {{192, 0}, {194, 65535}, {196, 100}},
         {{2, {0, 99}}, {3, kNone}, {4, {100, 255}}}},
        {"an erased first kind cannot be latched",
         "A2 ",
         {{192, 65535}, {194, 50}},
         {{2, kNone}, {3, {50, 255}}}},
        {"first numbers out of order leave the kind without timers",
         "A1S",
         {{192, 100}, {194, 50}},
         {{2, kNone}, {3, {50, 255}}}},
        {"fewer than 256 timers end the first block early",
         "A2A",
         {{210, 128}, {214, 64}},
         {{2, {0, 127}}, {3, kNone}, {5, {0, 63}}, {8, kNone}}},
        {"no timers and no counters",
         "A3A",
         {{210, 0}, {214, 0}},
         {{2, kNone}, {3, kNone}, {4, kNone}, {5, kNone}, {11, kNone}}},
        {"points beyond the device stop at its last number",
         "A2A",
         {{210, 4000}, {214, 4000}, {200, 256}},
         {{8, {256, 2047}}, {11, {256, 1023}}}},
        {"a second-block kind below T256 is not in that block",
         "A3U",
         {{2304, 1024}, {200, 100}, {202, 512}},
         {{8, kNone}, {9, {512, 1023}}}},
    };
    for (const Case& c : cases) {
        ParameterImage image = test::DefaultImage(c.cpu);
        for (const auto& [index, value] : c.words) image.SetParamWord(value, index);
        const Limits limits = LimitsOn(c.cpu, image);
        for (const auto& [row, expected] : c.rows) {
            EXPECT_EQ(limits.at(static_cast<size_t>(row)), expected) << c.name << ", row " << row;
        }
    }
}

TEST(LatchFields, LoadShowsStartAndEndPerRow) {
    ParameterImage image = test::DefaultImage("A3 ");
    image.SetParamWord(416, 20);  // B 1A0-3FF
    image.SetParamWord(1023, 22);
    image.SetParamWord(40, 24);  // T low 40 with an erased end, shown as stored
    image.SetParamWord(65535, 26);
    image.SetParamWord(7, 34);   // integration end without a start: not latched
    image.SetParamWord(10, 48);  // a second-block row the 8-row type does not have
    image.SetParamWord(20, 50);
    LatchFields expected =
        With({{0, "1000"}, {1, "2047"}, {2, "1A0"}, {3, "3FF"}, {4, "40"}, {5, "65535"}});
    EXPECT_EQ(ReadLatch(image, ContextFor("A3 ")).Text1, expected.Text1);

    // The 12-row types show the second block.
    ParameterImage ext = test::DefaultImage("A3U");
    ext.SetParamWord(300, 52);
    ext.SetParamWord(400, 54);
    ext.SetParamWord(255, 44);  // W 0FF-1000
    ext.SetParamWord(4096, 46);
    expected = With({{0, "1000"}, {1, "2047"}, {14, "FF"}, {15, "1000"}, {18, "300"}, {19, "400"}});
    EXPECT_EQ(ReadLatch(ext, ContextFor("A3U")).Text1, expected.Text1);

    // The smallest type shows L up to its last M device whatever its step relay word says.
    ParameterImage a0j = test::DefaultImage("A0J");
    EXPECT_EQ(ReadLatch(a0j, ContextFor("A0J")).Text1, LatchFields{}.Text1);
    a0j.SetParamWord(1024, 16);
    a0j.SetParamWord(1535, 18);
    EXPECT_EQ(ReadLatch(a0j, ContextFor("A0J")).Text1, With({{0, "1024"}, {1, "2047"}}).Text1);
}

TEST(LatchFields, EveryCheckRuleWithItsMessageAndControl) {
    // On an "A2 " default image: L 0-2047, B 0-3FF, T low 0-199, T high 200-255, integration
    // "--", C 0-255, D 0-1023, W 0-3FF. Control number = 9 + box.
    struct Case {
        const char* name;
        LatchFields fields;
        std::set<std::pair<int, int>> expected;
    };
    const std::vector<Case> cases = {
        {"all rows empty", With({}), {}},
        {"L1000-L2047", With({{0, "1000"}, {1, "2047"}}), {}},
        {"a single device", With({{0, "5"}, {1, "5"}}), {}},
        {"the top of every row",
         With({{0, "0"},
               {1, "2047"},
               {2, "0"},
               {3, "3FF"},
               {4, "199"},
               {5, "199"},
               {6, "200"},
               {7, "255"},
               {10, "0"},
               {11, "255"},
               {12, "0"},
               {13, "1023"},
               {14, "3FF"},
               {15, "3FF"}}),
         {}},
        {"end above the high limit", With({{0, "1000"}, {1, "2048"}}), {{7, 10}}},
        {"start above the high limit: no order test", With({{0, "2048"}, {1, "2047"}}), {{7, 9}}},
        {"both out of range", With({{12, "1024"}, {13, "9999"}}), {{7, 21}, {7, 22}}},
        {"start above end", With({{0, "1500"}, {1, "1000"}}), {{8, 10}}},
        {"start without end", With({{0, "5"}}), {{8, 10}}},
        {"end without start", With({{1, "5"}}), {{8, 9}}},
        {"timer below its kind's first number", With({{6, "199"}, {7, "255"}}), {{7, 15}}},
        {"timer beyond its kind into the next", With({{4, "0"}, {5, "200"}}), {{7, 14}}},
        {"a kind the partition does not provide",
         With({{8, "124"}, {9, "127"}}),
         {{8, 17}, {8, 18}}},
        {"only the typed box of such a kind", With({{9, "0"}}), {{8, 18}}},
        {"hexadecimal B range", With({{2, "1A0"}, {3, "3FF"}}), {}},
        {"hexadecimal B beyond 3FF", With({{2, "1A0"}, {3, "400"}}), {{7, 12}}},
        {"hexadecimal order", With({{2, "3FF"}, {3, "1A0"}}), {{8, 12}}},
        {"W beyond 3FF", With({{14, "0"}, {15, "FFFF"}}), {{7, 24}}},
        {"two messages for two rows",
         With({{1, "2048"}, {0, "1"}, {10, "9"}, {11, "3"}, {12, "7"}}),
         {{7, 10}, {8, 20}, {8, 22}}},
    };
    const DialogContext context = ContextFor("A2 ");
    const LatchLimits limits = LatchRowLimits(test::DefaultImage("A2 "), context);
    for (const Case& c : cases) {
        const ErrorTables errors = ValidateLatch(c.fields, limits, context);
        EXPECT_EQ(Recorded(errors), c.expected) << c.name;
        for (const auto& [message, control] : c.expected) {
            EXPECT_TRUE(errors.HasMessage(message)) << c.name;
        }
    }
}

TEST(LatchFields, WriteStoresEveryBoxOfThePresentRows) {
    ParameterImage image = test::DefaultImage("A2 ");
    for (int i = 16; i <= 63; ++i) image[i] = 0x11;
    const ParameterImage before = image;
    WriteLatch(With({{0, "1000"}, {1, "2047"}}), image, ContextFor("A2 "));
    const std::vector<uint8_t> l = {image[16], image[17], image[18], image[19]};
    EXPECT_EQ(l, (std::vector<uint8_t>{0xE8, 0x03, 0xFF, 0x07}));
    for (int i = 20; i <= 47; ++i) EXPECT_EQ(image[i], 255) << i;
    // Rows 8..11 belong to the 12-row types only; word 14 too.
    for (int i = 48; i <= 63; ++i) EXPECT_EQ(image[i], 0x11) << i;
    EXPECT_EQ(test::DifferingBytes(before, image).size(), 48u - 16u);

    image = test::DefaultImage("A2 ");
    WriteLatch(With({{12, "10"}, {2, "1A0"}, {3, "3FF"}, {14, "0"}, {15, "3FF"}}), image,
               ContextFor("A2 "));
    EXPECT_EQ(image.GetParamWord(40), 10);     // D start
    EXPECT_EQ(image.GetParamWord(42), 65535);  // its empty end
    EXPECT_EQ(image.GetParamWord(20), 416);
    EXPECT_EQ(image.GetParamWord(22), 1023);
    EXPECT_EQ(image.GetParamWord(44), 0);
    EXPECT_EQ(image.GetParamWord(46), 1023);
}

TEST(LatchFields, WriteOfTheTwelveRowTypesReachesRow11AndWord14) {
    ParameterImage image = test::DefaultImage("A3U");
    image.SetParamWord(65535, 14);
    WriteLatch(With({{0, "0"}, {1, "8191"}, {22, "256"}, {23, "1023"}}), image, ContextFor("A3U"));
    EXPECT_EQ(image.GetParamWord(14), 2048);
    EXPECT_EQ(image.GetParamWord(18), 8191);
    EXPECT_EQ(image.GetParamWord(60), 256);
    EXPECT_EQ(image.GetParamWord(62), 1023);
    for (int i = 20; i <= 59; ++i) EXPECT_EQ(image[i], 255) << i;
    // A step relay boundary in word 14 is kept.
    image.SetParamWord(1536, 14);
    WriteLatch(With({}), image, ContextFor("A3U"));
    EXPECT_EQ(image.GetParamWord(14), 1536);
}

TEST(LatchFields, RowLKeepsTheStepRelayBoundaryItDoesNotSet) {
    struct Case {
        const char* name;
        const char* cpu;
        int start, end;  // words 16 and 18 before
        LatchFields fields;
        int startAfter, endAfter;
    };
    const std::vector<Case> cases = {
        {"erased and empty stays erased", "A3 ", 65535, 65535, With({}), 65535, 65535},
        {"clearing L keeps the boundary", "A3 ", 1000, 1535, With({}), 65535, 1535},
        {"boundary without latch relays kept", "A2A", 65535, 1535, With({}), 65535, 1535},
        {"a typed end is the new end", "A3 ", 65535, 2047, With({{0, "500"}, {1, "1535"}}), 500,
         1535},
        {"a start alone keeps the end", "A3 ", 65535, 1535, With({{0, "500"}}), 500, 1535},
        {"A0J: the shown end never replaces step relays", "A0J", 65535, 1535,
         With({{0, "1024"}, {1, "2047"}}), 1024, 1535},
        {"A0J: no step relays stay none", "A0J", 1024, 2047, With({{0, "0"}, {1, "2047"}}), 0,
         2047},
        {"A0J: an erased end under a latch gets the shown end", "A0J", 65535, 65535,
         With({{0, "1024"}, {1, "2047"}}), 1024, 2047},
        {"A0J: no latch keeps the boundary", "A0J", 1024, 1535, With({}), 65535, 1535},
        {"A0J: no latch on erased words", "A0J", 65535, 65535, With({}), 65535, 65535},
    };
    for (const Case& c : cases) {
        ParameterImage image = test::DefaultImage(c.cpu);
        image.SetParamWord(c.start, 16);
        image.SetParamWord(c.end, 18);
        WriteLatch(c.fields, image, ContextFor(c.cpu));
        EXPECT_EQ(image.GetParamWord(16), c.startAfter) << c.name;
        EXPECT_EQ(image.GetParamWord(18), c.endAfter) << c.name;
    }
}

TEST(LatchFields, DefaultsAreL1000To2047OverThePresentRowsExceptOnTheSmallestType) {
    LatchFields filled;
    filled.Text1.fill("1");
    for (const std::string_view cpu : platform::kCpuTypes) {
        const std::string code(cpu);
        const int boxes = code == "A0J" ? 0 : 2 * LatchRowCount(code);
        LatchFields expected = filled;
        for (int i = 0; i < boxes; ++i) expected.Text1[i] = i == 0 ? "1000" : i == 1 ? "2047" : "";
        EXPECT_EQ(DefaultsLatch(filled, ContextFor(code)), expected) << code;
    }
}

TEST(LatchFields, FixedPatternsPassOnTheDefaultA0JImageAndSaveTheirWords) {
    const DialogContext context = ContextFor("A0J");
    const ParameterImage start = test::DefaultImage("A0J");
    const LatchLimits limits = LatchRowLimits(start, context);
    // Words 16..46 (start, end per row); the end of L stays the step relay word 2047.
    const std::vector<std::vector<int>> words = {
        {65535, 2047, 65535, 65535, 65535, 65535, 65535, 65535, 65535, 65535, 65535, 65535, 65535,
         65535, 65535, 65535},
        {1024, 2047, 0x200, 0x3FF, 40, 79, 100, 119, 124, 127, 64, 127, 256, 511, 0x200, 0x3FF},
        {0, 2047, 0, 1023, 0, 79, 80, 119, 120, 127, 0, 127, 0, 511, 0, 1023},
    };
    for (int pattern = 0; pattern < kLatchPatterns; ++pattern) {
        LatchFields fields = ReadLatch(start, context);
        ApplyLatchPattern(fields, pattern);
        EXPECT_FALSE(ValidateLatch(fields, limits, context).Any()) << pattern;
        ParameterImage image = start;
        WriteLatch(fields, image, context);
        for (int i = 0; i < 16; ++i) {
            EXPECT_EQ(image.GetParamWord(16 + 2 * i), words[pattern][i]) << pattern << " " << i;
        }
        for (int i : test::DifferingBytes(start, image)) EXPECT_TRUE(i >= 16 && i <= 47) << i;
        // Reading back shows the pattern again.
        EXPECT_EQ(ReadLatch(image, context), fields) << pattern;
    }
}

}  // namespace
}  // namespace gantrix
