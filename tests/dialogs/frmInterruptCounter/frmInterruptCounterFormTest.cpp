#include "dialogs/frmInterruptCounter/frmInterruptCounter.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include "platform/rkcmnt/DeviceTable.h"
#include "support/ModalDriver.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::PressKey;

struct Open {
    ModuleState state;
    test::ScriptedMessages messages;
    std::unique_ptr<frmInterruptCounter> form;

    explicit Open(const std::string& cpu, std::array<uint8_t, 4> bytes = {255, 255, 255, 255})
        : state(test::StateFor(cpu)) {
        state.Presenter = &messages;
        for (int j = 0; j < 4; ++j) state.image[188 + j] = bytes[j];
        form = std::make_unique<frmInterruptCounter>(state);
        form->show();
        form->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
    std::array<uint8_t, 4> Bytes() const {
        return {state.image[188], state.image[189], state.image[190], state.image[191]};
    }
};

TEST(InterruptCounterForm, SpaceAndClickSwitchFlagsAndTheirLabels) {
    Open open("A3A", {0xFE, 255, 255, 255});
    frmInterruptCounter& f = *open.form;
    EXPECT_TRUE(f.PointerFlag[0]->isChecked());
    EXPECT_EQ(f.PointerFlag[0]->text(), "I0");
    EXPECT_EQ(f.Label1[0]->text(), " ( C 224 ) ");
    for (int k = 1; k < 32; ++k) {
        EXPECT_FALSE(f.PointerFlag[k]->isChecked()) << k;
        EXPECT_EQ(f.Label1[k]->text(), " (       ) ") << k;
    }

    PressKey(f.PointerFlag[31], Qt::Key_Space);
    EXPECT_TRUE(f.PointerFlag[31]->isChecked());
    EXPECT_EQ(f.Label1[31]->text(), " ( C 255 ) ");
    QTest::mouseClick(f.PointerFlag[0], Qt::LeftButton);
    EXPECT_FALSE(f.PointerFlag[0]->isChecked());
    EXPECT_EQ(f.Label1[0]->text(), " (       ) ");
    EXPECT_TRUE(f.DataChanged);
    EXPECT_FALSE(open.state.DataChanged);  // its own flag, not the caller's

    PressKey(f.PointerFlag[0], Qt::Key_End);
    EXPECT_FALSE(f.isVisible());
    EXPECT_EQ(open.Bytes(), (std::array<uint8_t, 4>{255, 255, 255, 0x7F}));
    EXPECT_TRUE(open.state.ParamChanged);
}

TEST(InterruptCounterForm, EnterWalksTheFlagsThenPressesOk) {
    Open open("A3 ");
    frmInterruptCounter& f = *open.form;
    EXPECT_EQ(QApplication::focusWidget(), f.PointerFlag[0]);
    f.PointerFlag[30]->setFocus();
    PressKey(f.PointerFlag[30], Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget(), f.PointerFlag[31]);
    EXPECT_FALSE(f.PointerFlag[30]->isChecked());
    PressKey(f.PointerFlag[31], Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget(), f.OK);
    PressKey(f.OK, Qt::Key_Return);
    EXPECT_FALSE(f.isVisible());
}

TEST(InterruptCounterForm, ClearThenOkStoresNoInterruptCounters) {
    Open open("A2U", {0, 0x0F, 0, 0xAA});
    frmInterruptCounter& f = *open.form;
    open.messages.Then(MessageButton::Yes);
    f.Clear->click();
    EXPECT_EQ(open.messages.Numbers(), (std::vector<int>{12, 10}));
    for (int k = 0; k < 32; ++k) EXPECT_FALSE(f.PointerFlag[k]->isChecked()) << k;
    f.OK->click();
    EXPECT_EQ(open.Bytes(), (std::array<uint8_t, 4>{255, 255, 255, 255}));
}

TEST(InterruptCounterForm, CancelAsksAfterAChangeAndKeepsTheImage) {
    Open open("A3 ", {0xF0, 255, 255, 255});
    frmInterruptCounter& f = *open.form;
    const ParameterImage before = open.state.image;
    PressKey(f.PointerFlag[9], Qt::Key_Space);
    f.Cancel->click();  // No
    EXPECT_TRUE(f.isVisible());
    EXPECT_TRUE(f.PointerFlag[9]->isChecked());
    open.messages.Then(MessageButton::Yes);
    f.Cancel->click();
    EXPECT_FALSE(f.isVisible());
    EXPECT_EQ(open.messages.Numbers(), (std::vector<int>{1, 1}));
    EXPECT_EQ(open.state.image, before);
}

TEST(InterruptCounterForm, OkWithoutEditChangesNoByteOfTheDefaultImage) {
    for (std::string_view type : platform::kCpuTypes) {
        const std::string cpu(type);
        Open open(cpu);
        open.state.image = test::DefaultImage(cpu);
        open.form->OK->click();
        EXPECT_EQ(test::DifferingBytes(test::DefaultImage(cpu), open.state.image),
                  std::vector<int>{})
            << cpu;
    }
}

}  // namespace
}  // namespace gantrix
