// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmMemory/MemoryFields.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "store/RuntimeError.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::DefaultImage;
using test::DifferingBytes;

DialogContext Context(const std::string& cpu, int subEditing = 0) {
    DialogContext c;
    c.CpuType = cpu;
    c.blnSubEditing1 = subEditing == 1;
    c.blnSubEditing2 = subEditing == 2;
    c.blnSubEditing3 = subEditing == 3;
    return c;
}

// Fields from "Text1(0),...,Text1(5),Text2,Text3,Text4" and the letters S, D, F for the
// sampling-trace, data-memory and file-register boxes.
MemoryFields Make(const std::string& texts, const std::string& boxes = "") {
    MemoryFields f;
    std::string* slots[] = {&f.Text1[0], &f.Text1[1], &f.Text1[2], &f.Text1[3], &f.Text1[4],
                            &f.Text1[5], &f.Text2,    &f.Text3,    &f.Text4};
    std::istringstream in(texts);
    for (std::string* slot : slots) std::getline(in, *slot, ',');
    f.SanpFlag = boxes.find('S') != std::string::npos;
    f.SlatchDataFlag = boxes.find('D') != std::string::npos;
    f.SlatchFileFlag = boxes.find('F') != std::string::npos;
    return f;
}

// clang-format off
TEST(MemoryFields, ChecksEveryShownFieldAgainstItsCpuTypesLimits) {
    // Controls: 0..5 Text1(0..5), 6 Text2 (comment), 7 Text3, 8 Text4 (file register).
    // subEditing 1..3: that sub program's editing window is open; reserved: word 138.
    const struct { const char* cpu; const char* fields; int subEditing; int reserved; const char* expected; } cases[] = {
        {"A3 ", "6,0,0,0,,,0,0,0", 0, 0, ""}, {"A0J", "7,,0,,,,64,0,", 0, 0, ""},  // no micro or file register on A0J
        {"A0J", "8,,0,,,,2,1,", 0, 0, "3:0 3:7"}, {"A1 ", "6,0,0,,,,65,0,", 0, 0, "3:6"},  // comment 0 or 2..64
        {"A1 ", "1,10,0,,,,1,0,", 0, 0, "3:6"}, {"A1 ", "7,12,0,,,,,0,", 0, 0, "2:6 3:0 3:1"},
        {"A2C", "8,0,0,,,,0,0,4", 0, 0, ""}, {"A2C", "9,16,0,,,,0,0,5", 0, 0, "3:0 3:1 3:8"},
        {"A2 ", "15,28,0,,,,0,0,0", 0, 0, "3:0 3:1"}, {"A2 ", ",0,0,,,,0,0,", 0, 0, "2:0 2:8"},
        {"A2 ", "0,3,0,,,,0,0,0", 0, 0, "3:0 11:1"},    // an odd microcomputer size
        {"A2 ", "14,2,0,,,,0,0,0", 0, 0, "11:0 11:1"},  // 14 + 2 / 2 steps > 14: both fields
        {"A2 ", "13,2,0,,,,0,0,0", 0, 0, ""}, {"A2 ", "14,3,0,,,,0,0,0", 0, 0, "11:1"},  // a failed micro is not paired
        {"A3 ", "31,60,31,0,,,0,64,9", 0, 0, "3:0 3:1 3:2 3:7 3:8"}, {"A3 ", "30,58,30,0,,,0,63,8", 0, 0, "11:0 11:1"},
        {"A3H", "6,0,0,0,,,0,0,8", 0, 0, ""}, {"A2A", "6,0,0,,,,2,0,", 0, 0, "2:8"},
        {"A2U", "15,0,0,,,,0,0,9", 0, 0, "3:0 3:8"}, {"A2U", "9,4,0,,,,0,0,0", 0, 20 * 1024, "11:0 11:1"},  // 30 - 20 K
        {"A4U", "28,0,0,,0,0,0,0,0", 0, 1025, ""}, {"A4U", "29,0,0,,0,0,0,0,0", 0, 1025, "3:0"},  // 1025 bytes: 2 K
        {"A4U", "29,0,0,,0,0,0,0,0", 0, 1024, ""}, {"A4U", "6,0,0,,31,,0,0,0", 0, 0, "2:5 3:4"},
        // Sub programs: 0 while their editing window is open, and the sub microcomputer.
        {"A3 ", "6,0,0,0,,,0,0,0", 1, 0, "13:2"}, {"A3 ", "6,0,1,0,,,0,0,0", 1, 0, ""},
        {"A3 ", "6,0,0,0,,,0,0,0", 2, 0, ""}, {"A3 ", "6,0,,0,,,0,0,0", 1, 0, "2:2"},  // the first failing rule wins
        {"A4U", "6,0,0,,0,0,0,0,0", 2, 0, "13:4"}, {"A4U", "6,0,0,,0,0,0,0,0", 3, 0, "13:5"},
        {"A2 ", "6,0,,,,,0,0,0", 1, 0, ""},  // hidden fields are not checked
        {"A3 ", "6,0,0,2,,,0,0,0", 0, 0, "11:3"}, {"A3 ", "6,0,1,2,,,0,0,0", 0, 0, ""},
        {"A3H", "6,0,1,1,,,0,0,0", 0, 0, "11:3"}, {"A3 ", "6,0,30,2,,,0,0,0", 0, 0, "11:2 11:3"},
        {"A9 ", ",,,,,,,,", 1, 0, ""},
    };
    test::TempDir noWorkingFile;
    for (const auto& c : cases) {
        DialogContext context = Context(c.cpu, c.subEditing);
        context.ProjectDir = noWorkingFile.Path();
        ParameterImage image;
        image.SetParamWord(c.reserved, 138);
        const MemoryLimits limits = LoadMemoryLimits(image, context);
        EXPECT_EQ(test::RecordedErrors(ValidateMemory(Make(c.fields), context, limits)), c.expected)
            << c.cpu << " " << c.fields << " " << c.subEditing;
    }
}
// clang-format on

// clang-format off
TEST(MemoryFields, LoadShowsTheStoredCapacitiesAndZeroesErasedWords) {
    ParameterImage image;
    for (const auto& [index, value] : {std::pair{64, 5 * 1024}, {66, 3 * 1024}, {68, 4 * 1024},
             {70, 10 * 512}, {72, 12 * 1024}, {74, 2 * 1024}, {132, 6 * 512}, {134, 7 * 1024},
             {136, 8 * 1024}, {2434, 20 * 1024 + 100}}) {
        image.SetParamWord(value, index);
    }
    image[80] = 255;  // sampling trace
    image[76] = 2;    // file register latched
    const struct { const char* cpu; const char* fields; const char* boxes; std::vector<int> zeroedWhenErased; } cases[] = {
        {"A0J", "5,,3,,,,10,6,", "", {132, 133}},
        {"A1 ", "5,12,3,,,,10,6,", "", {132, 133}},
        {"A3 ", "5,12,3,2,,,10,6,4", "SF", {132, 133}},
        {"A3A", "5,12,3,,,,10,6,4", "", {132, 133}},
        {"A3U", "5,20,3,,,,10,6,4", "", {132, 133, 2434, 2435}},
        {"A4U", "5,20,3,,7,8,10,6,4", "", {132, 133, 134, 135, 136, 137, 2434, 2435}},
        {"A9 ", "5,,3,,,,10,6,", "", {}},
    };
    for (const auto& c : cases) {
        ParameterImage copy = image;
        EXPECT_EQ(ReadMemory(copy, Context(c.cpu)), Make(c.fields, c.boxes)) << c.cpu;
        EXPECT_EQ(copy, image) << c.cpu;
        ParameterImage erased;
        erased.bytes().fill(255);
        const ParameterImage before = erased;
        ReadMemory(erased, Context(c.cpu));
        EXPECT_EQ(DifferingBytes(erased, before), c.zeroedWhenErased) << c.cpu;
    }
    // Byte 76 selects the latch boxes; a value it does not know leaves them clear.
    for (const auto& [value, boxes] : {std::pair{0, ""}, {1, "D"}, {3, "DF"}, {7, ""}}) {
        image[76] = static_cast<uint8_t>(value);
        EXPECT_EQ(ReadMemory(image, Context("A1S")), Make("5,12,3,,,,10,6,4", std::string("S") + boxes)) << value;
    }
}
// clang-format on

// clang-format off
TEST(MemoryFields, TotalMemory) {
    const struct { const char* cpu; const char* fields; const char* boxes; int reservedK; int word72; const char* total; } cases[] = {
        {"A3 ", "6,0,0,0,,,0,0,0", "", 0, 0, "16"},     // parameter area 4 + 2 x main
        {"A3 ", "6,0,1,0,,,0,0,0", "", 0, 0, "24"},     // a sub program: 2 a step + 6
        {"A3 ", "6,4,1,2,,,0,0,0", "", 0, 0, "30"},     // microcomputer areas as typed
        {"A0J", "3,,0,,,,64,0,", "", 0, 0, "72"},       // 2 + main + comment
        {"A0J", "3,10,0,,,,64,0,", "", 0, 4096, "76"},  // plus the stored micro, not Text1(1)
        {"A2 ", "6,0,0,,,,0,0,4", "", 0, 0, "24"},      // file register 2 a point
        {"A2 ", "6,0,0,,,,0,0,4", "SDF", 0, 0, "48"},   // latched file register, 8 + 8
        {"A3 ", "6,0,0,0,,,10,20,0", "", 0, 0, "26"},   // extension comment not counted
        {"A3A", "6,0,0,,,,10,20,0", "", 0, 0, "46"},    // counted for the extended types
        {"A4U", "6,0,0,,1,0,0,0,0", "", 0, 0, "19"},    // sub program 2: 2 a step + 1
        {"A4U", "6,0,0,,1,2,0,0,0", "", 2, 0, "28"},    // and 3, and 2 x the reserved K
        {"A3 ", "6,0,0,0,1,2,0,0,0", "", 2, 0, "16"},   // none of these on an A3
        {"A3 ", ",,,,,,,,", "", 0, 0, "4"},             // empty texts count 0
    };
    for (const auto& c : cases) {
        MemoryLimits limits;
        limits.ReservedK = c.reservedK;
        ParameterImage image;
        image.SetParamWord(c.word72, 72);
        EXPECT_EQ(CalcMemory(Make(c.fields, c.boxes), c.cpu, limits, image), c.total)
            << c.cpu << " " << c.fields << " " << c.boxes;
    }
    EXPECT_EQ(SetPointNumber(Make(",,,,,,10,1,"), 1), "(0Points)");
}
// clang-format on

TEST(MemoryFields, BytesWrittenPerCpuType) {
    const MemoryFields f = Make("5,4,3,2,7,1,10,6,3", "SF");
    // Every byte 0x11, except erased sub-program words 2 and 3 and a size of 100 at 2432.
    ParameterImage base;
    base.bytes().fill(0x11);
    base.SetParamWord(65535, 134);
    base.SetParamWord(65535, 136);
    base.SetParamWord(100, 2432);

    using Words = std::map<int, int>;
    const Words common = {{64, 5120}, {66, 3072}, {70, 5120}, {132, 3072}};
    const Words latchTypes = {{72, 4096}, {68, 3072}, {134, 0}, {136, 0}};
    // Trace selected (80 = 255), file register latched (76 = 2, 78-79 = bytes 68-69).
    const Words traceLatch = {{76, 2}, {78, 0x00}, {79, 0x0C}, {80, 255}};
    Words extendedFill = {{74, 0}, {75, 0}, {76, 0}, {80, 0}, {81, 255}};
    for (int i = 82; i <= 131; ++i) extendedFill[i] = i <= 87 ? 0 : 255;
    const Words u = {{72, 4096 + 200}, {2434, 4096}, {68, 3072}};
    const struct {
        const char* cpu;
        std::vector<Words> words;
        Words bytes;
    } cases[] = {
        {"A0J", {common}, {}},
        {"A1 ", {common, {{72, 4096}, {134, 0}, {136, 0}}}, {}},
        {"A0H", {common, latchTypes}, traceLatch},
        {"A3H", {common, latchTypes, {{74, 2048}}}, traceLatch},
        {"A3A", {common, latchTypes}, extendedFill},
        {"A2U", {common, u, {{134, 0}, {136, 0}}}, extendedFill},
        {"A4U", {common, u, {{134, 7168}, {136, 1024}}}, extendedFill},
        {"A9 ", {}, {}},
    };
    for (const auto& c : cases) {
        ParameterImage image = base;
        WriteMemory(f, image, Context(c.cpu));
        ParameterImage expected = base;
        for (const Words& words : c.words) {
            for (const auto& [index, value] : words) expected.SetParamWord(value, index);
        }
        for (const auto& [index, value] : c.bytes) expected[index] = static_cast<uint8_t>(value);
        EXPECT_EQ(DifferingBytes(image, expected), std::vector<int>{}) << c.cpu;
    }
    // Both latches: 76 = 3 and 78-79 copy the file register just written.
    ParameterImage a2c = DefaultImage("A2C");
    WriteMemory(Make("6,0,0,,,,0,0,4", "DF"), a2c, Context("A2C"));
    EXPECT_EQ(a2c[76], 3);
    EXPECT_EQ(a2c.GetParamWord(78), 4096);

    // A microcomputer word beyond 65535 is the overflow error, and nothing is written.
    ParameterImage a3u = DefaultImage("A3U");
    a3u.SetParamWord(30000, 2432);
    const ParameterImage before = a3u;
    EXPECT_THROW(WriteMemory(Make("12,10,0,,,,0,0,0"), a3u, Context("A3U")), RuntimeError);
    EXPECT_EQ(a3u, before);
}

TEST(MemoryFields, DefaultsAreTheDefaultImageAndTouchOnlyShownFields) {
    const MemoryFields nines = Make("9,9,9,9,9,9,9,9,9", "SDF");
    for (const char* cpu : {"A0J", "A0H", "A1S", "A1 ", "A2C", "A2 ", "A3 ", "A3H", "A2A", "A3A",
                            "A2U", "A3U", "A4U"}) {
        ParameterImage image = DefaultImage(cpu);
        const MemoryFields loaded = ReadMemory(image, Context(cpu));
        EXPECT_EQ(DefaultsMemory(loaded, Context(cpu)), loaded) << cpu;
        const MemoryFields cleared = DefaultsMemory(nines, Context(cpu));
        const MemoryVisibility shown = VisibleMemoryControls(cpu);
        for (int i = 0; i < 6; ++i) {
            EXPECT_EQ(cleared.Text1[i] != "9", shown.field[i]) << cpu << " Text1 " << i;
        }
        EXPECT_EQ(cleared.Text4 != "9", shown.field[kFileRegister]) << cpu;
        EXPECT_EQ(!cleared.SanpFlag && !cleared.SlatchFileFlag, shown.traceAndLatch) << cpu;
    }
    EXPECT_EQ(DefaultsMemory(nines, Context("A9 ")), nines);
}

}  // namespace
}  // namespace gantrix
