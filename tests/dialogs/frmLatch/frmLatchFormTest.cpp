#include "dialogs/frmLatch/frmLatch.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <memory>

#include "common/qt/FormControls.h"
#include "common/qt/SpinButton.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "support/ModalDriver.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::PressKey;
using test::ScriptedMessages;
using test::TypeKeys;

struct Fixture {
    ModuleState state;
    ScriptedMessages messages;
    ParameterImage before;
    std::unique_ptr<frmLatch> dialog;

    explicit Fixture(const std::string& cpu, const ParameterImage* image = nullptr)
        : state(test::StateFor(cpu)) {
        if (image) state.image = *image;
        state.Presenter = &messages;
        before = state.image;
        dialog = std::make_unique<frmLatch>(state);
        dialog->show();
        dialog->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }
    QLineEdit* Box(int i) const { return dialog->Text1[i]; }
    // Replaces a box's text: the old text selected, erased with Backspace, the new typed.
    void Retype(int i, const QString& text) const {
        Box(i)->setFocus();
        Box(i)->selectAll();
        PressKey(Box(i), Qt::Key_Backspace);
        QTest::keyClicks(Box(i), text);
    }
};

TEST(frmLatchForm, HexadecimalKeysOnlyInTheBAndWBoxes) {
    Fixture f("A3 ");
    TypeKeys(f.Box(2), "1a0g");  // B start: g is not a hexadecimal digit
    EXPECT_EQ(f.Box(2)->text(), "1A0");
    EXPECT_EQ(f.dialog->VScroll1[2]->Value(), 0x1A0);
    TypeKeys(f.Box(15), "3fF");  // W end
    EXPECT_EQ(f.Box(15)->text(), "3FF");
    TypeKeys(f.Box(14), "0a");  // the zero being typed stays while the spin button follows
    EXPECT_EQ(f.Box(14)->text(), "0A");
    EXPECT_EQ(f.dialog->VScroll1[14]->Value(), 10);
    TypeKeys(f.Box(12), "1a2 x");  // D start: letters and blanks are discarded
    EXPECT_EQ(f.Box(12)->text(), "12");
    TypeKeys(f.Box(13), "123456");  // at most four characters
    EXPECT_EQ(f.Box(13)->text(), "1234");
    EXPECT_TRUE(f.state.DataChanged);

    // The typed B range reaches the image as plain numbers.
    TypeKeys(f.Box(3), "3ff");
    f.Retype(15, "");
    f.Retype(14, "");
    f.Retype(12, "");
    f.Retype(13, "");
    PressKey(f.Box(3), Qt::Key_End);
    EXPECT_TRUE(f.messages.shown.empty());
    EXPECT_FALSE(f.dialog->isVisible());
    EXPECT_EQ(f.state.image.GetParamWord(20), 416);
    EXPECT_EQ(f.state.image.GetParamWord(22), 1023);
    EXPECT_TRUE(f.state.ParamChanged);
    EXPECT_FALSE(f.state.DataChanged);
}

TEST(frmLatchForm, FailuresArePaintedYellowWhileTheDialogStaysOpen) {
    Fixture f("A3 ");
    EXPECT_EQ(f.dialog->Label2[0]->text(), " (0-2047) ");
    f.Retype(1, "2048");         // L end above M2047
    TypeKeys(f.Box(12), "500");  // D 500-100: start above end
    TypeKeys(f.Box(13), "100");
    TypeKeys(f.Box(8), "120");  // the integration timers have no range on this partition
    EXPECT_EQ(f.dialog->Label2[4]->text(), " (--) ");
    PressKey(f.Box(8), Qt::Key_End);
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{7, 8}));
    EXPECT_TRUE(f.dialog->isVisible());
    EXPECT_EQ(f.state.image, f.before);
    for (int i = 0; i < kLatchBoxes; ++i) {
        EXPECT_EQ(HasErrorColor(f.Box(i)), i == 1 || i == 13 || i == 8) << i;
    }
    EXPECT_EQ(QApplication::focusWidget(), f.Box(8));  // the check does not move the focus

    // Fixed, the colours go and the ranges are saved.
    f.Retype(1, "2000");
    f.Retype(13, "600");
    f.Retype(8, "");
    PressKey(f.dialog->OK, Qt::Key_Return);
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{7, 8}));
    EXPECT_FALSE(f.dialog->isVisible());
    EXPECT_FALSE(HasErrorColor(f.Box(1)));
    EXPECT_EQ(f.state.image.GetParamWord(18), 2000);
    EXPECT_EQ(f.state.image.GetParamWord(40), 500);
    EXPECT_EQ(f.state.image.GetParamWord(42), 600);
}

TEST(frmLatchForm, ClearOnATwelveRowTypeLeavesOnlyL1000To2047) {
    ParameterImage image = test::DefaultImage("A3U");
    image.SetParamWord(2048, 2304);  // timers up to T2047 from T256
    image.SetParamWord(256, 200);
    image.SetParamWord(300, 48);
    image.SetParamWord(310, 50);
    image.SetParamWord(0, 20);
    image.SetParamWord(0x1FFF, 22);
    Fixture f("A3U", &image);
    EXPECT_EQ(f.Box(16)->text(), "300");
    EXPECT_EQ(f.Box(3)->text(), "1FFF");
    EXPECT_EQ(f.dialog->Label2[8]->text(), " (256-2047) ");
    EXPECT_EQ(f.dialog->Label2[1]->text(), " (0-1FFF) ");
    f.Retype(0, "5");
    f.messages.Then(MessageButton::Yes);
    f.dialog->Clear->click();
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{12, 10}));
    for (int i = 0; i < kLatchBoxes; ++i) {
        EXPECT_EQ(f.Box(i)->text(), i == 0 ? "1000" : i == 1 ? "2047" : "") << i;
    }
    EXPECT_EQ(f.dialog->VScroll1[16]->Value(), 0);  // spin buttons follow their boxes
    EXPECT_EQ(f.state.image, f.before);             // only OK writes
    PressKey(f.Box(0), Qt::Key_End);
    EXPECT_FALSE(f.dialog->isVisible());
    for (int i = 20; i <= 63; ++i) EXPECT_EQ(f.state.image[i], 255) << i;
    EXPECT_EQ(f.state.image.GetParamWord(16), 1000);
    EXPECT_EQ(f.state.image.GetParamWord(18), 2047);
}

TEST(frmLatchForm, CancelAsksAfterAnEditAndClearThenCancelLeavesTheImage) {
    {
        Fixture f("A2 ");
        TypeKeys(f.Box(10), "7");
        f.messages.Then(MessageButton::No);
        PressKey(f.dialog->Cancel, Qt::Key_Return);
        EXPECT_TRUE(f.dialog->isVisible());
        EXPECT_EQ(f.Box(10)->text(), "7");
        f.messages.Then(MessageButton::Yes);
        PressKey(f.Box(10), Qt::Key_Escape);
        EXPECT_FALSE(f.dialog->isVisible());
        EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{1, 1}));
        EXPECT_EQ(f.state.image, f.before);
        EXPECT_FALSE(f.state.ParamChanged);
    }
    {
        ParameterImage image = test::DefaultImage("A2 ");
        image.SetParamWord(10, 36);  // C10-20
        image.SetParamWord(20, 38);
        Fixture f("A2 ", &image);
        f.messages.Then(MessageButton::Yes).Then(MessageButton::Ok).Then(MessageButton::Yes);
        PressKey(f.dialog->Clear, Qt::Key_Return);
        EXPECT_EQ(f.Box(10)->text(), "");
        f.dialog->Cancel->click();
        EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{12, 10, 1}));
        EXPECT_FALSE(f.dialog->isVisible());
        EXPECT_EQ(f.state.image, f.before);
    }
}

TEST(frmLatchForm, SpinButtonsStepTheNumberAndMarkTheEdit) {
    Fixture f("A2 ");
    f.dialog->VScroll1[0]->UpButton()->click();
    EXPECT_EQ(f.Box(0)->text(), "1001");
    EXPECT_TRUE(f.state.DataChanged);
    f.dialog->VScroll1[12]->DownButton()->click();  // an empty box shows where it stands
    EXPECT_EQ(f.Box(12)->text(), "0");
    f.dialog->VScroll1[13]->UpButton()->click();
    EXPECT_EQ(f.Box(13)->text(), "1");
    TypeKeys(f.Box(3), "3FF");
    f.dialog->VScroll1[3]->UpButton()->click();  // hexadecimal boxes count in hexadecimal
    EXPECT_EQ(f.Box(3)->text(), "400");
    f.Retype(4, "9999");
    f.dialog->VScroll1[4]->UpButton()->click();  // 9999 is the top
    EXPECT_EQ(f.Box(4)->text(), "9999");
    f.Retype(15, "FFFF");
    f.dialog->VScroll1[15]->UpButton()->click();
    EXPECT_EQ(f.Box(15)->text(), "FFFF");
    EXPECT_EQ(QApplication::focusWidget(), f.Box(15));  // the spin button never takes it
}

TEST(frmLatchForm, EnterWalksThePresentBoxesThenGoesToOK) {
    Fixture eight("A3H");
    EXPECT_EQ(QApplication::focusWidget(), eight.Box(0));
    for (int i = 0; i < 15; ++i) {
        PressKey(eight.Box(i), Qt::Key_Return);
        ASSERT_EQ(QApplication::focusWidget(), eight.Box(i + 1)) << i;
    }
    PressKey(eight.Box(15), Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget(), eight.dialog->OK);
    for (int i = 16; i < kLatchBoxes; ++i) EXPECT_FALSE(eight.Box(i)->isVisible()) << i;
    EXPECT_FALSE(eight.dialog->ChangeLatch[0]->isVisible());
    EXPECT_TRUE(eight.messages.shown.empty());
    EXPECT_TRUE(eight.dialog->isVisible());  // Enter in a box is no OK

    Fixture twelve("A2A");
    PressKey(twelve.Box(15), Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget(), twelve.Box(16));
    PressKey(twelve.Box(23), Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget(), twelve.dialog->OK);
    PressKey(twelve.Box(20), Qt::Key_Up);
    EXPECT_EQ(QApplication::focusWidget(), twelve.Box(19));
}

TEST(frmLatchForm, TheSmallestTypeLatchesByPatternOnly) {
    Fixture f("A0J");
    for (int i = 0; i < 16; ++i) {
        EXPECT_FALSE(f.Box(i)->isEnabled()) << i;
        EXPECT_EQ(f.Box(i)->focusPolicy(), Qt::NoFocus) << i;
        EXPECT_FALSE(f.dialog->VScroll1[i]->isEnabled()) << i;
    }
    EXPECT_EQ(QApplication::focusWidget(), f.dialog->ChangeLatch[0]);
    EXPECT_EQ(f.dialog->ChangeLatch[1]->text(), "Half Latch");

    // Clear changes nothing here.
    f.messages.Then(MessageButton::Yes);
    f.dialog->Clear->click();
    for (int i = 0; i < 16; ++i) EXPECT_EQ(f.Box(i)->text(), "") << i;
    EXPECT_FALSE(f.state.DataChanged);

    PressKey(f.dialog->ChangeLatch[0], Qt::Key_Right);
    EXPECT_EQ(QApplication::focusWidget(), f.dialog->ChangeLatch[1]);
    PressKey(f.dialog->ChangeLatch[1], Qt::Key_Return);  // Enter clicks the button
    EXPECT_EQ(f.Box(0)->text(), "1024");
    EXPECT_EQ(f.Box(3)->text(), "3FF");
    EXPECT_TRUE(f.state.DataChanged);
    f.dialog->ChangeLatch[2]->click();
    EXPECT_EQ(f.Box(0)->text(), "0");
    EXPECT_EQ(f.Box(14)->text(), "0");
    EXPECT_FALSE(f.Box(0)->isEnabled());
    PressKey(f.dialog->ChangeLatch[2], Qt::Key_End);
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{12, 10}));
    EXPECT_FALSE(f.dialog->isVisible());
    const ParameterImage& image = f.state.image;
    EXPECT_EQ(image.GetParamWord(16), 0);
    EXPECT_EQ(image.GetParamWord(18), 2047);
    EXPECT_EQ(image.GetParamWord(44), 0);
    EXPECT_EQ(image.GetParamWord(46), 1023);
    for (int i : test::DifferingBytes(f.before, image)) EXPECT_TRUE(i >= 16 && i <= 47) << i;
}

TEST(frmLatchForm, OkWithoutAnEditChangesNoByteOnAnyDefaultImage) {
    for (const std::string_view cpu : platform::kCpuTypes) {
        Fixture f{std::string(cpu)};
        EXPECT_FALSE(f.state.DataChanged) << cpu;
        f.dialog->OK->click();
        EXPECT_TRUE(f.messages.shown.empty()) << cpu;
        EXPECT_FALSE(f.dialog->isVisible()) << cpu;
        EXPECT_TRUE(f.state.ParamChanged) << cpu;
        EXPECT_EQ(test::DifferingBytes(f.before, f.state.image), std::vector<int>{}) << cpu;
    }
}

}  // namespace
}  // namespace gantrix
