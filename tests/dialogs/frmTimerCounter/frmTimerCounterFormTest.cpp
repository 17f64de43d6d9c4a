// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmTimerCounter/frmTimerCounter.h"

#include <QComboBox>
#include <QGroupBox>
#include <QPushButton>

#include "common/qt/SpinButton.h"
#include "support/FormFixture.h"

namespace gantrix {
namespace {

using test::Child;
using test::PressKey;
using test::Retype;
using test::TypeKeys;
using test::Yellow;
using TimerCounter = test::Opened<frmTimerCounter>;

TEST(frmTimerCounter, FieldsShownPerCpuGroup) {
    for (const auto& [cpu, extended, text3] : {std::tuple{"A3 ", false, true},
                                               {"A3H", false, false},
                                               {"A3A", true, false},
                                               {"A4U", true, false}}) {
        TimerCounter f(cpu);
        for (QWidget* w : std::initializer_list<QWidget*>{f->Text1[0], f->Text1[4], f->Combo1,
                                                          f->Label1[0], f->Label1[5], f->Label1[7],
                                                          f->Label1[10], f->Frame2}) {
            EXPECT_EQ(w->isVisible(), extended) << cpu << w->objectName().toStdString();
        }
        EXPECT_EQ(f->Text3->isVisible(), text3) << cpu;
        EXPECT_EQ(test::Focused(), extended ? "Text1(0)" : "Text1(1)") << cpu;
    }
    // Each block's caption stands level with its row of boundaries.
    TimerCounter f("A3 ");
    const auto level = [&f](QWidget* a, QWidget* b) {
        return a->mapTo(f.form.get(), a->rect().center()).y() ==
               b->mapTo(f.form.get(), b->rect().center()).y();
    };
    EXPECT_TRUE(level(f->Label1[4], f->Text1[1]) && level(f->Label1[6], f->Text3));
}

TEST(frmTimerCounter, PointCountEmptiesFieldsItCannotHoldOnFocusChanges) {
    TimerCounter f("A3A");
    frmTimerCounter& t = *f.form;
    Retype(t.Text1[0], "512");
    PressKey(t.Text1[0], Qt::Key_Return);
    EXPECT_EQ(test::Focused(), "Text1(1)");
    Retype(t.Text1[4], "256");
    Retype(t.Text1[0], "257");
    t.Text1[5]->setFocus();
    EXPECT_EQ(t.Text1[4]->text(), "256");  // 257 and more keep T256-2047
    Retype(t.Text1[0], "256");
    PressKey(t.Text1[0], Qt::Key_Return);
    EXPECT_EQ(t.Text1[4]->text(), "");
    EXPECT_EQ(t.VScroll1[4]->Value(), t.VScroll1[4]->Max() + 1);  // reset with its box
    EXPECT_EQ(t.Text1[2]->text(), "200");
    // Without points nothing of the partition or the device stays.
    t.Combo1->setFocus();
    QTest::keyClicks(t.Combo1, "r");
    Retype(t.Text1[0], "0");
    PressKey(t.Text1[0], Qt::Key_Down);
    for (int i = 1; i <= 7; ++i) EXPECT_EQ(t.Text1[i]->text(), "") << i;
    EXPECT_EQ(t.Combo1->currentText(), "");
    t.Combo1->setFocus();
    QTest::keyClicks(t.Combo1, "d");
    EXPECT_EQ(t.Combo1->currentText(), "");  // no device while there are no points
    // The same for the counters.
    t.Combo2->setFocus();
    QTest::keyClicks(t.Combo2, "w");
    TypeKeys(t.Text2[1], "10");
    Retype(t.Text2[0], "0");
    PressKey(t.Text2[0], Qt::Key_Return);
    EXPECT_EQ(t.Combo2->currentText() + t.Text2[1]->text(), "");
}

TEST(frmTimerCounter, TheDeviceLetterDecidesTheStartNumbersDigits) {
    for (const auto& [letterKeys, startKeys, shown, code] :
         {std::tuple{"xw", "1fz", "1F", 4096 + 31}, {"Qd", "1a2", "12", 8192 + 12}}) {
        TimerCounter f("A3A");
        f->Combo1->setFocus();
        QTest::keyClicks(f->Combo1, letterKeys);  // other letters are discarded
        TypeKeys(f->Text1[7], startKeys);
        EXPECT_EQ(f->Combo1->currentText() + f->Text1[7]->text(),
                  QString(letterKeys[1]).toUpper() + shown);
        PressKey(f->Text1[7], Qt::Key_End);
        EXPECT_EQ(f.state.image.GetParamWord(212), code);
    }
    // The arrows move between the fields, never through a combo's list; the spin button
    // writes W numbers in hexadecimal; a change to D drops what is no decimal number.
    TimerCounter f("A2U");
    frmTimerCounter& t = *f.form;
    t.Combo2->setFocus();
    QTest::keyClicks(t.Combo2, "w");
    PressKey(t.Combo2, Qt::Key_Up);
    EXPECT_EQ(test::Focused(), "Text2(0)");
    t.Combo2->setFocus();
    PressKey(t.Combo2, Qt::Key_Down);
    EXPECT_EQ(test::Focused() + t.Combo2->currentText(), "Text2(1)W");
    TypeKeys(t.Text2[1], "9");
    QTest::mouseClick(t.VScroll2[1]->UpButton(), Qt::LeftButton);
    EXPECT_EQ(t.Text2[1]->text(), "A");
    EXPECT_EQ(t.VScroll2[1]->Min(), 8191);  // W8191 at the top for the U types
    t.Combo2->setFocus();
    QTest::keyClicks(t.Combo2, "d");
    EXPECT_EQ(t.Text2[1]->text(), "");
    EXPECT_TRUE(f.state.DataChanged);
}

TEST(frmTimerCounter, ErrorsShownInOrderWithTheirFieldsYellowAndClear) {
    TimerCounter f("A3A");
    frmTimerCounter& t = *f.form;
    Retype(t.Text1[0], "100");
    t.Combo1->setFocus();
    QTest::keyClicks(t.Combo1, "d");
    TypeKeys(t.Text1[7], "9999");
    PressKey(t.Text1[7], Qt::Key_End);
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{7, 11}));
    EXPECT_TRUE(Yellow(t.Text1[0]) && Yellow(t.Text1[7]));
    EXPECT_FALSE(Yellow(t.Text1[1]) || f.Closed());
    EXPECT_EQ(f.state.image, f.loaded);
    Retype(t.Text1[0], "256");  // the next check starts from clean colours
    t.OK->click();
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{7, 11, 7}));
    EXPECT_FALSE(Yellow(t.Text1[0]));
    f.messages.Then(MessageButton::Yes);
    t.Clear->click();
    EXPECT_EQ(t.Text1[7]->text() + t.Combo1->currentText(), "");
    EXPECT_EQ(t.VScroll1[7]->Value(), t.VScroll1[7]->Max() + 1);
    t.OK->click();
    EXPECT_TRUE(f.Closed());
    EXPECT_EQ(f.state.image, f.loaded);
}

TEST(frmTimerCounter, TheInterruptCounterButtonOpensItsDialogModally) {
    TimerCounter f("A3 ");
    test::ModalDriver driver;
    driver.On("frmInterruptCounter", [](QWidget* w) {
        PressKey(Child(w, "PointerFlag(3)"), Qt::Key_Space);
        PressKey(Child(w, "PointerFlag(3)"), Qt::Key_End);
    });
    f->Text3->setFocus();  // Tab: the last field, the dialog's own button, then OK
    PressKey(f->Text3, Qt::Key_Tab);
    EXPECT_EQ(test::Focused(), "InterruptCounter");
    PressKey(f->InterruptCounter, Qt::Key_Tab);
    EXPECT_EQ(test::Focused(), "OK");
    driver.Run([&] { PressKey(f->InterruptCounter, Qt::Key_Return); });
    EXPECT_EQ(f.state.image[188], 0xF7);
    EXPECT_FALSE(f.state.DataChanged);  // the timer dialog has no edit of its own
    f->Cancel->click();
    EXPECT_TRUE(f.Closed() && f.messages.shown.empty());
}

}  // namespace
}  // namespace gantrix
