#include "headless/Headless.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "headless/Page.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "store/CheckSum.h"
#include "support/core/TestSupport.h"

namespace gantrix::headless {
namespace {

bool Has(const std::vector<Violation>& found, const std::string& dialog, const std::string& key,
         int message) {
    for (const Violation& v : found) {
        if (v.dialog == dialog && v.key == key && v.message == message) return true;
    }
    return false;
}

std::string Dump(const std::vector<Violation>& found) {
    std::string text;
    for (const Violation& v : found) {
        text += v.dialog + " " + v.key + " " + std::to_string(v.message) + " " + v.text + "\n";
    }
    return text;
}

// The value a field shows after the image is opened by its dialog.
std::string ShownValue(const ParameterImage& image, const DialogContext& context,
                       const std::string& key) {
    for (const ShownDialog& dialog : Show(image, context)) {
        for (const ShownField& f : dialog.fields) {
            if (f.key == key) return f.value;
        }
    }
    return "(no such field)";
}

TEST(HeadlessCheck, DefaultImagesPassEveryDialog) {
    for (std::string_view code : platform::kCpuTypes) {
        const std::string cpu(code);
        EXPECT_EQ(Dump(Check(test::DefaultImage(cpu), HeadlessContext(cpu))), "") << cpu;
    }
}

TEST(HeadlessCheck, NamesTheDialogTheFieldAndTheDialogsMessage) {
    struct Case {
        const char* cpu;
        std::function<void(ParameterImage&)> change;
        EndPositions end;
        const char* dialog;
        const char* key;
        int message;
    };
    const Case cases[] = {
        {"A3U", [](ParameterImage& i) { i.SetParamWord(9000, 18); }, {}, "latch", "latch.L.end", 7},
        {"A3 ",
         [](ParameterImage& i) { i.SetParamWord(201, 160); },
         {},
         "assist",
         "assist.watchdog",
         3},
        {"A3 ", [](ParameterImage& i) { i.SetParamWord(300, 198); }, {}, "timer", "timer.extra", 7},
        {"A2U",
         [](ParameterImage& i) { i.SetParamWord(1, 2312); },
         {},
         "mini",
         "mini.module.1.start_io",
         2},
        {"A2C", [](ParameterImage& i) { i[143] = 70; }, {}, "remote", "remote.entry.1.start", 11},
        {"A3U",
         [](ParameterImage& i) { i.SetParamWord(32768 + 9000, 2310); },
         {},
         "timer",
         "timer.counter.device.start",
         7},  // R9000: beyond the file register
        {"A3 ",
         [](ParameterImage& i) {
             for (int n = 0; n < 40; ++n) i[384 + n] = 0x24;
         },
         {},
         "io",
         "",
         16},
        {"A3 ", [](ParameterImage&) {}, {7000, 0, 0, 0}, "menu", "memory.main", 9},
        {"A3U", [](ParameterImage& i) { i.SetParamWord(60 * 1024, 2434); }, {}, "menu", "", 23},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.cpu) + " " + c.key);
        ParameterImage image = test::DefaultImage(c.cpu);
        c.change(image);
        const auto found = Check(image, HeadlessContext(c.cpu), c.end);
        EXPECT_TRUE(Has(found, c.dialog, c.key, c.message)) << Dump(found);
    }
}

TEST(HeadlessCheck, ReportsStaleCheckBytes) {
    ParameterImage image = test::DefaultImage("A3A");
    image[526] ^= 0xFF;
    const auto found = Check(image, HeadlessContext("A3A"));
    ASSERT_EQ(found.size(), 1u) << Dump(found);
    EXPECT_EQ(found[0].dialog, "file");
}

TEST(HeadlessSet, RefusesWhatTheDialogRefusesAndChangesNothing) {
    const struct {
        const char* cpu;
        std::vector<Assignment> set;
        const char* key;
        int message;  // -1: refused before any check, by the field itself
    } cases[] = {
        {"A3U", {{"latch.L.end", "9000"}}, "latch.L.end", 7},
        {"A3 ", {{"assist.watchdog", "201"}}, "assist.watchdog", 3},
        // One refusal refuses the whole change, also what another dialog took.
        {"A3 ", {{"latch.L.start", "1024"}, {"assist.watchdog", "0"}}, "assist.watchdog", 3},
        {"A3 ", {{"memory.main", "12a"}}, "memory.main", -1},
        {"A3 ", {{"assist.step_relay.first", "1500"}}, "assist.step_relay.first", -1},
        {"A3 ", {{"io.slot.3.model", "AX11"}}, "io.slot.3.model", -1},
        {"A3U", {{"timer.device", "X"}}, "timer.device", -1},
        {"A0J", {{"latch.L.start", "100"}}, "latch.L.start", -1},
        {"A3 ", {{"mini.modules", "1"}}, "mini.modules", -1},  // no such dialog for an A3
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.cpu) + " " + c.key);
        const ParameterImage image = test::DefaultImage(c.cpu);
        const SetOutcome outcome = Set(image, HeadlessContext(c.cpu), c.set);
        const bool named = std::any_of(
            outcome.refusals.begin(), outcome.refusals.end(),
            [&](const Violation& v) { return v.key == c.key && v.message == c.message; });
        EXPECT_TRUE(named) << Dump(outcome.refusals);
        EXPECT_EQ(outcome.image, image);
    }
}

// A value is typed as into the box: the field's clean-up and the rules its change runs.
TEST(HeadlessSet, TypesValuesAsTheDialogTakesThem) {
    const struct {
        const char* cpu;
        std::vector<Assignment> set;
        const char* key;
        const char* shown;
    } cases[] = {
        {"A3 ", {{"assist.watchdog", " 0030"}}, "assist.watchdog", "30"},
        {"A3 ", {{"memory.ext_comment", "4"}}, "memory.ext_comment", "4"},
        {"A3 ", {{"latch.B.start", " 1f "}, {"latch.B.end", "3ff"}}, "latch.B.start", "1F"},
        {"A3 ", {{"io.slot.0", "7"}}, "io.slot.0", "X32"},
        {"A3 ", {{"io.slot.0", "y16"}, {"io.slot.0.model", "ay10a"}}, "io.slot.0.model", "AY10A"},
        {"A3U",
         {{"timer.device", "w"}, {"timer.device.start", "1a0"}},
         "timer.device.start",
         "1A0"},
        // No timers: the device goes as the focus leaves the count.
        {"A3U",
         {{"timer.device", "D"}, {"timer.device.start", "100"}, {"timer.points", "0"}},
         "timer.device",
         ""},
        {"A3 ",
         {{"assist.step_relay", "on"}, {"assist.step_relay.first", "1500"}},
         "assist.step_relay.first",
         "1500"},
        {"A3 ", {{"assist.io_verify_error", "Continue"}}, "assist.io_verify_error", "continue"},
        {"A2C",
         {{"remote.entry.2.start", "5"}, {"remote.entry.2.protocol", "1"}},
         "remote.entry.2.protocol",
         "Non-procedure"},
        {"A0J", {{"latch.pattern", "Full Latch"}}, "latch.T.high.start", "80"},
        {"A0J", {{"step_relay.enabled", "on"}}, "step_relay.enabled", "on"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.cpu) + " " + c.key);
        const DialogContext context = HeadlessContext(c.cpu);
        const SetOutcome outcome = Set(test::DefaultImage(c.cpu), context, c.set);
        ASSERT_EQ(Dump(outcome.refusals), "");
        EXPECT_EQ(ShownValue(outcome.image, context, c.key), c.shown);
        EXPECT_EQ(Dump(Check(outcome.image, context)), "");  // saved with fresh check bytes
    }
}

TEST(HeadlessSet, ModuleRowsComeWithTheCountAndTheModelSetsTheStations) {
    const DialogContext context = HeadlessContext("A3U");
    const SetOutcome outcome =
        Set(test::DefaultImage("A3U"), context,
            {{"mini.modules", "2"},
             {"mini.module.1.start_io", "0"},
             {"mini.module.2.start_io", "20"},
             {"mini.module.2.model", "0"},  // the first name of the list: MINI
             {"mini.module.2.stations", "12"},
             {"mini.module.2.receive", "x100"}});
    ASSERT_EQ(Dump(outcome.refusals), "");
    EXPECT_EQ(ShownValue(outcome.image, context, "mini.module.1.stations"), "------");
    EXPECT_EQ(ShownValue(outcome.image, context, "mini.module.2.stations"), "12");
    EXPECT_EQ(ShownValue(outcome.image, context, "mini.module.2.receive"), "X100");
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

    for (const char* line : {"latch.B.start =\n", "latch.B.end =\n"}) {
        const std::string typed = std::string(line) == "latch.B.start =\n" ? "latch.B.start = 0\n"
                                                                           : "latch.B.end = 200\n";
        text.replace(text.find(line), std::string(line).size(), typed);
    }
    const ImportOutcome edited = ImportText(text, context);
    ASSERT_TRUE(edited.image.has_value());
    EXPECT_EQ(edited.image->GetParamWord(22), 0x200);
    EXPECT_EQ((*edited.image)[3000], 0x42);
    EXPECT_EQ(edited.notes.size(), 1u) << edited.notes[0] << "\n" << edited.notes.back();
    EXPECT_EQ(Dump(Check(*edited.image, context)), "");  // fresh check bytes
}

TEST(TextForm, RefusesTextItCannotRead) {
    const DialogContext context = HeadlessContext("A3 ");
    const struct {
        const char* text;
        const char* error;
    } cases[] = {
        {"cpu = A3U\n", "for CPU type \"A3U\""},
        {"cpu = \"A3 \"\nmini.modules = 1\n", "line 2: mini.modules is no field"},
        {"assist.fuse_blown = maybe\n", "line 1: assist.fuse_blown does not take"},
        {"memory.main = 6\nmemory.main = 7\n", "line 2: memory.main is given twice"},
        {"cpu = \"A3 \"\ncpu = \"A3 \"\n", "line 2: cpu is given twice"},
        {"bytes 3070..3072 = 00 00 00 (fields give FF FF FF)\n", "line 1: expected"},
        {"memory.main = \"6\n", "line 1: the quoted value"},
    };
    for (const auto& c : cases) {
        const ImportOutcome outcome = ImportText(c.text, context);
        EXPECT_FALSE(outcome.image.has_value()) << c.text;
        ASSERT_FALSE(outcome.errors.empty()) << c.text;
        EXPECT_NE(outcome.errors[0].find(c.error), std::string::npos) << outcome.errors[0];
    }
}

TEST(TextForm, QuotedValuesComeBackAsTheyWere) {
    for (const std::string value :
         {"", "6", "MINI-S3", " lead", "trail ", "\"", "a\\b", "t\tx", "Before operation"}) {
        EXPECT_EQ(UnquoteValue(QuoteValue(value)), value) << value;
    }
    EXPECT_EQ(UnquoteValue("\"open"), std::nullopt);
    EXPECT_EQ(UnquoteValue("\"a\\qb\""), std::nullopt);
}

TEST(HeadlessDiff, FieldsByKeyAndTheBytesNoFieldGives) {
    const ParameterImage a = test::DefaultImage("A3 ");
    const DialogContext context = HeadlessContext("A3 ");
    ParameterImage b = Set(a, context, {{"assist.watchdog", "30"}}).image;
    b[3000] = 0x42;
    const Difference d = Diff(a, context, b, context);
    EXPECT_TRUE(d.differ);
    ASSERT_EQ(d.fields.size(), 1u);
    EXPECT_EQ(d.fields[0].key, "assist.watchdog");
    EXPECT_EQ(d.fields[0].a, "20");
    EXPECT_EQ(d.fields[0].b, "30");
    ASSERT_EQ(d.bytes.size(), 1u);  // the watchdog's word and the check bytes follow the field
    EXPECT_EQ(d.bytes[0].first, 3000);
    EXPECT_EQ(d.bytes[0].b, std::vector<uint8_t>{0x42});

    const Difference none = Diff(a, context, a, context);
    EXPECT_FALSE(none.differ);
    EXPECT_TRUE(none.fields.empty() && none.bytes.empty());
}

}  // namespace
}  // namespace gantrix::headless
