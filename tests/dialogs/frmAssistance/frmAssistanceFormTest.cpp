#include "dialogs/frmAssistance/frmAssistance.h"

#include <QCheckBox>
#include <QRadioButton>
#include <QToolButton>

#include "common/qt/SpinButton.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "support/FormFixture.h"
#include "support/ParameterModeRun.h"

namespace gantrix {
namespace {

using test::Child;
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
        EXPECT_EQ(
            (std::vector<bool>{f->Text1[1]->isVisible(), f->Text3->isVisible(),
                               f->XYControl[3]->isVisible(), f->CommentFlag->isVisible(),
                               f->EndManageFlag->isVisible(), f->AssistMenuItem->isVisible()}),
            (std::vector<bool>{layout.extended, layout.watchdog, layout.xyControl, layout.comment,
                               layout.endManage, !layout.followOn.empty()}));
        test::ModalDriver driver;
        driver.On(QString::fromStdString(layout.followOn),
                  [](QWidget* followOn) { PressKey(followOn, Qt::Key_End); });
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
    PressKey(f->StepRelayFlag, Qt::Key_Return);
    QTest::keyClicks(QApplication::focusWidget(), "1a5x36");
    PressKey(f->Text1[0], Qt::Key_Return);
    QTest::keyClicks(QApplication::focusWidget(), "2047");
    PressKey(f->Text1[1], Qt::Key_Return);
    QTest::keyClicks(QApplication::focusWidget(), "1fz");
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
    EXPECT_EQ(f->Text1[0]->text() + f->Text1[1]->text(), "");
    EXPECT_FALSE(f->Text1[1]->isEnabled());
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
             {std::pair{170, 1}, {176, 6}, {177, 128}, {178, 128}, {164, 1}, {181, 0}, {208, 1}}) {
            f.state.image[i] = static_cast<uint8_t>(v);
        }
    });
    EXPECT_EQ(f->Text2[0]->text(), "1F");
    EXPECT_TRUE(f->FuseCut[1]->isChecked() && f->XYControl[3]->isChecked() &&
                f->CommentFlag->isChecked() && !f.state.DataChanged);
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

// Runs through the menu, Supplementary Functions and its follow-on dialog: an option chosen and
// keys typed from a field on, Enter after each, reach "param.tmp" alone.
TEST(frmAssistance, EndToEndWhatIsTypedReachesParamTmp) {
    const std::vector<uint8_t> record = {0x1A, 0x7A, 0x45, 0x0C, 0x10, 0x00,
                                         0x10, 0x04, 0xC1, 0x0C, 0x0A, 0x0D};
    // clang-format off
    const struct { const char* cpu; QString dialog; const char* first; std::vector<const char*> keys;
                   std::vector<std::pair<int, int>> words; std::vector<int> records; } cases[] = {
        // Entry 9 at station 21, non-procedure.
        {"A2C", "frmRemote", "Text2(8)", {"21", "1"}, {{151, 21}, {157, 256}}, {}},
        // A module in both areas; each cell refuses the keys it does not take.
        {"A3U", "frmMINI", "Text1", {"1", "1a0g", "0", "12x", "x100", "y100z", "", "1", "0",
         "m9016", "d9010", "2"}, {{534, 1}, {2312, 1}}, {544, 2322}}};
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.cpu);
        test::TempProject project(c.cpu);
        test::ModalDriver driver;
        driver.On("frmMenu",
                  [](QWidget* menu) { PressKey(Child(menu, "MenuItem(4)"), Qt::Key_Return); });
        driver.On("frmAssistance", [](QWidget* dialog) {
            PressKey(Child(dialog, "OutputMode(1)"), Qt::Key_Space);  // after one scan: byte 180
            PressKey(Child(dialog, "AssistMenuItem"), Qt::Key_Return);
        });
        driver.On(c.dialog, [&c](QWidget* dialog) {
            Child(dialog, c.first)->setFocus();
            for (const char* keys : c.keys) {
                QTest::keyClicks(QApplication::focusWidget(), keys);
                PressKey(QApplication::focusWidget(), Qt::Key_Return);
            }
            PressKey(dialog, Qt::Key_End);
        });
        driver.On("frmAssistance", [](QWidget* dialog) { PressKey(dialog, Qt::Key_End); });
        driver.On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
        EXPECT_EQ(test::RunParameterMode(project, driver).result, 1);
        ParameterImage expected = test::DefaultImage(c.cpu);
        expected[180] = 1;
        for (int at : c.records)
            std::copy(record.begin(), record.end(), expected.bytes().begin() + at);
        EXPECT_EQ(
            test::DifferingBytes(project.ParamTmp(), test::SavedWith(expected, c.cpu, c.words)),
            std::vector<int>{});
    }
}

}  // namespace
}  // namespace gantrix
