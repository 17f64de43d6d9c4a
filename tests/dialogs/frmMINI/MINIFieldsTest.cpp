// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmMINI/MINIFields.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using Row = std::array<std::string, kMiniFieldsPerRow>;
using Bytes = std::vector<uint8_t>;

const Row kGoodRow = {"100", "MINI", "12", "X0", "Y0", "5", "CPU", "Clear", "M0", "D0", "Hold"};

MINIFields Modules(const std::vector<Row>& rows) {
    MINIFields f;
    f.Text1 = std::to_string(rows.size());
    for (size_t m = 0; m < rows.size(); ++m)
        std::copy(rows[m].begin(), rows[m].end(), f.Text2.begin() + kMiniFieldsPerRow * m);
    return f;
}

TEST(MiniDeviceCodes, EveryRangeToItsCodeAndBackAndTheRelayLetters) {
    const RelayWords allM{2048, kErased, 8191};  // every internal relay shows as M
    // clang-format off
    const struct { const char* text; long a, u; } cases[] = {
        {"X1F0", 31, 31}, {"X7F0", 127, 127}, {"Y10", 513, 1025}, {"M0", 1024, 1536},
        {"M8176", 1535, 2047}, {"B0", 1536, 2048}, {"M9016", 2497, 3265}, {"M9240", 2511, 3279},
        {"BFF0", 1791, 2303}, {"D9010", 2570, 3338}, {"C1023", 4095, 5119}, {"W1F", 4127, 5151},
        {"D100", 8292, 13412}, {"T2047", 16383, 23551}, {"R0", 16384, 32768}, {"R8191", 24575, 40959}};
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(CalculateAddress(MiniGroup::A, c.text), c.a);
        EXPECT_EQ(CalculateAddress(MiniGroup::U, c.text), c.u);
        EXPECT_EQ(DeviceTextOf(MiniGroup::A, c.a, allM), c.text);
        EXPECT_EQ(DeviceTextOf(MiniGroup::U, c.u, allM), c.text);
    }
    EXPECT_EQ(CalculateAddress(MiniGroup::U, "S2048"), 1536 + 128);  // L and S in M's range
    // clang-format off
    for (const auto& [group, code] : {std::pair{MiniGroup::A, 640L}, {MiniGroup::A, 1023L},
         {MiniGroup::A, 2512L}, {MiniGroup::A, 24576L}, {MiniGroup::U, 3280L}, {MiniGroup::U, 40960L}}) {
        EXPECT_EQ(DeviceTextOf(group, code, allM), "") << code;  // in no range
    }
    // A relay's letter from words 14, 16, 18: L from word 16 to 18 and S from word 14 (erased
    // 2048); without L, M up to word 18 then S up to word 14 - 1, S from 0 with word 18 erased.
    const struct { int w14, w16, w18; long n; char letter; } relays[] = {
        {2048, 1000, 2047, 992, 'M'}, {2048, 1000, 2047, 1008, 'L'}, {2048, 1000, 2032, 2032, 'L'},
        {2048, 1000, 2047, 2048, 'M'}, {3072, 1000, 2047, 2048, 'S'}, {3072, 1000, 2047, 3072, 'M'},
        {kErased, 1000, 2047, 2048, 'M'}, {2048, kErased, 8191, 4096, 'M'},
        {2048, kErased, 1023, 1008, 'M'}, {2048, kErased, 1023, 1024, 'S'},
        {2048, kErased, 1023, 2048, 'M'}, {2048, kErased, kErased, 0, 'S'},
        {2048, kErased, kErased, 2048, 'M'}};
    // clang-format on
    for (const auto& c : relays) {
        ParameterImage image = test::DefaultImage("A3U");
        for (const auto& [index, value] : {std::pair{14, c.w14}, {16, c.w16}, {18, c.w18}})
            image.SetParamWord(value, index);
        image.SetParamWord(1536 + c.n / 16, 2326);
        EXPECT_EQ(CalculateDeviceNumber(image, 2326, "A3U"), c.letter + std::to_string(c.n))
            << c.w14 << " " << c.w16 << " " << c.w18;
    }
}

TEST(MiniChecks, EachCellRule) {
    // clang-format off
    // Message 0: accepted. Field -1: the number of modules, with an empty module after it.
    const struct { const char* cpu; int field; const char* text; int message; int rPoints = 0;
                   int marked = -1; /* the field marked, if not the one set */ } cases[] = {
        {"A3U", -1, "9", 3}, {"A3U", -1, "", 2}, {"A3U", -1, "0", 0},
        {"A3U", kStartIo, "", 2}, {"A3U", kStartIo, "108", 11}, {"A2U", kStartIo, "1000", 3},
        {"A2U", kStartIo, "3F0", 0}, {"A2U", kStartIo, "400", 3}, {"A4U", kStartIo, "FE0", 0},
        {"A4U", kStartIo, "FF0", 3},  // stored as 255, "not set"
        {"A2A", kStartIo, "1F0", 0}, {"A2A", kStartIo, "200", 3}, {"A3U", kModel, "", 2},
        {"A3U", kStations, "", 2}, {"A3U", kStations, "64", 0}, {"A3U", kStations, "65", 3},
        {"A3U", kStations, "------", 3}, {"A3U", kSend, "X100", 11}, {"A3U", kReceive, "Y100", 11},
        {"A3U", kDetection, "X0", 11}, {"A3U", kErrorNo, "M100", 11}, {"A3U", kErrorNo, "D9010", 0},
        {"A3A", kDetection, "M9016", 0}, {"A3A", kDetection, "M9010", 11},
        {"A3U", kDetection, "M9256", 3}, {"A3U", kErrorNo, "D9256", 3}, {"A3U", kReceive, "M8176", 0},
        {"A3U", kReceive, "M8192", 3}, {"A3U", kReceive, "L100", 11}, {"A3U", kReceive, "S96", 0},
        {"A2A", kReceive, "X200", 3}, {"A3U", kReceive, "XA0", 0}, {"A3U", kReceive, "X108", 11},
        {"A3U", kReceive, "DA", 11}, {"A3U", kReceive, "D", 11}, {"A3U", kErrorNo, "W1FFF", 0},
        {"A3A", kErrorNo, "W1000", 3},
        {"A3U", kErrorNo, "T2048", 3}, {"A3U", kErrorNo, "C1023", 0}, {"A3U", kErrorNo, "R0", 3},
        {"A3U", kErrorNo, "R8191", 0, 8192}, {"A3U", kErrorNo, "R8191", 3, 4096},  // file registers
        {"A3U", kRetries, "", 2}, {"A3U", kRetries, "33", 3}, {"A3U", kRetries, "0", 0},
        {"A3U", kResponse, "", 2}, {"A3U", kResponse, "Hold", 11}, {"A3U", kDataClear, "CPU", 11},
        {"A3U", kLineError, "Clear", 11}, {"A3U", kLineError, "OFF", 0},
        {"A3U", kModel, "MINI-S3", 11, 0, kStations}};  // a MINI-S3 needs "------"
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.cpu << " field " << c.field << " " << c.text);
        MINIFields f = Modules({c.field < 0 ? Row{} : kGoodRow});
        (c.field < 0 ? f.Text1 : f.Text2[c.field]) = c.text;
        const int control =
            c.field < 0 ? MiniText1No() : MiniText2No(c.marked < 0 ? c.field : c.marked);
        const ErrorTables errors = ValidateMINI(f, test::ContextFor(c.cpu), c.rPoints);
        EXPECT_EQ(std::ranges::count(errors.ErrorMessageFlags, true), c.message ? 1 : 0);
        EXPECT_EQ(test::RecordedErrors(errors),
                  c.message ? std::to_string(c.message) + ":" + std::to_string(control) : "");
    }
    // A model of neither name: that one message, the number of stations is not looked at.
    MINIFields f = Modules({kGoodRow});
    f.Text2[kModel] = "MINI-X";
    f.Text2[kStations] = "99";
    EXPECT_EQ(test::RecordedErrors(ValidateMINI(f, test::ContextFor("A3U"), 0)),
              "11:" + std::to_string(MiniText2No(kModel)));
}

// X100 to the CPU, Y100 from it, special relays and registers for the error data, OFF data
// on a line error; then a MINI-S3 with the new-row values at 200.
const Row kExample = {"1A0", "MINI", "12",    "X100",  "Y100", "5",
                      "CPU", "Hold", "M9016", "D9010", "OFF"};
const Bytes kExampleU = {0x1A, 0x7A, 0x45, 0x0C, 0x10, 0x00, 0x10, 0x04, 0xC1, 0x0C, 0x0A, 0x0D};
const Bytes kExampleA = {0x1A, 0x7A, 0x45, 0x0C, 0x10, 0x00, 0x10, 0x02, 0xC1, 0x09, 0x0A, 0x0A};
const Bytes kNewS3 = {0x20, 0x07, 0x85, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

// Group U writes its codes to both areas, which a run through the menu shows.
TEST(MiniRecords, SaveWritesTheAAreaForGroupAAndLoadsBack) {
    Row s3 = NewRowValues();
    s3[kStartIo] = "200";
    const MINIFields f = Modules({kExample, s3});
    ParameterImage expected = test::DefaultImage("A3A");
    ParameterImage image = expected;
    WriteMINI(f, image, test::ContextFor("A3A"));
    expected.SetParamWord(2, 534);
    std::copy(kExampleA.begin(), kExampleA.end(), expected.bytes().begin() + 544);
    std::copy(kNewS3.begin(), kNewS3.end(), expected.bytes().begin() + 556);
    EXPECT_EQ(test::DifferingBytes(image, expected), std::vector<int>{});
    EXPECT_EQ(ReadMINI(image, test::ContextFor("A3A")), f);
}

TEST(MiniRecords, LoadReadsTheGroupsAreaAsTheCellsKeepIt) {
    ParameterImage image = test::DefaultImage("A2U");
    image.SetParamWord(kErased, 2312);
    EXPECT_EQ(ReadMINI(image, test::ContextFor("A2U")), DefaultsMINI());  // "0", no rows
    // The U types read the U area only. A MINI-S3 with 12 stations, retries 63, hold and OFF
    // both set, a receive code in no range, detection M0; then a MINI without stations.
    image.SetParamWord(1, 534);
    image.SetParamWord(2, 2312);
    const Bytes odd = {0xFF, 0x29, 0xBF, 0x0C, 0xC4, 0x02, 0xFF, 0xFF, 0x00, 0x06, 0x00, 0x00};
    std::copy(odd.begin(), odd.end(), image.bytes().begin() + 2322);
    std::copy(kExampleU.begin(), kExampleU.end(), image.bytes().begin() + 2334);
    image[2337] = 0xFF;
    MINIFields f = ReadMINI(image, test::ContextFor("A2U"));
    EXPECT_EQ(f.Text1, "2");
    EXPECT_EQ(std::vector(f.Text2.begin(), f.Text2.begin() + kMiniFieldsPerRow),
              (std::vector<std::string>{"", "MINI-S3", "------", "", "", "63", "Link", "Hold", "M0",
                                        "", "Hold"}));
    EXPECT_EQ(f.Text2[kMiniFieldsPerRow + kStations], "");
    f.Text2[kStartIo] = "0";  // saved back, the device in no range is no device
    WriteMINI(f, image, test::ContextFor("A2U"));
    EXPECT_EQ(Bytes(image.data() + 2322, image.data() + 2328),
              (Bytes{0x00, 0x21, 0xBF, 0xFF, 0xFF, 0xFF}));
    image.SetParamWord(9, 2312);  // more modules than rows: none shown, and OK refuses
    MINIFields nine;
    nine.Text1 = "9";
    EXPECT_EQ(ReadMINI(image, test::ContextFor("A2U")), nine);
    EXPECT_EQ(test::RecordedErrors(ValidateMINI(nine, test::ContextFor("A2U"), 0)), "3:80");
}

}  // namespace
}  // namespace gantrix
