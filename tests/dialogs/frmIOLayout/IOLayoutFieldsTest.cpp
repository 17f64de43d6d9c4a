// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmIOLayout/IOLayoutFields.h"

#include <gtest/gtest.h>

#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

TEST(IOLayoutFields, TheAssignedFlagFollowsTheSlotsExceptForTheSmallestCpu) {
    for (const char* cpu : {"A0J", "A1S", "A3U"}) {
        const DialogContext context = test::ContextFor(cpu);
        ParameterImage image = test::DefaultImage(cpu);
        image[1071] = 0xFF;
        SetIOValue(image, context);
        EXPECT_EQ(image[1071], std::string(cpu) == "A0J" ? 0xFF : 0) << cpu;
        image[511] = 0x10;  // an empty slot of 0 points counts
        SetIOValue(image, context);
        EXPECT_EQ(image[1071], std::string(cpu) == "A0J" ? 0xFF : 1) << cpu;
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

TEST(IOLayoutFields, ThePointsAreCheckedAgainstTheCpusRange) {
    for (const auto& [cpu, points] :
         {std::pair{"A1S", 256}, {"A2 ", 512}, {"A2U", 1024}, {"A3 ", 2048}, {"A4U", 4096}}) {
        const DialogContext context = test::ContextFor(cpu);
        const ParameterImage image = test::DefaultImage(cpu);
        EXPECT_FALSE(ValidateIOLayout(AssignmentOf(points), image, context).Any()) << cpu;
        const ErrorTables over = ValidateIOLayout(AssignmentOf(points + 16), image, context);
        for (int m = 0; m <= kMaxMessageNo; ++m)
            EXPECT_EQ(over.ErrorMessageFlags[m], m == 16) << cpu;
    }
}

}  // namespace
}  // namespace gantrix
