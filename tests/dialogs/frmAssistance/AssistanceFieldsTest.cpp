// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmAssistance/AssistanceFields.h"

#include <gtest/gtest.h>

#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using Pairs = std::vector<std::pair<int, int>>;  // (index, word) or (byte, value)

ParameterImage ImageWith(const std::string& cpu, const Pairs& words) {
    ParameterImage image = test::DefaultImage(cpu);
    for (const auto& [index, value] : words) image.SetParamWord(value, index);
    return image;
}

TEST(AssistanceContacts, EncodeAndReadBack) {
    // clang-format off
    const struct { const char* typed; int word, mask; const char* shown; } cases[] = {
        {"1F", 32774, 128, "1F"}, {"1f", 32774, 128, "1F"}, {"0", 32768, 1, "00"},
        {"8", 32770, 1, "08"}, {"7", 32768, 128, "07"}, {"10", 32772, 1, "10"},
        {"FFF", 33790, 128, "FFF"}, {"0A3", 32808, 8, "A3"}};
    // clang-format on
    for (const auto& c : cases) {
        EXPECT_EQ(EncodeContact(c.typed), (ContactCode{c.word, c.mask})) << c.typed;
        EXPECT_EQ(DecodeContact(c.word, c.mask), c.shown) << c.typed;
    }
}

// Contact bytes no X number gives are shown, refused and kept until a contact is typed.
TEST(AssistanceContacts, DamagedBytesAreShownRefusedAndKept) {
    // clang-format off
    const struct { int word, mask; std::string shown; } cases[] = {
        {32767, 1, "7FFF01"}, {32776, 3, "800803"}, {32769, 1, "800101"}, {kErased, 255, "FFFFFF"}};
    // clang-format on
    for (const auto& c : cases) {
        ParameterImage image = ImageWith("A4U", {{170, 1}, {176, c.word}, {178, c.mask}});
        const ParameterImage stored = image;
        const AssistanceFields f = ReadAssistance(image, test::ContextFor("A4U"));
        EXPECT_EQ(f.Text2[0] + " " +
                      test::RecordedErrors(ValidateAssistance(f, image, test::ContextFor("A4U"))),
                  c.shown + " 3:48");
        WriteAssistance(f, image, test::ContextFor("A4U"));
        EXPECT_EQ(test::DifferingBytes(image, stored), std::vector<int>{}) << c.shown;
    }
}

TEST(AssistanceStepRelays, WordsPerStateOfTheCheckBoxAndBack) {
    // clang-format off
    const struct { const char* cpu; Pairs before; bool flag; const char *start, *end;
                   int word18, word14; /* -1: the default image's */ } cases[] = {
        {"A2 ", {}, true, "1536", "", 1535, -1}, {"A2 ", {{18, 1535}}, false, "", "", 2047, -1},
        {"A2U", {}, true, "1536", "2047", 1535, 2048}, {"A2U", {}, true, "1000", "8191", 999, 8192},
        {"A2U", {{18, 1535}, {14, 2048}}, false, "", "", 1535, 1536},
        {"A3A", {{18, 3000}, {14, 65535}}, false, "", "", 3000, 3001},
        // L not latched: S may start at 0, stored as 65535 and read back as 0.
        {"A2 ", {{16, 65535}}, true, "0", "", 65535, -1},
        {"A2 ", {{16, 65535}, {18, 1535}}, false, "", "", 2047, -1},
        {"A4U", {{16, 65535}}, true, "0", "100", 65535, 101},
        // After S from 0, no step relays has no L end to follow: the default boundary.
        {"A4U", {{16, 65535}, {18, 65535}, {14, 101}}, false, "", "", 2047, 2048}};
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.cpu) + " " + c.start + "-" + c.end);
        const DialogContext context = test::ContextFor(c.cpu);
        ParameterImage image = ImageWith(c.cpu, c.before);
        const int word14 = c.word14 < 0 ? image.GetParamWord(14) : c.word14;
        AssistanceFields fields = ReadAssistance(image, context);
        fields.StepRelayFlag = c.flag;
        fields.Text1 = {c.start, c.end};
        WriteAssistance(fields, image, context);
        EXPECT_EQ(image.GetParamWord(18), c.word18);
        EXPECT_EQ(image.GetParamWord(14), word14);
        const AssistanceFields back = ReadAssistance(image, context);
        EXPECT_TRUE(back.StepRelayFlag == c.flag && back.Text1 == fields.Text1);
    }
}

TEST(AssistanceCheck, MessagesAndTheBoxesTheyMark) {
    // clang-format off
    // "message:control"; controls 46 start, 47 end, 48 RUN, 49 PAUSE, 50 watchdog.
    const struct { const char* cpu; Pairs before; bool flag; const char *start, *end, *run, *pause,
                   *wdt, *recorded; } cases[] = {
        {"A2 ", {}, false, "", "", "", "", "20", ""}, {"A2 ", {}, false, "", "", "", "", "0", "3:50"},
        // Step relays not in use are not checked; a PAUSE needs a RUN contact.
        {"A2 ", {}, false, "999", "", "", "10", "201", "3:50 11:48"},
        {"A2 ", {}, true, "", "", "1FFF0", "", "", "2:50 3:48 11:46"},
        // Below the first latch relay (L1000), a PAUSE above the last X.
        {"A2 ", {}, true, "999", "", "1FF", "200", "1", "3:46 3:49"},
        {"A2 ", {}, true, "2048", "", "0", "1FF", "200", "3:46"},
        {"A2 ", {}, true, "1000", "", "", "", "20", ""},
        {"A2 ", {{16, 65535}}, true, "0", "", "", "", "20", ""},  // without a latched L, from 0
        {"A3U", {}, true, "3000", "2047", "7FF", "", "", "8:46 8:47"},
        {"A3U", {}, true, "", "9000", "", "", "", "3:47 11:46"},
        {"A3U", {}, true, "9000", "2047", "", "", "", "3:46 8:46 8:47"},
        {"A3U", {}, true, "900", "", "800", "", "", "3:46 3:48 11:47"}};
    // clang-format on
    for (const auto& c : cases) {
        AssistanceFields f;
        f.StepRelayFlag = c.flag;
        f.Text1 = {c.start, c.end};
        f.Text2 = {c.run, c.pause};
        f.Text3 = c.wdt;
        EXPECT_EQ(test::RecordedErrors(
                      ValidateAssistance(f, ImageWith(c.cpu, c.before), test::ContextFor(c.cpu))),
                  c.recorded)
            << c.cpu << " " << c.start << "-" << c.end << " " << c.run << "/" << c.pause << " "
            << c.wdt;
    }
}

TEST(AssistanceBytes, ClearedAndEditedPerCpuTypeAndReadBack) {
    // clang-format off
    const struct { const char* cpu; Pairs expected; /* (byte, value) */ } cases[] = {
        {"A2 ", {{160, 150}, {161, 0}, {181, 7}, {140, 7}, {208, 7}}},
        {"A3 ", {{160, 150}, {181, 7}, {140, 7}, {208, 1}}},
        {"A3H", {{160, 7}, {161, 7}, {181, 240}, {140, 7}, {208, 1}}},
        {"A3A", {{160, 20}, {161, 0}, {181, 255}, {140, 7}, {208, 1}}},
        {"A2U", {{160, 20}, {161, 0}, {181, 255}, {140, 255}, {208, 7}}}};
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.cpu);
        const DialogContext context = test::ContextFor(c.cpu);
        ParameterImage image = test::DefaultImage(c.cpu);
        AssistanceFields f = ReadAssistance(image, context);
        f.StepRelayFlag = f.CommentFlag = f.EndManageFlag = true;
        f.Text1 = {"1536", "2047"};
        f.Text2 = {"10", "11"};
        f.FuseCut = f.XYControl = 1;
        f.IOErr = 0;
        f.Text3 = "99";
        f = DefaultsAssistance(f, context);  // Clear gives what a new project holds
        EXPECT_FALSE(ValidateAssistance(f, image, context).Any());
        ParameterImage cleared = image;
        WriteAssistance(f, cleared, context);
        EXPECT_EQ(test::DifferingBytes(cleared, image), std::vector<int>{});
        for (int i : {140, 160, 161, 181, 208}) image[i] = 7;
        f = ReadAssistance(image, context);
        f.Text2 = {"1F", ""};
        f.OutputMode = f.FuseCut = 1;
        f.IOErr = 0;
        f.Text3 = "150";
        f.EndManageFlag = f.CommentFlag = true;
        f.XYControl = 2;
        WriteAssistance(f, image, context);
        for (const auto& [index, value] : c.expected) EXPECT_EQ(image[index], value) << index;
        std::vector<uint8_t> errorAndContacts;
        for (int i : {163, 164, 165, 169, 170, 172, 174, 176, 178, 180})
            errorAndContacts.push_back(image[i]);
        EXPECT_EQ(errorAndContacts, (std::vector<uint8_t>{0, 1, 1, 0, 1, 255, 255, 6, 128, 1}));
        const AssistanceLayout layout = AssistanceLayoutOf(c.cpu);
        if (!layout.watchdog) f.Text3.clear();
        f.EndManageFlag = layout.endManage;
        f.CommentFlag = layout.comment;
        if (!layout.xyControl) f.XYControl = 0;
        EXPECT_EQ(ReadAssistance(image, context), f);
        f.Text2 = {"", ""};  // no contact at all: the RUN contact's bytes go too
        WriteAssistance(f, image, context);
        EXPECT_TRUE(image.GetParamWord(176) == kErased && image[178] == 255 && image[170] == 0);
    }
    // Values no option stands for leave the controls as designed.
    ParameterImage image = test::DefaultImage("A3H");
    for (int i : {163, 164, 165, 169, 180, 181, 208}) image[i] = 9;
    image[170] = 3;  // no contacts
    image.SetParamWord(32774, 176);
    EXPECT_EQ(ReadAssistance(image, test::ContextFor("A3H")), AssistanceFields{});
}

}  // namespace
}  // namespace gantrix
