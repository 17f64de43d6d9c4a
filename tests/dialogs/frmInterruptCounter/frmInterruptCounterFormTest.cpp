// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmInterruptCounter/frmInterruptCounter.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>

#include "support/FormFixture.h"

namespace gantrix {
namespace {

using test::PressKey;
using Interrupts = test::Opened<frmInterruptCounter>;

// A clear bit of bytes 188..191 (I0-7, I8-15, I16-23, I24-31) marks an interrupt counter.
Interrupts OpenedWith(std::array<uint8_t, 4> bytes) {
    return Interrupts("A3A", [bytes](Interrupts& f) {
        for (int j = 0; j < 4; ++j) f.state.image[188 + j] = bytes[j];
    });
}

std::array<uint8_t, 4> Bytes(const ModuleState& state) {
    return {state.image[188], state.image[189], state.image[190], state.image[191]};
}

TEST(frmInterruptCounter, FlagsFollowTheirBitsAndSpaceOrAClickSwitchesThemWithTheirLabels) {
    Interrupts f = OpenedWith({0x7F, 0xFE, 0xEF, 0xBF});
    frmInterruptCounter& d = *f.form;
    QStringList ticked;
    for (int k = 0; k < 32; ++k) {
        EXPECT_EQ(d.Label1[k]->text() == " (       ) ", !d.PointerFlag[k]->isChecked()) << k;
        if (d.PointerFlag[k]->isChecked()) ticked << d.PointerFlag[k]->text() + d.Label1[k]->text();
    }
    EXPECT_EQ(ticked,
              (QStringList{"I7 ( C 231 ) ", "I8 ( C 232 ) ", "I20 ( C 244 ) ", "I30 ( C 254 ) "}));
    QTest::keyClicks(d.PointerFlag[0], "x");  // no other key switches a flag
    EXPECT_FALSE(d.PointerFlag[0]->isChecked() || d.DataChanged);
    PressKey(d.PointerFlag[31], Qt::Key_Space);
    EXPECT_EQ(d.Label1[31]->text(), " ( C 255 ) ");
    QTest::mouseClick(d.PointerFlag[7], Qt::LeftButton);
    EXPECT_EQ(d.Label1[7]->text(), " (       ) ");
    EXPECT_TRUE(d.DataChanged);
    EXPECT_FALSE(f.state.DataChanged);  // its own flag, not the caller's
    d.PointerFlag[30]->setFocus();
    PressKey(d.PointerFlag[30], Qt::Key_Return);  // Enter walks the flags, then to OK
    EXPECT_EQ(test::Focused(), "PointerFlag(31)");
    PressKey(d.PointerFlag[31], Qt::Key_Return);
    EXPECT_EQ(test::Focused(), "OK");
    PressKey(d.OK, Qt::Key_Return);
    EXPECT_TRUE(f.Closed() && f.state.ParamChanged);
    EXPECT_EQ(Bytes(f.state), (std::array<uint8_t, 4>{0xFF, 0xFE, 0xEF, 0x3F}));
}

TEST(frmInterruptCounter, ClearThenOkStoresNoInterruptCounters) {
    Interrupts f = OpenedWith({0, 0x0F, 0, 0xAA});
    f.messages.Then(MessageButton::Yes);
    f->Clear->click();
    EXPECT_EQ(f->Label1[0]->text(), " (       ) ");
    f->OK->click();
    EXPECT_EQ(Bytes(f.state), (std::array<uint8_t, 4>{255, 255, 255, 255}));
}

}  // namespace
}  // namespace gantrix
