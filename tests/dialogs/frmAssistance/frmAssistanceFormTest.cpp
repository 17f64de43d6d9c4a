// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmAssistance/frmAssistance.h"

#include <QCheckBox>
#include <QRadioButton>
#include <QToolButton>

#include "common/qt/SpinButton.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "support/FormFixture.h"

namespace gantrix {
namespace {

using test::PressKey;
using test::Retype;
using test::TypeKeys;
using test::Yellow;
using Assistance = test::Opened<frmAssistance>;

// Each type shows its own controls. A default image holds what the dialog and its follow-on
// dialog write.
TEST(frmAssistance, ControlsPerTypeAndOkWithoutEditInItAndItsFollowOnChangeNoByte) {
    for (std::string_view type : platform::kCpuTypes) {
        const std::string cpu(type);
        const AssistanceLayout layout = AssistanceLayoutOf(cpu);
        if (cpu == "A0J") continue;
        SCOPED_TRACE(cpu);
        Assistance f(cpu);
        EXPECT_EQ(test::LayoutFaults(f.form.get()), std::vector<std::string>{});
        EXPECT_EQ(test::Focused(), "StepRelayFlag");
        EXPECT_TRUE(f->Text1[0]->alignment() & f->Text2[1]->alignment() & Qt::AlignRight);
        EXPECT_EQ(f->AssistMenuItem->isVisible(), !layout.followOn.empty());
        test::ModalDriver driver;
        driver.On(QString::fromStdString(layout.followOn), [](QWidget* followOn) {
            EXPECT_FALSE(followOn->windowTitle().isEmpty());
            PressKey(followOn, Qt::Key_End);
        });
        if (!layout.followOn.empty()) driver.Run([&] { f->AssistMenuItem->click(); });
        PressKey(f->StepRelayFlag, Qt::Key_End);
        EXPECT_TRUE(f.Closed() && f.messages.shown.empty() && f.state.ParamChanged);
        EXPECT_EQ(test::DifferingBytes(f.state.image, test::DefaultImage(cpu)), std::vector<int>{});
    }
}

TEST(frmAssistance, KeysFilterTheBoxesAndStepRelayBoxesFollowTheirCheckBox) {
    Assistance f("A3U");
    EXPECT_FALSE(f->Text1[0]->isEnabled());
    PressKey(f->StepRelayFlag, Qt::Key_Space);
    EXPECT_TRUE(f->StepRelayFlag->isChecked() && f.state.DataChanged);
    for (const char* keys : {"1a5x36", "2047", "1fz"}) {  // Enter leads from box to box
        PressKey(QApplication::focusWidget(), Qt::Key_Return);
        QTest::keyClicks(QApplication::focusWidget(), keys);
    }
    EXPECT_EQ(f->Text1[0]->text() + " " + f->Text2[0]->text(), "1536 1F");
    // The spin buttons count in the box's own digits, from its bottom on an empty box.
    f->VScroll2[0]->UpButton()->click();
    EXPECT_EQ(f->Text2[0]->text(), "20");
    QTest::mouseClick(f->VScroll2[1]->DownButton(), Qt::LeftButton);
    EXPECT_EQ(f->Text2[1]->text(), "0");
    EXPECT_EQ(test::Focused(), "Text2(1)");  // the spin button passes the focus
    f->VScroll1[0]->UpButton()->click();
    EXPECT_EQ(f->Text1[0]->text(), "1537");
    f->StepRelayFlag->click();  // unticked: the step relay numbers emptied and greyed
    EXPECT_TRUE((f->Text1[0]->text() + f->Text1[1]->text()).isEmpty() && !f->Text1[1]->isEnabled());
    PressKey(f->IOErr[0], Qt::Key_Space);
    PressKey(f->Text2[1], Qt::Key_End);
    ParameterImage expected = f.loaded;  // RUN X20, PAUSE X0, I/O verify error: continue
    expected.SetParamWord(0x8008, 176);
    expected.SetParamWord(0x8000, 172);
    expected[178] = expected[174] = 1;
    expected[170] = 2;
    expected[163] = 0;
    EXPECT_EQ(test::DifferingBytes(f.state.image, expected), std::vector<int>{});
}

TEST(frmAssistance, RefusedBoxesArePaintedAndCancelAfterClearLeavesTheImage) {
    Assistance f("A3H", [](Assistance& f) {
        for (const auto& [i, v] :
             {std::pair{170, 1}, {176, 6}, {177, 128}, {178, 128}, {164, 1}, {181, 0}, {208, 1}})
            f.state.image[i] = static_cast<uint8_t>(v);
    });
    EXPECT_EQ(f->Text2[0]->text(), "1F");
    EXPECT_TRUE(f->FuseCut[1]->isChecked() && f->XYControl[3]->isChecked() &&
                f->CommentFlag->isChecked() && !f.state.DataChanged);
    // Each option is a change too, which Cancel asks about.
    for (const auto& options : {f->OutputMode, f->CalcErr, f->IOErr, f->ActErr, f->FuseCut}) {
        f.state.DataChanged = false;
        QRadioButton* other = options[options[0]->isChecked() ? 1 : 0];
        PressKey(other, Qt::Key_Space);
        EXPECT_TRUE(other->isChecked() && f.state.DataChanged) << other->objectName().toStdString();
    }
    f.state.DataChanged = false;
    PressKey(f->XYControl[0], Qt::Key_Space);
    EXPECT_TRUE(f->XYControl[0]->isChecked() && f.state.DataChanged);
    Retype(f->Text2[0], "");
    TypeKeys(f->Text2[1], "FFF");  // a PAUSE contact above the last X, and no RUN contact
    PressKey(f->Text2[1], Qt::Key_End);
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{3, 11}));
    EXPECT_TRUE(Yellow(f->Text2[0]) && Yellow(f->Text2[1]) && !Yellow(f->Text1[0]));
    EXPECT_FALSE(f.Closed());
    f.messages.Then(MessageButton::Yes);
    f->Clear->click();  // what it shows: AssistanceDefaults
    EXPECT_TRUE(f->XYControl[0]->isChecked() && f->Text2[1]->text().isEmpty());
    f->Cancel->click();  // No
    EXPECT_FALSE(f.Closed());
    f.messages.Then(MessageButton::Yes);
    PressKey(f->Cancel, Qt::Key_Return);
    EXPECT_TRUE(f.Closed());
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{3, 11, 12, 10, 1, 1}));
    EXPECT_EQ(f.state.image, f.loaded);
}

}  // namespace
}  // namespace gantrix
