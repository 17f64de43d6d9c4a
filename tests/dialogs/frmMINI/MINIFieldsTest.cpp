#include "dialogs/frmMINI/MINIFields.h"

#include <gtest/gtest.h>

#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using Row = std::array<std::string, kMiniFieldsPerRow>;

// A module that passes every check.
const Row kGoodRow = {"100", "MINI", "12", "X0", "Y0", "5", "CPU", "Clear", "M0", "D0", "Hold"};

DialogContext ContextFor(const std::string& cpu) {
    return ContextOf(test::StateFor(cpu));
}

MINIFields OneModule(const Row& row) {
    MINIFields f;
    f.Text1 = "1";
    std::copy(row.begin(), row.end(), f.Text2.begin());
    return f;
}

// The message numbers recorded.
std::vector<int> Messages(const ErrorTables& errors) {
    std::vector<int> numbers;
    for (int n = 0; n <= kMaxMessageNo; ++n) {
        if (errors.HasMessage(n)) numbers.push_back(n);
    }
    return numbers;
}

// Words 16 and 18 that show every internal relay as M.
const RelayWords kAllM{2048, kErased, 8191};

TEST(MiniDeviceCodes, EveryLetterToItsCodeAndBack) {
    // clang-format off
    // Device text, code in group A, code in group U.
    const struct { const char* text; long a, u; } cases[] = {
        {"X0", 0, 0}, {"X1F0", 31, 31}, {"X7F0", 127, 127}, {"Y10", 513, 1025}, {"Y7F0", 639, 1151},
        {"M0", 1024, 1536}, {"M8176", 1535, 2047}, {"M9000", 2496, 3264}, {"M9016", 2497, 3265},
        {"M9240", 2511, 3279}, {"B0", 1536, 2048}, {"BFF0", 1791, 2303}, {"D9000", 2560, 3328},
        {"D9010", 2570, 3338}, {"D9255", 2815, 3583}, {"C0", 3072, 4096}, {"C1023", 4095, 5119},
        {"W0", 4096, 5120}, {"W1F", 4127, 5151}, {"WFFF", 8191, 9215}, {"D0", 8192, 13312},
        {"D100", 8292, 13412}, {"D6143", 14335, 19455}, {"T0", 14336, 21504},
        {"T2047", 16383, 23551}, {"R0", 16384, 32768}, {"R8191", 24575, 40959}};
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(CalculateAddress(MiniGroup::A, c.text), c.a);
        EXPECT_EQ(CalculateAddress(MiniGroup::U, c.text), c.u);
        EXPECT_EQ(DeviceTextOf(MiniGroup::A, c.a, kAllM), c.text);
        EXPECT_EQ(DeviceTextOf(MiniGroup::U, c.u, kAllM), c.text);
    }
    // L and S are coded in M's range; codes in no range show nothing.
    EXPECT_EQ(CalculateAddress(MiniGroup::A, "L1008"), 1024 + 63);
    EXPECT_EQ(CalculateAddress(MiniGroup::U, "S2048"), 1536 + 128);
    for (long code : {640L, 1023L, 1792L, 2495L, 2512L, 2816L, 24576L, 65535L}) {
        EXPECT_EQ(DeviceTextOf(MiniGroup::A, code, kAllM), "") << code;
    }
    for (long code : {512L, 1023L, 3280L, 3584L, 23552L, 32767L, 40960L}) {
        EXPECT_EQ(DeviceTextOf(MiniGroup::U, code, kAllM), "") << code;
    }
}

TEST(MiniDeviceCodes, RelayLetterFromWords14To18) {
    // clang-format off
    const struct { int w14, w16, w18; long n; char letter; } cases[] = {
        // Latch relays L1000-L2047 and no step relays (the default image); then S2048-S3071.
        {2048, 1000, 2047, 992, 'M'}, {2048, 1000, 2047, 1008, 'L'}, {2048, 1000, 2047, 2032, 'L'},
        {2048, 1000, 2047, 2048, 'M'}, {3072, 1000, 2047, 2048, 'S'}, {3072, 1000, 2047, 3056, 'S'},
        {3072, 1000, 2047, 3072, 'M'},
        // An erased word 14 stands for 2048.
        {kErased, 1000, 2047, 2048, 'M'}, {kErased, 1000, 2047, 4096, 'M'},
        // No latch relays: M up to word 18, then S up to word 14 - 1.
        {2048, kErased, 8191, 4096, 'M'}, {2048, kErased, 1023, 1008, 'M'},
        {2048, kErased, 1023, 1024, 'S'}, {2048, kErased, 1023, 2032, 'S'},
        {2048, kErased, 1023, 2048, 'M'},
        // No latch relays and word 18 erased: S from 0 up to word 14 - 1.
        {2048, kErased, kErased, 0, 'S'}, {2048, kErased, kErased, 2032, 'S'},
        {2048, kErased, kErased, 2048, 'M'}};
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.w14 << " " << c.w16 << " " << c.w18 << " " << c.n);
        ParameterImage image = test::DefaultImage("A3U");
        image.SetParamWord(c.w14, 14);
        image.SetParamWord(c.w16, 16);
        image.SetParamWord(c.w18, 18);
        image.SetParamWord(1536 + c.n / 16, 2326);
        EXPECT_EQ(CalculateDeviceNumber(image, 2326, "A3U"), c.letter + std::to_string(c.n));
    }
}

TEST(MiniChecks, EachCellRule) {
    // clang-format off
    // Message 0: accepted.
    const struct { const char* cpu; int field; const char* text; int message; } cases[] = {
        {"A3U", kStartIo, "", 2}, {"A3U", kStartIo, "108", 11}, {"A2U", kStartIo, "1000", 3},
        {"A2U", kStartIo, "3F0", 0}, {"A2U", kStartIo, "400", 3}, {"A4U", kStartIo, "FF0", 0},
        {"A2A", kStartIo, "1F0", 0}, {"A2A", kStartIo, "200", 3}, {"A3U", kModel, "", 2},
        {"A3U", kStations, "", 2}, {"A3U", kStations, "64", 0}, {"A3U", kStations, "65", 3},
        {"A3U", kStations, "------", 3}, {"A3U", kReceive, "X100", 0}, {"A3U", kSend, "X100", 11},
        {"A3U", kSend, "Y100", 0}, {"A3U", kReceive, "Y100", 11}, {"A3U", kDetection, "X0", 11},
        {"A3U", kErrorNo, "M100", 11}, {"A3U", kErrorNo, "D9010", 0}, {"A3A", kDetection, "M9016", 0},
        {"A3A", kDetection, "M9010", 11}, {"A3U", kDetection, "M9256", 3},
        {"A3U", kErrorNo, "D9256", 3}, {"A3U", kReceive, "M8176", 0}, {"A3U", kReceive, "M8192", 3},
        {"A3U", kReceive, "L100", 11}, {"A3U", kReceive, "S96", 0}, {"A2A", kReceive, "X200", 3},
        {"A3U", kReceive, "X108", 11}, {"A3U", kReceive, "DA", 11}, {"A3U", kReceive, "D", 11},
        {"A3U", kErrorNo, "W1FFF", 0}, {"A3A", kErrorNo, "W1000", 3}, {"A3U", kErrorNo, "T2048", 3},
        {"A3U", kErrorNo, "C1023", 0}, {"A3U", kErrorNo, "R0", 3},  // no file register by default
        {"A3U", kRetries, "", 2}, {"A3U", kRetries, "33", 3}, {"A3U", kRetries, "0", 0},
        {"A3U", kResponse, "", 2}, {"A3U", kResponse, "Hold", 11}, {"A3U", kDataClear, "CPU", 11},
        {"A3U", kLineError, "Clear", 11}, {"A3U", kLineError, "OFF", 0}};
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.cpu << " field " << c.field << " " << c.text);
        Row row = kGoodRow;
        row[c.field] = c.text;
        const ErrorTables errors = ValidateMINI(OneModule(row), ContextFor(c.cpu), 0);
        EXPECT_EQ(Messages(errors), c.message ? std::vector<int>{c.message} : std::vector<int>{});
        if (c.message) {
            EXPECT_TRUE(errors.ControlHasMessage(MiniText2No(c.field), c.message));
        }
    }
}

TEST(MiniChecks, ModelStationsCountAndFileRegister) {
    const DialogContext a3u = ContextFor("A3U");
    Row row = kGoodRow;
    row[kModel] = "MINI-S3";  // a MINI-S3 needs "------"
    EXPECT_EQ(Messages(ValidateMINI(OneModule(row), a3u, 0)), std::vector<int>{11});
    row[kStations] = "------";
    row[kErrorNo] = "R8191";  // R is bounded by the file register capacity
    EXPECT_EQ(Messages(ValidateMINI(OneModule(row), a3u, 8192)), std::vector<int>{});
    EXPECT_EQ(Messages(ValidateMINI(OneModule(row), a3u, 4096)), std::vector<int>{3});

    // A count beyond 8, or none, is the only error: no row is looked at.
    MINIFields f = OneModule({});
    for (const char* count : {"9", "", "0"}) {
        f.Text1 = count;
        const ErrorTables errors = ValidateMINI(f, a3u, 0);
        EXPECT_EQ(Messages(errors), *count == '9' ? std::vector<int>{3}
                                    : *count      ? std::vector<int>{}
                                                  : std::vector<int>{2})
            << count;
        EXPECT_EQ(errors.ControlHasError(MiniText1No()), *count != '0') << count;
    }
}

// The example module: X100 to the CPU, Y100 from it, special relays and registers for the
// error data, sending OFF data on a line error.
// clang-format off
const Row kExample = {"1A0", "MINI", "12", "X100", "Y100", "5", "CPU", "Hold", "M9016", "D9010", "OFF"};
// clang-format on
const std::vector<uint8_t> kExampleU = {0x1A, 0x7A, 0x45, 0x0C, 0x10, 0x00,
                                        0x10, 0x04, 0xC1, 0x0C, 0x0A, 0x0D};
const std::vector<uint8_t> kExampleA = {0x1A, 0x7A, 0x45, 0x0C, 0x10, 0x00,
                                        0x10, 0x02, 0xC1, 0x09, 0x0A, 0x0A};
// A MINI-S3 with the new-row values at 200.
const std::vector<uint8_t> kNewS3 = {0x20, 0x07, 0x85, 0xFF, 0xFF, 0xFF,
                                     0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

std::vector<uint8_t> Bytes(const ParameterImage& image, int first, int count) {
    return {image.bytes().begin() + first, image.bytes().begin() + first + count};
}

TEST(MiniRecords, SaveWritesBothAreasForGroupUAndTheAAreaForGroupA) {
    MINIFields f = OneModule(kExample);
    f.Text1 = "2";
    Row s3 = NewRowValues();
    s3[kStartIo] = "200";
    std::copy(s3.begin(), s3.end(), f.Text2.begin() + kMiniFieldsPerRow);
    for (const char* cpu : {"A3U", "A3A"}) {
        SCOPED_TRACE(cpu);
        const bool u = std::string(cpu) == "A3U";
        const ParameterImage before = test::DefaultImage(cpu);
        ParameterImage image = before;
        WriteMINI(f, image, ContextFor(cpu));
        for (int area : u ? std::vector<int>{534, 2312} : std::vector<int>{534}) {
            EXPECT_EQ(Bytes(image, area, 2), (std::vector<uint8_t>{2, 0}));
            EXPECT_EQ(Bytes(image, area + 10, 12), u ? kExampleU : kExampleA);
            EXPECT_EQ(Bytes(image, area + 22, 12), kNewS3);
        }
        for (int index : test::DifferingBytes(before, image)) {
            EXPECT_TRUE((index >= 534 && index < 568) || (u && index >= 2312 && index < 2346));
        }
        EXPECT_EQ(ReadMINI(image, ContextFor(cpu)), f);  // loading shows what was saved
    }
}

TEST(MiniRecords, LoadReadsTheGroupsAreaAsTheCellsKeepIt) {
    ParameterImage image = test::DefaultImage("A2U");
    image.SetParamWord(kErased, 2312);
    EXPECT_EQ(ReadMINI(image, ContextFor("A2U")), DefaultsMINI());  // "0", no rows

    // The U types read the U area only. A MINI-S3 with 12 stations, retries 63, hold and OFF
    // both set, a receive code in no range, detection M0; then a MINI without stations.
    image.SetParamWord(1, 534);
    image.SetParamWord(2, 2312);
    const std::vector<uint8_t> odd = {0xFF, 0x29, 0xBF, 0x0C, 0xC4, 0x02,
                                      0xFF, 0xFF, 0x00, 0x06, 0x00, 0x00};
    std::copy(odd.begin(), odd.end(), image.bytes().begin() + 2322);
    std::copy(kExampleU.begin(), kExampleU.end(), image.bytes().begin() + 2334);
    image[2337] = 0xFF;
    MINIFields f = ReadMINI(image, ContextFor("A2U"));
    EXPECT_EQ(f.Text1, "2");
    Row first;
    std::copy_n(f.Text2.begin(), kMiniFieldsPerRow, first.begin());
    EXPECT_EQ(first,
              (Row{"", "MINI-S3", "------", "", "", "63", "Link", "Hold", "M0", "", "Hold"}));
    EXPECT_EQ(f.Text2[kMiniFieldsPerRow + kStations], "");
    // Saved back, the device in no range is no device.
    f.Text2[kStartIo] = "0";
    WriteMINI(f, image, ContextFor("A2U"));
    EXPECT_EQ(Bytes(image, 2322, 6), (std::vector<uint8_t>{0x00, 0x21, 0xBF, 0xFF, 0xFF, 0xFF}));
}

TEST(MiniRecords, RecordsBeyondTheCountKeepTheirBytes) {
    ParameterImage image = test::DefaultImage("A2A");
    image.SetParamWord(3, 534);
    for (int m = 0; m < 3; ++m) {
        std::copy(kExampleA.begin(), kExampleA.end(), image.bytes().begin() + 544 + 12 * m);
    }
    MINIFields f = ReadMINI(image, ContextFor("A2A"));
    f.Text1 = "1";
    f.Text2[kRetries] = "7";
    const ParameterImage before = image;
    WriteMINI(f, image, ContextFor("A2A"));
    EXPECT_EQ(test::DifferingBytes(before, image), (std::vector<int>{534, 546}));
    WriteMINI(DefaultsMINI(), image, ContextFor("A2A"));  // Clear: only the count word
    EXPECT_EQ(test::DifferingBytes(before, image), (std::vector<int>{534, 546}));
    EXPECT_EQ(image.GetParamWord(534), 0);
}

}  // namespace
}  // namespace gantrix
