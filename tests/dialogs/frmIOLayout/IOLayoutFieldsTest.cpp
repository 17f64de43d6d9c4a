#include <gtest/gtest.h>

#include "dialogs/frmIOLayout/IOLayoutFields.h"
#include "dialogs/frmTypeNameSet/TypeNameSetFields.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

DialogContext ContextFor(const std::string& cpu) {
    return ContextOf(test::StateFor(cpu));
}

TEST(IOLayoutFields, SlotCodesBothWaysAndTheOddBytes) {
    const std::pair<const char*, uint8_t> codes[] = {
        {"", 0x00},    {"S0", 0x10},  {"S16", 0x11}, {"S32", 0x12}, {"S48", 0x13}, {"S64", 0x14},
        {"X16", 0x21}, {"X32", 0x22}, {"X48", 0x23}, {"X64", 0x24}, {"Y16", 0x31}, {"Y32", 0x32},
        {"Y48", 0x33}, {"Y64", 0x34}, {"F16", 0x41}, {"F32", 0x42}, {"F48", 0x43}, {"F64", 0x44},
    };
    for (const auto& [code, byte] : codes) {
        EXPECT_EQ(DecodeSlotByte(byte), code) << int(byte);
        EXPECT_EQ(EncodeSlotCode(code), byte) << code;
    }
    struct Odd {
        uint8_t byte;
        const char* code;
        uint8_t saved;
    };
    const Odd odd[] = {
        {0x25, "X", 0x20}, {0x1F, "S", 0x10},  // a step above 4: the letter, the bare kind
        {0x52, "32", 0},   {0xF0, "0", 0},     // a kind above 4: the count, saved as 0
        {0x77, "", 0},     {0x01, "", 0},     {0x0F, "", 0},  // no kind: empty whatever the step
    };
    for (const Odd& o : odd) {
        EXPECT_EQ(DecodeSlotByte(o.byte), o.code) << int(o.byte);
        EXPECT_EQ(EncodeSlotCode(o.code), o.saved) << int(o.byte);
    }
    for (int b = 0; b < 256; ++b) {  // every byte loads and saves as its kind and a real step
        const int kind = b >> 4, step = b & 15;
        const int saved = kind >= 1 && kind <= 4 ? (kind << 4) | (step <= 4 ? step : 0) : 0;
        EXPECT_EQ(EncodeSlotCode(DecodeSlotByte(static_cast<uint8_t>(b))), saved) << b;
    }
}

TEST(IOLayoutFields, KeysSetTheirCodesInEitherCase) {
    const char* keys = "123456789ABCDEFGHabcdefgh";
    const char* codes[] = {"S0",  "S16", "S32", "S48", "S64", "X16", "X32", "X48", "X64",
                           "Y16", "Y32", "Y48", "Y64", "F16", "F32", "F48", "F64"};
    for (int i = 0; keys[i]; ++i) EXPECT_EQ(SlotCodeForKey(keys[i]), codes[i < 17 ? i : i - 8]);
    for (int key : {int('0'), int('I'), int('z'), int(' '), 13, 8, 200}) {
        EXPECT_FALSE(SlotCodeForKey(key).has_value()) << key;
    }
}

TEST(IOLayoutFields, NamesAreReadAndWrittenOnlyWhenTheNameDialogWasOpened) {
    const ParameterImage before = test::DefaultImage("A2 ");
    ParameterImage image = before;
    const ModelNameRecord ax10 = {0xC4, 0xE6, 0xC4, 0x05, 0xA9, 0x43};
    for (int b = 0; b < 6; ++b) image[640 + 18 + b] = ax10[b];
    IOLayoutFields fields = ReadIOLayout(image, ContextFor("A2 "));
    EXPECT_EQ(fields.names[3], "AX10");
    EXPECT_EQ(fields.names[0], "");  // erased
    fields.codes[0] = "X16";
    fields.codes[127] = "Y32";
    fields.names[0] = "AY10";  // slot 3 has no module: its name goes

    ParameterImage written = image;
    WriteIOLayout(fields, written, ContextFor("A2 "));
    EXPECT_EQ(test::DifferingBytes(image, written), (std::vector<int>{384, 511}));
    fields.namesEdited = true;
    WriteIOLayout(fields, written, ContextFor("A2 "));
    const ModelNameRecord empty = {0xC4, 0xE6, 0xC4, 0xE6, 0xC4, 0xE6};
    for (int n = 0; n < 64; ++n) {
        ModelNameRecord record;
        for (int b = 0; b < 6; ++b) record[b] = written[640 + 6 * n + b];
        EXPECT_EQ(record, n == 0 ? PackModelName("AY10") : empty) << "slot " << n;
    }
    for (int i : test::DifferingBytes(before, written))
        EXPECT_TRUE(i == 384 || i == 511 || (i >= 640 && i <= 1023)) << i;
}

TEST(IOLayoutFields, AssignedFlagFollowsTheSlotsExceptForTheSmallestCpu) {
    for (std::string_view code : platform::kCpuTypes) {
        const std::string cpu(code);
        ParameterImage image = test::DefaultImage(cpu);
        image[1071] = 0xFF;
        SetIOValue(image, ContextFor(cpu));
        EXPECT_EQ(image[1071], cpu == "A0J" ? 0xFF : 0) << cpu;
        image[511] = 0x10;  // an empty slot of 0 points counts
        SetIOValue(image, ContextFor(cpu));
        EXPECT_EQ(image[1071], cpu == "A0J" ? 0xFF : 1) << cpu;
    }
}

// Slots from 0 filled with 64-point modules, and a 16-point one, up to points in all.
IOLayoutFields AssignmentOf(int points) {
    IOLayoutFields fields;
    int slot = 0;
    for (; points >= 64; points -= 64, ++slot) fields.codes[slot] = slot % 2 ? "X64" : "Y64";
    if (points > 0) fields.codes[slot] = "F16";
    return fields;
}

TEST(IOLayoutFields, ThePointsAreCheckedAgainstEachCpusRange) {
    for (std::string_view code : platform::kCpuTypes) {
        const std::string cpu(code);
        const int range = platform::FindDeviceSizes(cpu)->IoPoints;
        const ParameterImage image = test::DefaultImage(cpu);
        EXPECT_FALSE(ValidateIOLayout(AssignmentOf(range - 16), image, ContextFor(cpu)).Any());
        EXPECT_FALSE(ValidateIOLayout(AssignmentOf(range), image, ContextFor(cpu)).Any()) << cpu;
        const ErrorTables over = ValidateIOLayout(AssignmentOf(range + 16), image, ContextFor(cpu));
        for (int m = 0; m <= kMaxMessageNo; ++m) EXPECT_EQ(over.HasMessage(m), m == 16) << cpu;
    }
    const std::pair<int, int> results[] = {{-100, 16}, {-101, 17}, {-102, 18}, {-103, 18},
                                           {-104, 19}, {0, 0},     {-99, 0},   {-105, 0}};
    for (const auto& [result, message] : results) EXPECT_EQ(IoCheckMessage(result), message);
}

}  // namespace
}  // namespace gantrix
