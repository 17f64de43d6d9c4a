#include "dialogs/frmAssistance/frmAssistance.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QToolButton>

#include "common/qt/DialogRegistry.h"
#include "common/qt/FormControls.h"
#include "common/qt/SpinButton.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "support/ModalDriver.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::PressKey;
using test::TypeKeys;

struct Open {
    ModuleState state;
    test::ScriptedMessages messages;
    std::unique_ptr<frmAssistance> form;

    explicit Open(const std::string& cpu, const std::vector<std::pair<int, int>>& bytes = {})
        : state(test::StateFor(cpu)) {
        state.Presenter = &messages;
        for (const auto& [index, value] : bytes) state.image[index] = static_cast<uint8_t>(value);
        form = std::make_unique<frmAssistance>(state);
        form->show();
        form->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
};

TEST(AssistanceForm, ControlsCaptionsAndHintPerCpuType) {
    const struct {
        const char* cpu;
        bool range, wdt, xy, comment, endManage;
        QString button;
        QString hint;
    } cases[] = {
        {"A2 ", false, true, false, false, false, "",
         "Setting for step relay can be changed by pressing space key/clicking the mouse."},
        {"A2C", false, true, false, false, false, "Remote I/O ,Remote terminal setting", ""},
        {"A3H", false, false, true, true, false, "",
         "Setting for step relay/general data processing method can be changed by pressing space "
         "key/clicking the mouse."},
        {"A3A", true, false, false, true, false, "M-NET/MINI auto-refresh setting", ""},
        {"A2U", true, false, false, false, true, "M-NET/MINI auto-refresh setting", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.cpu);
        Open open(c.cpu);
        frmAssistance& f = *open.form;
        EXPECT_EQ(f.windowTitle(), "Supplementary Functions");
        EXPECT_EQ(f.Text1[1]->isVisible(), c.range);
        EXPECT_EQ(f.VScroll1[1]->isVisible(), c.range);
        EXPECT_EQ(f.Text3->isVisible(), c.wdt);
        EXPECT_EQ(f.XYControl[3]->isVisible(), c.xy);
        EXPECT_EQ(f.CommentFlag->isVisible(), c.comment);
        EXPECT_EQ(f.EndManageFlag->isVisible(), c.endManage);
        EXPECT_EQ(f.AssistMenuItem->isVisible(), !c.button.isEmpty());
        EXPECT_EQ(f.AssistMenuItem->text(), c.button);
        if (!c.hint.isEmpty()) {
            EXPECT_EQ(f.Label1->text(), c.hint);
        }
        EXPECT_EQ(QApplication::focusWidget(), f.StepRelayFlag);
        // Every control shown lies whole inside the dialog, none on top of another.
        std::vector<QRect> placed;
        for (QWidget* w : f.findChildren<QWidget*>()) {
            const bool control = qobject_cast<QLineEdit*>(w) || qobject_cast<QPushButton*>(w) ||
                                 qobject_cast<QCheckBox*>(w) || qobject_cast<QRadioButton*>(w);
            if (!control || !w->isVisible()) continue;
            const QRect r(w->mapTo(&f, QPoint(0, 0)), w->size());
            EXPECT_TRUE(f.rect().contains(r)) << w->objectName().toStdString();
            for (const QRect& other : placed) EXPECT_FALSE(r.intersects(other));
            placed.push_back(r);
        }
    }
}

// A default image holds what the dialog writes. The bytes the extended types fix (watchdog 20,
// direct I/O) and an erased word 14 (read as 2048) are rewritten whatever they held.
TEST(AssistanceForm, OkWithoutEditChangesOnlyTheFixedBytes) {
    for (std::string_view type : platform::kCpuTypes) {
        const std::string cpu(type);
        const bool extended = AssistanceLayoutOf(cpu).extended;
        for (bool disturbed : {false, extended}) {
            if (cpu == "A0J") break;
            SCOPED_TRACE(cpu + (disturbed ? " disturbed" : ""));
            Open open(cpu);
            if (disturbed) {
                for (const auto& [i, v] :
                     {std::pair{14, 255}, {15, 255}, {160, 50}, {161, 1}, {181, 0}})
                    open.state.image[i] = static_cast<uint8_t>(v);
            }
            const ParameterImage before = open.state.image;
            PressKey(QApplication::focusWidget(), Qt::Key_End);
            EXPECT_FALSE(open.form->isVisible());
            EXPECT_TRUE(open.messages.Numbers().empty());
            EXPECT_TRUE(open.state.ParamChanged);
            const std::vector<int> fixed = {14, 15, 160, 161, 181};
            EXPECT_EQ(test::DifferingBytes(before, open.state.image),
                      disturbed ? fixed : std::vector<int>{});
        }
    }
}

TEST(AssistanceForm, KeysFilterTheBoxesAndStepRelayBoxesFollowTheirCheckBox) {
    Open open("A3U");
    frmAssistance& f = *open.form;
    EXPECT_FALSE(f.Text1[0]->isEnabled());
    PressKey(f.StepRelayFlag, Qt::Key_Space);
    EXPECT_TRUE(f.StepRelayFlag->isChecked());
    EXPECT_TRUE(open.state.DataChanged);
    PressKey(f.StepRelayFlag, Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget(), f.Text1[0]);
    QTest::keyClicks(f.Text1[0], "1a5x36");
    PressKey(f.Text1[0], Qt::Key_Return);
    QTest::keyClicks(QApplication::focusWidget(), "2047");
    PressKey(f.Text1[1], Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget(), f.Text2[0]);
    QTest::keyClicks(f.Text2[0], "1fz");
    EXPECT_EQ(f.Text1[0]->text(), "1536");
    EXPECT_EQ(f.Text2[0]->text(), "1F");

    // The spin buttons count in the box's own digits, from its bottom on an empty box.
    QTest::mouseClick(f.VScroll2[0]->UpButton(), Qt::LeftButton);
    EXPECT_EQ(f.Text2[0]->text(), "20");
    QTest::mouseClick(f.VScroll2[1]->DownButton(), Qt::LeftButton);
    EXPECT_EQ(f.Text2[1]->text(), "0");
    EXPECT_EQ(QApplication::focusWidget(), f.Text2[1]);  // the spin button passes the focus
    QTest::mouseClick(f.VScroll1[0]->UpButton(), Qt::LeftButton);
    EXPECT_EQ(f.Text1[0]->text(), "1537");

    // Clearing the step relay box empties and greys its numbers.
    f.StepRelayFlag->click();
    EXPECT_EQ(f.Text1[0]->text(), "");
    EXPECT_EQ(f.Text1[1]->text(), "");
    EXPECT_FALSE(f.Text1[1]->isEnabled());
    PressKey(f.IOErr[0], Qt::Key_Space);
    PressKey(f.Text2[1], Qt::Key_End);
    EXPECT_FALSE(f.isVisible());
    const ParameterImage& image = open.state.image;
    EXPECT_EQ(image.GetParamWord(176), 32768 + 4 * 0x2);  // X20
    EXPECT_EQ(image[178], 1);
    EXPECT_EQ(image.GetParamWord(172), 32768);  // X0
    EXPECT_EQ(image[170], 2);
    EXPECT_EQ(image[163], 0);  // I/O module verify error: continue
    EXPECT_EQ(image[165], 1);
}

TEST(AssistanceForm, CheckShowsItsMessagesAndMarksTheBoxes) {
    Open open("A2 ");
    frmAssistance& f = *open.form;
    const ParameterImage before = open.state.image;
    TypeKeys(f.Text2[1], "1");
    TypeKeys(f.Text3, "1");
    PressKey(f.Text3, Qt::Key_End);
    EXPECT_EQ(open.messages.Numbers(), (std::vector<int>{3, 11}));
    EXPECT_TRUE(HasErrorColor(f.Text3));     // 201
    EXPECT_TRUE(HasErrorColor(f.Text2[0]));  // no RUN contact beside the PAUSE contact
    EXPECT_FALSE(HasErrorColor(f.Text2[1]));
    EXPECT_TRUE(f.isVisible());
    EXPECT_EQ(open.state.image, before);
}

TEST(AssistanceForm, ClearThenCancelAsksAndLeavesTheImage) {
    Open open("A3H", {{170, 1}, {176, 6}, {177, 128}, {178, 128}, {164, 1}, {181, 0}, {208, 1}});
    frmAssistance& f = *open.form;
    EXPECT_EQ(f.Text2[0]->text(), "1F");
    EXPECT_TRUE(f.FuseCut[1]->isChecked());
    EXPECT_TRUE(f.XYControl[3]->isChecked());
    EXPECT_TRUE(f.CommentFlag->isChecked());
    EXPECT_FALSE(open.state.DataChanged);
    const ParameterImage before = open.state.image;

    open.messages.Then(MessageButton::Yes);
    f.Clear->click();
    EXPECT_EQ(open.messages.Numbers(), (std::vector<int>{12, 10}));
    EXPECT_EQ(f.Text2[0]->text(), "");
    EXPECT_TRUE(f.FuseCut[0]->isChecked());
    EXPECT_TRUE(f.XYControl[0]->isChecked());
    EXPECT_FALSE(f.CommentFlag->isChecked());
    EXPECT_TRUE(f.IOErr[1]->isChecked());
    f.Cancel->click();  // No
    EXPECT_TRUE(f.isVisible());
    open.messages.Then(MessageButton::Yes);
    PressKey(f.Cancel, Qt::Key_Return);
    EXPECT_FALSE(f.isVisible());
    EXPECT_EQ(open.messages.Numbers(), (std::vector<int>{12, 10, 1, 1}));
    EXPECT_EQ(open.state.image, before);
}

// "A2C" opens the remote stations, the extended types the M-NET/MINI refresh; a dialog not
// built into the component opens nothing.
TEST(AssistanceForm, AssistMenuItemOpensTheFollowOnDialogOfTheCpuType) {
    for (const auto& [cpu, name] : {std::pair{"A2C", "frmRemote"}, {"A4U", "frmMINI"}}) {
        SCOPED_TRACE(cpu);
        Open open(cpu);
        bool opened = false;
        test::ModalDriver driver;
        if (IsDialogRegistered(name)) {
            driver.On(name, [&opened](QWidget* w) {
                opened = true;
                static_cast<QDialog*>(w)->reject();
            });
        }
        driver.Run([&] { PressKey(open.form->AssistMenuItem, Qt::Key_Return); });
        EXPECT_EQ(opened, IsDialogRegistered(name));
        EXPECT_TRUE(open.form->isVisible());
    }
}

}  // namespace
}  // namespace gantrix
