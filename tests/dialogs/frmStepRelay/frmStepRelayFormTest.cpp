// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmStepRelay/frmStepRelay.h"

#include <QCheckBox>
#include <QPushButton>

#include "support/FormFixture.h"

namespace gantrix {
namespace {

using test::PressKey;
using StepRelay = test::Opened<frmStepRelay>;

// Word 18 is 1535 with step relays, else the last internal relay; nothing else is written.
TEST(frmStepRelay, OpensCheckedOnlyFor1535AndOkStoresItOrTheLastRelay) {
    for (const auto& [word, checked, saved] : {std::tuple{1535, true, 1535}, {1000, false, 2047}}) {
        StepRelay f("A0J", [w = word](StepRelay& f) { f.state.image.SetParamWord(w, 18); });
        EXPECT_EQ(f->StepRelayFlag->isChecked(), checked) << word;
        EXPECT_EQ(f->findChild<QPushButton*>("Clear"), nullptr);
        PressKey(f->StepRelayFlag, Qt::Key_End);
        EXPECT_TRUE(f.Closed());
        ParameterImage expected = f.loaded;
        expected.SetParamWord(saved, 18);
        EXPECT_EQ(test::DifferingBytes(f.state.image, expected), std::vector<int>{}) << word;
    }
}

TEST(frmStepRelay, SpaceOrAClickTogglesAndEnterMovesToOk) {
    StepRelay f("A0J");
    EXPECT_EQ(test::Focused(), "StepRelayFlag");
    PressKey(f->StepRelayFlag, Qt::Key_Space);
    EXPECT_TRUE(f->StepRelayFlag->isChecked() && f.state.DataChanged);
    PressKey(f->StepRelayFlag, Qt::Key_Return);
    EXPECT_EQ(test::Focused(), "OK");
    // On the box itself: the check box is wider than its caption.
    QTest::mouseClick(f->StepRelayFlag, Qt::LeftButton, {},
                      QPoint(8, f->StepRelayFlag->height() / 2));
    EXPECT_FALSE(f->StepRelayFlag->isChecked());
}

}  // namespace
}  // namespace gantrix
