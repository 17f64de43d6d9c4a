#include "dialogs/frmStepRelay/StepRelayFields.h"

#include <gtest/gtest.h>

#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

// Saving writes 1535 or the last internal relay of the CPU type, and nothing but word 18.
TEST(StepRelayWord, SavesTheStepRelayBoundaryOrTheLastRelay) {
    const struct {
        const char* cpu;
        bool checked;
        uint8_t low, high;
    } saves[] = {{"A0J", true, 255, 5}, {"A0J", false, 255, 7}, {"A3A", false, 255, 31}};
    for (const auto& c : saves) {
        SCOPED_TRACE(c.cpu);
        const ModuleState state = test::StateFor(c.cpu);
        ParameterImage image = state.image;
        image.SetParamWord(1000, 18);
        const ParameterImage before = image;
        WriteStepRelay({c.checked}, image, ContextOf(state));
        EXPECT_EQ(image[18], c.low);
        EXPECT_EQ(image[19], c.high);
        EXPECT_EQ(test::DifferingBytes(before, image), (std::vector<int>{18, 19}));
    }
}

}  // namespace
}  // namespace gantrix
