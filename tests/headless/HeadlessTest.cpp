// SPDX-License-Identifier: Apache-2.0
#include "headless/Headless.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

#include "ShownValue.h"
#include "headless/Page.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "store/CheckSum.h"
#include "support/core/TestSupport.h"

namespace gantrix::headless {
namespace {

std::string Dump(const std::vector<Violation>& found) {
    std::string text;
    for (const Violation& v : found)
        text += v.dialog + " " + v.key + " " + std::to_string(v.message) + " " + v.text + "\n";
    return text;
}

bool Has(const std::vector<Violation>& found, const char* dialog, const std::string& key,
         int message) {
    return std::ranges::any_of(found, [&](const Violation& v) {
        return (!dialog || v.dialog == dialog) && v.key == key && v.message == message;
    });
}

// The default image with bytes anywhere, and bytes and words of the settings, changed.
ParameterImage RandomImage(const std::string& cpu, std::mt19937& random) {
    ParameterImage image = test::DefaultImage(cpu);
    const auto draw = [&random](int most) { return static_cast<int>(random() % (most + 1)); };
    for (int n = 1 + draw(39); n > 0; --n) {
        const int kind = draw(3), settings = draw(1023);
        if (kind == 0) image[draw(kImageSize - 1)] = static_cast<uint8_t>(draw(255));
        if (kind == 1) image[settings] = static_cast<uint8_t>(draw(255));
        if (kind == 2) image.SetParamWord(draw(2100), settings & ~1);
        if (kind == 3) image.SetParamWord(kErased, settings & ~1);
    }
    return image;
}

// An image comes back byte for byte, or is refused naming a field its dialog refuses.
TEST(TextForm, ExportThenImportGivesTheImageBackByteForByteOrRefusesNamingTheField) {
    std::mt19937 random(20261122);
    int back = 0, refused = 0;
    for (std::string_view code : platform::kCpuTypes) {
        const std::string cpu(code);
        SCOPED_TRACE(cpu);
        const DialogContext context = HeadlessContext(cpu);
        std::vector<ParameterImage> images = {test::DefaultImage(cpu)};
        EXPECT_EQ(Dump(Check(images.front(), context)), "");  // a new project passes
        for (int i = 0; i < 40; ++i) images.push_back(RandomImage(cpu, random));
        for (const ParameterImage& image : images) {
            const std::string text = ExportText(image, context);
            const ImportOutcome outcome = ImportText(text, image, context);
            const bool dialogsTakeIt = std::ranges::none_of(Check(image, context), [](auto& v) {
                return v.dialog != "file" && v.dialog != "menu";
            });
            if (outcome.image) {
                ++back;
                ASSERT_EQ(test::DifferingBytes(*outcome.image, image), std::vector<int>{}) << text;
                continue;
            }
            // Refused by a check the image fails, or by a box that does not take what the
            // image shows (a greyed-out box, a slot byte no key gives).
            ++refused;
            for (const Violation& v : outcome.refusals) {
                EXPECT_FALSE(v.key.empty()) << Dump({v});
                EXPECT_TRUE(!dialogsTakeIt || v.message == -1) << Dump({v});
            }
        }
        // The fields alone give the default image: nothing is listed as bytes.
        const std::string text = ExportText(images.front(), context);
        EXPECT_EQ(text.substr(text.find("[bytes]")), "[bytes]\n");
    }
    EXPECT_GT(back, 60);
    EXPECT_GT(refused, 60);
}

// The menu's OK, the file's check bytes, and fields the form test's images do not reach.
TEST(HeadlessCheck, NamesTheMenuAndTheFileFindings) {
    // clang-format off
    const struct { const char* cpu; int word, value; EndPositions end; const char* dialog; const char* key; int message; } cases[] = {
        {"A3 ", 0, 0, {7000, 0, 0, 0}, "menu", "memory.main", 9},
        {"A3U", 2434, 60 * 1024, {}, "menu", "", 23},
        {"A3A", 526, 0x1234, {}, "file", "", -1},  // stale check bytes
        {"A2C", 142, 70 * 256 + 1, {}, "remote", "remote.entry.1.start", 11},
        {"A3U", 2310, 32768 + 9000, {}, "timer", "timer.counter.device.start", 7},  // R9000
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.cpu) + " " + c.key);
        ParameterImage image = test::DefaultImage(c.cpu);
        if (c.word != 0) image.SetParamWord(c.value, c.word);
        const auto found = Check(image, HeadlessContext(c.cpu), c.end);
        EXPECT_TRUE(Has(found, c.dialog, c.key, c.message)) << Dump(found);
    }
}

// A value is typed as into the box (clean-up and the rules its change runs), or refused with
// a message (-1: by the field itself) leaving the image as it was; one refusal refuses all.
TEST(HeadlessSet, TypesValuesAsTheDialogTakesThemOrRefusesAndChangesNothing) {
    // clang-format off
    const struct { const char* cpu; std::vector<Assignment> set; const char* key; const char* shown; int message = 0; } cases[] = {
        {"A3U", {{"latch.L.end", "9000"}}, "latch.L.end", nullptr, 7},
        {"A3 ", {{"latch.L.start", "1024"}, {"assist.watchdog", "0"}}, "assist.watchdog", nullptr, 3},
        {"A3 ", {{"memory.main", "12a"}}, "memory.main", nullptr, -1},
        {"A3 ", {{"assist.step_relay.first", "1500"}}, "assist.step_relay.first", nullptr, -1},
        {"A3 ", {{"io.slot.3.model", "AX11"}}, "io.slot.3.model", nullptr, -1},
        {"A3U", {{"timer.device", "X"}}, "timer.device", nullptr, -1},
        {"A0J", {{"latch.L.start", "100"}}, "latch.L.start", nullptr, -1},
        {"A3 ", {{"mini.modules", "1"}}, "mini.modules", nullptr, -1},  // no such dialog for an A3
        {"A3 ", {{"assist.watchdog", " 0030"}}, "assist.watchdog", "30"},
        {"A3 ", {{"memory.ext_comment", "4"}}, "memory.ext_comment", "4"},
        {"A3 ", {{"latch.B.start", " 1f "}, {"latch.B.end", "3ff"}}, "latch.B.start", "1F"},
        {"A3 ", {{"io.slot.0", "7"}}, "io.slot.0", "X32"},
        {"A3 ", {{"io.slot.0", "y16"}, {"io.slot.0.model", "ay10a"}}, "io.slot.0.model", "AY10A"},
        {"A3U", {{"timer.device", "w"}, {"timer.device.start", "1a0"}}, "timer.device.start", "1A0"},
        // No timers: the device goes as the focus leaves the count.
        {"A3U", {{"timer.device", "D"}, {"timer.device.start", "100"}, {"timer.points", "0"}}, "timer.device", ""},
        {"A3 ", {{"assist.step_relay", "on"}, {"assist.step_relay.first", "1500"}}, "assist.step_relay.first", "1500"},
        {"A3 ", {{"assist.io_verify_error", "Continue"}}, "assist.io_verify_error", "continue"},
        {"A2C", {{"remote.entry.2.start", "5"}, {"remote.entry.2.protocol", "1"}}, "remote.entry.2.protocol", "Non-procedure"},
        {"A0J", {{"latch.pattern", "Full Latch"}}, "latch.T.high.start", "80"},
        {"A0J", {{"latch.pattern", "none"}}, "latch.pattern", "none"},  // shown as it was set
        {"A0J", {{"step_relay.enabled", "on"}}, "step_relay.enabled", "on"},
        {"A3U", {{"mini.modules", "2"}, {"mini.module.1.start_io", "0"}, {"mini.module.2.start_io", "20"},
                 {"mini.module.2.model", "0"}, {"mini.module.2.stations", "12"}, {"mini.module.2.receive", "x100"}}, "mini.module.2.receive", "X100"},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.cpu) + " " + c.key);
        const DialogContext context = HeadlessContext(c.cpu);
        const ParameterImage image = test::DefaultImage(c.cpu);
        const SetOutcome outcome = Set(image, context, c.set);
        if (c.shown == nullptr) {
            EXPECT_TRUE(Has(outcome.refusals, nullptr, c.key, c.message)) << Dump(outcome.refusals);
            EXPECT_EQ(outcome.image, image);
            continue;
        }
        ASSERT_EQ(Dump(outcome.refusals), "");
        EXPECT_EQ(ShownValue(outcome.image, context, c.key), c.shown);
        EXPECT_EQ(Dump(Check(outcome.image, context)), "");  // saved with fresh check bytes
    }
}

TEST(TextForm, AnEditedFieldWinsOverTheListedBytesItReaches) {
    const DialogContext context = HeadlessContext("A3 ");
    ParameterImage image = test::DefaultImage("A3 ");
    image.SetParamWord(0x100, 22);  // an end of B under an erased start: no field shows it
    SetCheckSum(image, "A3 ", false);
    image[3000] = 0x42;  // extension area, no field
    std::string text = ExportText(image, context);
    ASSERT_NE(text.find("bytes 22..23 = 00 01 (fields give FF FF)"), std::string::npos) << text;
    ASSERT_NE(text.find("bytes 3000..3000 = 42 (fields give FF)"), std::string::npos) << text;
    for (const auto& [line, typed] : {std::pair{"latch.B.start =\n", "latch.B.start = 0\n"},
                                      {"latch.B.end =\n", "latch.B.end = 200\n"}})
        text.replace(text.find(line), std::string(line).size(), typed);
    const ImportOutcome edited = ImportText(text, image, context);
    ASSERT_TRUE(edited.image.has_value());
    EXPECT_EQ(edited.image->GetParamWord(22), 0x200);
    EXPECT_EQ((*edited.image)[3000], 0x42);
    EXPECT_EQ(edited.notes.size(), 1u);
    EXPECT_EQ(Dump(Check(*edited.image, context)), "");  // fresh check bytes
}

// Byte indexes in decimal 0..3071, two hexadecimal digits a byte, ranges ascending without
// overlap; anything else names its line. A byte-order mark and CR line ends are taken.
TEST(TextForm, ReadsStrictlyNamingTheLine) {
    const std::string ok = "bytes 10..11 = 00 01 (fields give FF FF)\n";
    // clang-format off
    const struct { std::string text; int line; const char* error; } cases[] = {
        {"bytes 3070..3072 = 00 00 00 (fields give FF FF FF)\n", 1, "expected \"bytes"},
        {"bytes 4294967296..4294967296 = 07 (fields give FF)\n", 1, "expected \"bytes"},
        {"bytes -1..0 = 07 07 (fields give FF FF)\n", 1, "expected \"bytes"},
        {"bytes +5..5 = 07 (fields give FF)\n", 1, "expected \"bytes"},
        {"bytes 010..010 = 07 (fields give FF)\n", 1, "expected \"bytes"},
        {"bytes 11..10 = 07 07 (fields give FF FF)\n", 1, "expected \"bytes"},
        {"bytes 10..10 = 7 (fields give FF)\n", 1, "expected \"bytes"},
        {"bytes 10..10 = 0x7 (fields give FF)\n", 1, "expected \"bytes"},
        {"bytes 10..11 = 07 (fields give FF FF)\n", 1, "expected \"bytes"},
        {"bytes 10..10 = 07 (fields give FF) x\n", 1, "expected \"bytes"},
        {ok + "bytes 11..11 = 07 (fields give FF)\n", 2, "overlap or come before bytes 10..11 of line 1"},
        {ok + "bytes 2..2 = 07 (fields give FF)\n", 2, "overlap or come before"},
        {ok + ok, 2, "overlap or come before"},
        {"memory.main = 1" + std::string(1, '\0') + "0\n", 1, "control character 0x00"},
        {"\nmemory.main = 6\rx\n", 2, "control character 0x0D"},
        {"cpu = \"A3 \"\ncpu = \"A3 \"\n", 2, "cpu is given twice (first on line 1)"},
        {"memory.main = \"6\n", 1, "quoted value is not closed"},
        {"check_bytes = maybe\n", 1, "check_bytes takes \"computed\" or \"as listed\""},
        {"memory.main 6\n", 1, "expected \"key = value\""},
        {"[memory Memory\n", 1, "expected \"[name] title\""},
    };
    // clang-format on
    for (const auto& c : cases) {
        const ParsedText parsed = ParseText(c.text);
        ASSERT_EQ(parsed.errors.size(), 1u) << c.text << Dump(parsed.errors);
        EXPECT_EQ(parsed.errors[0].line, c.line) << c.text;
        EXPECT_NE(Describe(parsed.errors[0]).find(c.error), std::string::npos)
            << Describe(parsed.errors[0]);
    }
    const ParsedText windows = ParseText(
        "\xEF\xBB\xBF"
        "cpu = \"A3 \"\r\n\r\nmemory.main = 6\r\n" +
        ok);
    EXPECT_EQ(Dump(windows.errors), "");
    EXPECT_EQ(windows.cpu, "A3 ");
    ASSERT_EQ(windows.fields.size(), 1u);
    EXPECT_EQ(windows.fields[0].value, "6");
    EXPECT_EQ(windows.fields[0].line, 3);
    ASSERT_EQ(windows.bytes.size(), 1u);
    EXPECT_EQ(windows.bytes[0].value, (std::vector<uint8_t>{0, 1}));
    // A flood of bad lines keeps the first hundred and counts the rest.
    const ParsedText flood =
        ParseText(std::string(5000, '\n') + std::string(100000, 'x') + "\n" + [] {
            std::string t;
            for (int i = 0; i < 1000; ++i) t += "x\n";
            return t;
        }());
    EXPECT_EQ(flood.errors.size() + flood.unlisted, 1001u);
    EXPECT_EQ(flood.errors.size(), 100u);
    EXPECT_EQ(flood.errors[0].line, 5001);
    for (const std::string value :
         {"", " lead", "trail ", "\"", "a\\b", "t\tx", "Before operation"})
        EXPECT_EQ(UnquoteValue(QuoteValue(value)), value) << value;
    EXPECT_EQ(UnquoteValue("\"a\\qb\""), std::nullopt);
}

TEST(HeadlessDiff, FieldsByKeyAndTheBytesNoFieldGives) {
    const ParameterImage a = test::DefaultImage("A3 ");
    const DialogContext context = HeadlessContext("A3 ");
    ParameterImage b = Set(a, context, {{"assist.watchdog", "30"}}).image;
    b[3000] = 0x42;
    const Difference d = Diff(a, context, b, context);
    EXPECT_TRUE(d.differ);
    ASSERT_EQ(d.bytes.size(), 1u);  // the watchdog's word and the check bytes follow the field
    EXPECT_EQ(d.bytes[0].first, 3000);
    EXPECT_EQ(d.bytes[0].b, std::vector<uint8_t>{0x42});
    EXPECT_FALSE(Diff(a, context, a, context).differ);
}

}  // namespace
}  // namespace gantrix::headless
