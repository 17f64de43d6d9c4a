#include "dialogs/frmTimerCounter/frmTimerCounter.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

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
    std::unique_ptr<frmTimerCounter> form;

    explicit Open(const std::string& cpu, const std::vector<std::pair<int, int>>& words = {})
        : state(test::StateFor(cpu)) {
        state.Presenter = &messages;
        for (const auto& [index, value] : words) state.image.SetParamWord(value, index);
        form = std::make_unique<frmTimerCounter>(state);
        form->show();
        form->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
};

// Replaces the text of a box by typing, as a person selecting it and typing over it.
void Retype(QLineEdit* box, const QString& text) {
    box->setFocus();
    box->selectAll();
    if (text.isEmpty()) PressKey(box, Qt::Key_Backspace);
    QTest::keyClicks(box, text);
}

TEST(TimerCounterForm, FieldsShownPerCpuGroup) {
    const struct {
        const char* cpu;
        bool points, text3;
    } cases[] = {
        {"A3 ", false, true}, {"A3H", false, false}, {"A3A", true, false}, {"A4U", true, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.cpu);
        Open open(c.cpu);
        frmTimerCounter& f = *open.form;
        EXPECT_EQ(f.Text1[0]->isVisible(), c.points);
        EXPECT_EQ(f.Text1[4]->isVisible(), c.points);
        EXPECT_EQ(f.Combo1->isVisible(), c.points);
        EXPECT_EQ(f.Frame2->isVisible(), c.points);
        EXPECT_EQ(f.Text3->isVisible(), c.text3);
        EXPECT_TRUE(f.Text1[1]->isVisible());
        EXPECT_TRUE(f.InterruptCounter->isVisible());
        // The first shown field has the focus.
        EXPECT_EQ(QApplication::focusWidget(), c.points ? f.Text1[0] : f.Text1[1]);
    }
}

TEST(TimerCounterForm, PointCountEmptiesFieldsItCannotHoldOnFocusChanges) {
    Open open("A3A");
    frmTimerCounter& f = *open.form;
    Retype(f.Text1[0], "512");
    PressKey(f.Text1[0], Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget(), f.Text1[1]);
    Retype(f.Text1[4], "256");
    PressKey(f.Text1[4], Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget(), f.Text1[5]);
    EXPECT_EQ(f.Text1[4]->text(), "256");

    Retype(f.Text1[0], "257");
    f.Text1[5]->setFocus();
    EXPECT_EQ(f.Text1[4]->text(), "256");  // 257 and more keep T256-2047

    Retype(f.Text1[0], "256");
    PressKey(f.Text1[0], Qt::Key_Return);
    EXPECT_EQ(f.Text1[4]->text(), "");
    EXPECT_EQ(f.VScroll1[4]->Value(), f.VScroll1[4]->Max() + 1);  // reset with its box
    EXPECT_EQ(f.Text1[2]->text(), "200");

    // Without points nothing of the partition or the device stays.
    f.Combo1->setFocus();
    QTest::keyClicks(f.Combo1, "r");
    EXPECT_EQ(f.Combo1->currentText(), "R");
    Retype(f.Text1[0], "0");
    PressKey(f.Text1[0], Qt::Key_Down);
    for (int i = 1; i <= 7; ++i) EXPECT_EQ(f.Text1[i]->text(), "") << i;
    EXPECT_EQ(f.Combo1->currentText(), "");
    f.Combo1->setFocus();
    QTest::keyClicks(f.Combo1, "d");
    EXPECT_EQ(f.Combo1->currentText(), "");  // no device while there are no points

    // The same for the counters.
    f.Combo2->setFocus();
    QTest::keyClicks(f.Combo2, "w");
    TypeKeys(f.Text2[1], "10");
    Retype(f.Text2[0], "0");
    PressKey(f.Text2[0], Qt::Key_Return);
    EXPECT_EQ(f.Combo2->currentText(), "");
    EXPECT_EQ(f.Text2[1]->text(), "");
}

TEST(TimerCounterForm, DeviceLetterDecidesTheStartNumbersDigits) {
    const struct {
        const char* letterKeys;  // typed into Combo1
        const char* startKeys;   // typed into Text1(7)
        QString shown;
        int code;
    } cases[] = {{"xw", "1fz", "1F", 4096 + 31}, {"Qd", "1a2", "12", 8192 + 12}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.letterKeys);
        Open open("A3A");
        frmTimerCounter& f = *open.form;
        f.Combo1->setFocus();
        QTest::keyClicks(f.Combo1, c.letterKeys);  // other letters are discarded
        EXPECT_EQ(f.Combo1->currentText(), QString(c.letterKeys[1]).toUpper());
        TypeKeys(f.Text1[7], c.startKeys);
        EXPECT_EQ(f.Text1[7]->text(), c.shown);
        PressKey(f.Text1[7], Qt::Key_End);
        EXPECT_FALSE(f.isVisible());
        EXPECT_EQ(open.state.image.GetParamWord(212), c.code);
    }

    // The spin button writes W numbers in hexadecimal; a change to D drops what is no
    // decimal number.
    Open open("A2U");
    frmTimerCounter& f = *open.form;
    f.Combo2->setFocus();
    QTest::keyClicks(f.Combo2, "w");
    TypeKeys(f.Text2[1], "9");
    f.VScroll2[1]->StepUp();
    EXPECT_EQ(f.Text2[1]->text(), "A");
    EXPECT_EQ(f.VScroll2[1]->Min(), 8191);  // W8191 at the top for the U types
    f.Combo2->setFocus();
    QTest::keyClicks(f.Combo2, "d");
    EXPECT_EQ(f.Text2[1]->text(), "");
    EXPECT_EQ(f.VScroll2[1]->Value(), 1);
}

TEST(TimerCounterForm, ErrorsShownInOrderWithTheirFieldsYellow) {
    Open open("A3A");
    frmTimerCounter& f = *open.form;
    const ParameterImage before = open.state.image;
    Retype(f.Text1[0], "100");
    f.Combo1->setFocus();
    QTest::keyClicks(f.Combo1, "d");
    TypeKeys(f.Text1[7], "9999");
    PressKey(f.Text1[7], Qt::Key_End);
    EXPECT_EQ(open.messages.Numbers(), (std::vector<int>{7, 11}));
    EXPECT_TRUE(HasErrorColor(f.Text1[0]));
    EXPECT_TRUE(HasErrorColor(f.Text1[7]));
    EXPECT_FALSE(HasErrorColor(f.Text1[1]));
    EXPECT_TRUE(f.isVisible());
    EXPECT_EQ(open.state.image, before);

    // The next check starts from clean colours.
    Retype(f.Text1[0], "256");
    f.OK->click();
    EXPECT_EQ(open.messages.Numbers(), (std::vector<int>{7, 11, 7}));
    EXPECT_FALSE(HasErrorColor(f.Text1[0]));
    EXPECT_TRUE(HasErrorColor(f.Text1[7]));
    Retype(f.Text1[7], "6143");
    f.OK->click();
    EXPECT_FALSE(f.isVisible());
    EXPECT_EQ(open.state.image.GetParamWord(212), 8192 + 6143);
}

TEST(TimerCounterForm, CancelAsksAfterAnEditAndClearTouchesNoByte) {
    {
        Open open("A3 ");
        open.form->Cancel->click();  // nothing edited: closes without a question
        EXPECT_FALSE(open.form->isVisible());
        EXPECT_TRUE(open.messages.Numbers().empty());
    }
    Open open("A3 ");
    frmTimerCounter& f = *open.form;
    const ParameterImage before = open.state.image;
    Retype(f.Text1[2], "160");
    TypeKeys(f.Text3, "16");
    f.Cancel->click();  // message 1 answered No by default
    EXPECT_EQ(open.messages.Numbers(), std::vector<int>{1});
    EXPECT_TRUE(f.isVisible());
    EXPECT_EQ(f.Text1[2]->text(), "160");

    open.messages.Then(MessageButton::Yes);
    f.Clear->click();
    EXPECT_EQ(open.messages.Numbers(), (std::vector<int>{1, 12, 10}));
    EXPECT_EQ(f.Text1[2]->text(), "200");
    EXPECT_EQ(f.Text3->text(), "");
    EXPECT_EQ(f.VScroll3->Value(), f.VScroll3->Max() + 1);
    open.messages.Then(MessageButton::Yes);
    f.Cancel->click();
    EXPECT_FALSE(f.isVisible());
    EXPECT_EQ(open.state.image, before);
}

TEST(TimerCounterForm, OkWithoutEditChangesNoByteOfTheDefaultImage) {
    for (std::string_view type : platform::kCpuTypes) {
        const std::string cpu(type);
        SCOPED_TRACE(cpu);
        Open open(cpu);
        const ParameterImage before = open.state.image;
        PressKey(QApplication::focusWidget(), Qt::Key_End);
        EXPECT_FALSE(open.form->isVisible());
        EXPECT_TRUE(open.messages.Numbers().empty());
        EXPECT_TRUE(open.state.ParamChanged);
        EXPECT_EQ(test::DifferingBytes(before, open.state.image), std::vector<int>{});
    }
}

TEST(TimerCounterForm, InterruptCounterButtonOpensItsDialogModally) {
    ModuleState state = test::StateFor("A3 ");
    test::ScriptedMessages messages;
    state.Presenter = &messages;
    test::ModalDriver driver;
    driver.On("frmTimerCounter",
              [](QWidget* w) { PressKey(test::Child(w, "InterruptCounter"), Qt::Key_Return); });
    driver.On("frmInterruptCounter", [](QWidget* w) {
        PressKey(test::Child(w, "PointerFlag(3)"), Qt::Key_Space);
        PressKey(test::Child(w, "PointerFlag(3)"), Qt::Key_End);
    });
    // Back in the timer dialog, which has no edit of its own: Cancel asks nothing.
    driver.On("frmTimerCounter",
              [](QWidget* w) { test::ChildAs<QPushButton>(w, "Cancel")->click(); });
    driver.Run([&] {
        frmTimerCounter form(state);
        form.exec();
    });
    EXPECT_TRUE(messages.Numbers().empty());
    EXPECT_EQ(state.image[188], 0xF7);
    EXPECT_FALSE(state.DataChanged);
}

}  // namespace
}  // namespace gantrix
