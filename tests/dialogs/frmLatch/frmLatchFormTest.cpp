// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmLatch/frmLatch.h"

#include <QLabel>
#include <QToolButton>

#include "common/qt/SpinButton.h"
#include "support/FormFixture.h"

namespace gantrix {
namespace {

using test::PressKey;
using test::Retype;
using test::TypeKeys;
using test::Yellow;
using Latch = test::Opened<frmLatch>;

TEST(frmLatch, HexadecimalKeysOnlyInTheBAndWBoxesAndSpinButtonsInTheirRadix) {
    Latch f("A3 ");
    frmLatch& l = *f.form;
    TypeKeys(l.Text1[2], "1a0g");  // B start: g is not a hexadecimal digit
    EXPECT_EQ(l.VScroll1[2]->Value(), 0x1A0);
    EXPECT_TRUE(f.state.DataChanged);
    TypeKeys(l.Text1[14], "0a");  // the zero being typed stays while the spin button follows
    EXPECT_EQ(l.VScroll1[14]->Value(), 10);
    TypeKeys(l.Text1[12], "1a2 x");   // D start: letters and blanks are discarded
    TypeKeys(l.Text1[13], "123456");  // at most four characters
    TypeKeys(l.Text1[3], "3fF");
    EXPECT_EQ((QStringList{l.Text1[2]->text(), l.Text1[14]->text(), l.Text1[12]->text(),
                           l.Text1[13]->text(), l.Text1[3]->text()}),
              (QStringList{"1A0", "0A", "12", "1234", "3FF"}));
    l.VScroll1[3]->UpButton()->click();  // hexadecimal boxes count in hexadecimal
    EXPECT_EQ(l.Text1[3]->text(), "400");
    PressKey(l.Text1[3], Qt::Key_Home);  // a letter typed inside is upper-cased where it stands
    TypeKeys(l.Text1[3], "a");
    EXPECT_EQ(l.Text1[3]->text() + QString::number(l.Text1[3]->cursorPosition()), "A4001");
    l.VScroll1[0]->UpButton()->click();
    EXPECT_EQ(l.Text1[0]->text(), "1001");
    l.VScroll1[10]->DownButton()->click();  // an empty box shows where it stands
    EXPECT_EQ(l.Text1[10]->text(), "0");
    for (const auto& [box, top] : {std::pair{4, "9999"}, {15, "FFFF"}}) {
        Retype(l.Text1[box], top);
        l.VScroll1[box]->UpButton()->click();
        EXPECT_EQ(l.Text1[box]->text(), top);
    }
}

TEST(frmLatch, FailuresArePaintedYellowWhileTheDialogStaysOpen) {
    Latch f("A3 ");
    frmLatch& l = *f.form;
    EXPECT_EQ(l.Label2[0]->text() + l.Label2[4]->text(), " (0-2047)  (--) ");
    Retype(l.Text1[1], "2048");    // L end above M2047
    TypeKeys(l.Text1[12], "500");  // D 500-100: start above end
    TypeKeys(l.Text1[13], "100");
    TypeKeys(l.Text1[8], "120");  // the integration timers have no range on this partition
    PressKey(l.Text1[8], Qt::Key_End);
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{7, 8}));
    EXPECT_EQ(f.state.image, f.loaded);
    for (int i = 0; i < kLatchBoxes; ++i)
        EXPECT_EQ(Yellow(l.Text1[i]), i == 1 || i == 13 || i == 8) << i;
    EXPECT_EQ(test::Focused(), "Text1(8)");  // the check does not move the focus
}

TEST(frmLatch, TheSecondBlockOfATwelveRowTypeAndClear) {
    Latch f("A3U", [](Latch& f) {
        for (const auto& [index, value] :
             {std::pair{2304, 2048}, {200, 256}, {48, 300}, {50, 310}, {20, 0}, {22, 0x1FFF}}) {
            f.state.image.SetParamWord(value, index);  // timers up to T2047 from T256
        }
    });
    frmLatch& l = *f.form;
    EXPECT_EQ(l.Text1[16]->text() + " " + l.Text1[3]->text(), "300 1FFF");
    EXPECT_EQ(l.Label2[8]->text() + l.Label2[1]->text(), " (256-2047)  (0-1FFF) ");
    PressKey(l.Text1[15], Qt::Key_Return);  // Enter goes on into the second block
    EXPECT_EQ(test::Focused(), "Text1(16)");
    f.messages.Then(MessageButton::Yes);
    l.Clear->click();
    for (int i = 0; i < kLatchBoxes; ++i)
        EXPECT_EQ(l.Text1[i]->text(), i == 0 ? "1000" : i == 1 ? "2047" : "") << i;
    EXPECT_EQ(l.VScroll1[16]->Value(), 0);  // spin buttons follow their boxes
    PressKey(l.Text1[0], Qt::Key_End);
    ParameterImage expected = f.loaded;
    for (int i = 20; i <= 63; ++i) expected[i] = 255;
    EXPECT_EQ(test::DifferingBytes(f.state.image, expected), std::vector<int>{});
}

TEST(frmLatch, EnterWalksThePresentBoxesThenGoesToOk) {
    Latch f("A3H");
    EXPECT_EQ(test::Focused(), "Text1(0)");
    for (int i = 0; i < 15; ++i) {
        PressKey(f->Text1[i], Qt::Key_Return);
        ASSERT_EQ(QApplication::focusWidget(), f->Text1[i + 1]) << i;
    }
    PressKey(f->Text1[15], Qt::Key_Return);
    EXPECT_EQ(test::Focused(), "OK");
    PressKey(f->Text1[9], Qt::Key_Up);
    EXPECT_EQ(test::Focused(), "Text1(8)");
    EXPECT_FALSE(f->Text1[16]->isVisible() || f->ChangeLatch[0]->isVisible() || f.Closed());
}

TEST(frmLatch, TheSmallestTypeLatchesByPatternOnly) {
    Latch f("A0J");
    frmLatch& l = *f.form;
    for (int i = 0; i < 16; ++i) {
        EXPECT_FALSE(l.Text1[i]->isEnabled() || l.VScroll1[i]->isEnabled()) << i;
        EXPECT_EQ(l.Text1[i]->focusPolicy(), Qt::NoFocus) << i;
    }
    EXPECT_EQ(test::Focused(), "ChangeLatch(0)");
    f.messages.Then(MessageButton::Yes);
    l.Clear->click();  // changes nothing here
    EXPECT_FALSE(f.state.DataChanged);
    PressKey(l.ChangeLatch[0], Qt::Key_Right);
    EXPECT_EQ(test::Focused(), "ChangeLatch(1)");
    PressKey(l.ChangeLatch[1], Qt::Key_Return);  // Enter clicks the button
    EXPECT_EQ(l.Text1[0]->text() + " " + l.Text1[3]->text(), "1024 3FF");
    EXPECT_TRUE(f.state.DataChanged);
    l.ChangeLatch[2]->click();
    EXPECT_EQ(l.Text1[14]->text(), "0");
    EXPECT_FALSE(l.Text1[0]->isEnabled());
    PressKey(l.ChangeLatch[2], Qt::Key_End);
    EXPECT_TRUE(f.Closed());
    EXPECT_EQ(f.state.image.GetParamWord(46), 1023);
}

}  // namespace
}  // namespace gantrix
