// SPDX-License-Identifier: Apache-2.0
#include "headless/Merge.h"

#include <gtest/gtest.h>

#include "ShownValue.h"
#include "headless/Page.h"
#include "store/CheckSum.h"
#include "support/core/TestSupport.h"

namespace gantrix::headless {
namespace {

std::string Dump(const std::vector<MergeConflict>& conflicts) {
    std::string text;
    for (const MergeConflict& c : conflicts) text += Describe(c) + "\n";
    return text;
}

// A side: the base with values typed as set types them, then raw bytes put over it and the
// check bytes renewed, as a tool that edits the file would leave it.
struct Edit {
    std::vector<Assignment> set;
    std::vector<std::pair<int, uint8_t>> bytes = {};
};

ParameterImage Apply(const ParameterImage& base, const DialogContext& context, const Edit& edit) {
    const SetOutcome set = Set(base, context, edit.set);
    EXPECT_TRUE(set.refusals.empty()) << set.refusals.front().text;
    ParameterImage image = set.image;
    for (const auto& [index, value] : edit.bytes) image[index] = value;
    return Set(image, context, {}).image;
}

// Each row: a base (the default image with base typed), two sides, and either the values the
// merged image shows, or the conflicts, one per line.
TEST(Merge, FieldByFieldAndByteByByteOrConflictsNamingTheKeyAndTheThreeValues) {
    // clang-format off
    const struct { const char* cpu; Edit base, ours, theirs; std::vector<std::pair<const char*, const char*>> shown; const char* conflicts; } cases[] = {
        // Disjoint fields of two dialogs.
        {"A3 ", {{}}, {{{"assist.watchdog", "30"}}}, {{{"latch.L.start", "1024"}, {"io.slot.0", "X32"}}},
         {{"assist.watchdog", "30"}, {"latch.L.start", "1024"}, {"io.slot.0", "X32"}}, ""},
        // The same change on both sides, beside one side's own.
        {"A3U", {{}}, {{{"timer.high", "160"}}}, {{{"timer.high", "160"}, {"memory.main", "8"}}},
         {{"timer.high", "160"}, {"memory.main", "8"}}, ""},
        // The rows a raised module count shows come from the side that raised it.
        {"A3U", {{{"mini.modules", "1"}, {"mini.module.1.start_io", "0"}}},
         {{{"assist.run_contact", "1F"}}},
         {{{"mini.modules", "2"}, {"mini.module.2.start_io", "20"}, {"mini.module.2.model", "0"}, {"mini.module.2.stations", "12"}}},
         {{"assist.run_contact", "1F"}, {"mini.module.2.stations", "12"}}, ""},
        // Bytes no field gives (the first, one past the network block) changed on one side; a
        // byte of the network block on the other.
        {"A3 ", {{}}, {{}, {{0, 0x12}, {3000, 0x42}}}, {{{"assist.watchdog", "40"}}, {{1500, 7}}}, {{"assist.watchdog", "40"}}, ""},
        {"A3 ", {{}}, {{{"assist.watchdog", "30"}}}, {{{"assist.watchdog", "40"}}}, {},
         "[assist] assist.watchdog: base 20, ours 30, theirs 40\n"},
        {"A3 ", {{}}, {{}, {{3000, 0x42}, {3001, 1}}}, {{}, {{3000, 0x43}, {3001, 2}, {3003, 3}}}, {},
         "[bytes] 3000..3001: base FF FF, ours 42 01, theirs 43 02\n"},
        // A row one side hid that the other changed.
        {"A3U", {{{"mini.modules", "2"}, {"mini.module.1.start_io", "0"}, {"mini.module.2.start_io", "20"}}},
         {{{"mini.modules", "1"}}}, {{{"mini.module.2.start_io", "30"}}}, {},
         "[mini] mini.module.2.start_io: base 20, ours (none), theirs 30\n"},
        // A field one side changed over the bytes the other set where no field was: the end
        // of B under an erased start, then a start typed on the other side.
        {"A3 ", {{}}, {{}, {{22, 0}, {23, 1}}}, {{{"latch.B.start", "0"}, {"latch.B.end", "200"}}}, {},
         "[bytes] 22..23: the merged fields give other bytes there (base FF FF, ours 00 01, theirs 00 02)\n"},
        // Each side passes, the merge does not: the latch end moves the step relay start past
        // the end the other side lowered.
        {"A3A", {{{"assist.step_relay", "on"}, {"assist.step_relay.first", "1900"}, {"assist.step_relay.last", "2000"}}},
         {{{"latch.L.end", "1949"}}}, {{{"assist.step_relay.last", "1920"}}}, {},
         "[assist] assist.step_relay.first: Invalid range. (base 1900, ours 1950, theirs 1900)\n"
         "[assist] assist.step_relay.last: Invalid range. (base 2000, ours 2000, theirs 1920)\n"},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.cpu) + " " + c.conflicts);
        const DialogContext context = HeadlessContext(c.cpu);
        const ParameterImage base = Apply(test::DefaultImage(c.cpu), context, c.base);
        const ParameterImage ours = Apply(base, context, c.ours);
        const ParameterImage theirs = Apply(base, context, c.theirs);
        const MergeOutcome outcome = Merge(base, ours, theirs, context);
        EXPECT_EQ(Dump(outcome.conflicts), c.conflicts);
        EXPECT_TRUE(outcome.unfit.empty());
        ASSERT_EQ(outcome.image.has_value(), std::string(c.conflicts).empty());
        if (!outcome.image) continue;
        EXPECT_TRUE(Check(*outcome.image, context).empty());
        for (const auto& [key, value] : c.shown)
            EXPECT_EQ(ShownValue(*outcome.image, context, key), value);
        for (const auto& edit : {c.ours, c.theirs})
            for (const auto& [index, value] : edit.bytes) EXPECT_EQ((*outcome.image)[index], value);
        // One side unchanged: the other comes back byte for byte.
        EXPECT_EQ(Merge(base, base, theirs, context).image, theirs);
        EXPECT_EQ(Merge(base, ours, base, context).image, ours);
    }
}

TEST(Merge, RefusesFilesOfAnotherFamilyOfCpuTypes) {
    const DialogContext context = HeadlessContext("A3 ");
    const ParameterImage a3 = test::DefaultImage("A3 ");
    const ParameterImage a3u = test::DefaultImage("A3U");
    const MergeOutcome outcome = Merge(a3, a3u, a3, context);
    ASSERT_EQ(outcome.unfit.size(), 1u);
    EXPECT_EQ(outcome.unfit[0].side, MergeSide::Ours);
    EXPECT_EQ(outcome.unfit[0].why,
              "its check bytes are those of an A2U, A3U or A4U, not of \"A3 \"");
    EXPECT_FALSE(outcome.image.has_value());
    // Stale check bytes are nobody's: the merge gives fresh ones.
    ParameterImage stale = a3;
    stale[526] ^= 0x10;
    EXPECT_EQ(ForeignCheckBytes(stale, "A3 "), std::nullopt);
    EXPECT_EQ(Merge(a3, stale, a3, context).image, a3);
}

}  // namespace
}  // namespace gantrix::headless
