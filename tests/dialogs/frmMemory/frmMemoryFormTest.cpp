// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmMemory/frmMemory.h"

#include <QCheckBox>
#include <QLabel>

#include "common/qt/SpinButton.h"
#include "support/FormFixture.h"

namespace gantrix {
namespace {

using test::PressKey;
using test::Retype;
using test::Yellow;
using Memory = test::Opened<frmMemory>;

void Click(QWidget* w) {
    QTest::mouseClick(w, Qt::LeftButton);
}

TEST(frmMemory, EveryEditRecomputesTheTotalAtOnceAndMarksTheDialogChanged) {
    Memory f("A3H");
    frmMemory& m = *f.form;
    QTest::keyClicks(m.SanpFlag, "x");  // a letter on a box is no edit
    EXPECT_FALSE(f.state.DataChanged);
    Click(m.SlatchDataFlag);
    EXPECT_TRUE(f.state.DataChanged);
    EXPECT_EQ(m.Text5->text(), "24");
    PressKey(m.SanpFlag, Qt::Key_Space);  // space switches a box
    Retype(m.Text1[0], "");
    QTest::keyClicks(m.Text1[0], "1x2");  // the letter is discarded
    EXPECT_EQ(m.Text5->text(), "44");
    Retype(m.Text2, "010");  // a leading zero goes as it is typed
    EXPECT_EQ(m.Text2->text() + m.CommentPoints->text(), "10(576Points)");
    QWidget* frame = m.CommentPoints->parentWidget();  // the points stand under the field
    EXPECT_EQ(m.CommentPoints->x(), m.Text2->mapTo(frame, QPoint()).x());
    Retype(m.Text4, "4");
    Click(m.SlatchFileFlag);
    // Spin buttons: 99 at the top, 0 at the bottom, so the up arrow raises the value.
    Click(m.VScroll1[0]->UpButton());
    EXPECT_EQ(m.Text1[0]->text(), "13");
    for (int i = 0; i < 7; ++i) Click(m.VScroll4->UpButton());
    EXPECT_EQ(m.Text4->text(), "9");  // the file register's spin button stops at 9
    Click(m.VScroll4->DownButton());
    Retype(m.Text2, "");
    Click(m.VScroll2->UpButton());
    EXPECT_EQ(m.Text2->text(), "0");  // an emptied field starts again from the bottom
    PressKey(m.Text2, Qt::Key_End);
    EXPECT_TRUE(f.Closed());
    ParameterImage expected = f.loaded;
    for (const auto& [index, value] : {std::pair{64, 13 * 1024}, {68, 8 * 1024}, {78, 8 * 1024}})
        expected.SetParamWord(value, index);
    expected[76] = 3;
    expected[80] = 255;
    EXPECT_EQ(test::DifferingBytes(f.state.image, expected), std::vector<int>{});
}

TEST(frmMemory, TabAndEnterWalkTheShownFieldsCancelAndClearAsk) {
    Memory clean("A3 ");
    clean->Cancel->click();  // nothing edited: closes without a question
    EXPECT_TRUE(clean.Closed() && clean.messages.shown.empty());
    Memory f("A3 ");
    QStringList tabs;
    for (int i = 0; i < 13; ++i) {
        tabs << test::Focused();
        PressKey(QApplication::focusWidget(), Qt::Key_Tab);
    }
    const QStringList fields{"Text1(0)", "Text1(1)",       "Text1(2)",       "Text1(3)", "Text4",
                             "SanpFlag", "SlatchDataFlag", "SlatchFileFlag", "Text2",    "Text3"};
    EXPECT_EQ(tabs, fields + QStringList({"OK", "Cancel", "Clear"}));
    f->Text1[0]->setFocus();
    QStringList enters{test::Focused()};
    for (int i = 0; i < 10; ++i) {
        PressKey(QApplication::focusWidget(), Qt::Key_Return);
        enters << test::Focused();
    }
    EXPECT_EQ(enters, fields + QStringList("OK"));
    PressKey(f->Text2, Qt::Key_Up);
    EXPECT_EQ(test::Focused(), "SlatchFileFlag");
    Click(f->VScroll1[1]->UpButton());
    EXPECT_EQ(test::Focused() + " " + f->Text1[1]->text(), "Text1(1) 1");  // the arrow's box
    f->Clear->click();  // message 12 answered No by default
    EXPECT_EQ(f->Text1[1]->text(), "1");
    f.messages.Then(MessageButton::Yes);
    PressKey(f->Clear, Qt::Key_Return);
    EXPECT_EQ(f->Text1[1]->text(), "0");
    f->Cancel->click();  // No
    f->close();          // the close box is Cancel too: No
    EXPECT_FALSE(f.Closed());
    f.messages.Then(MessageButton::Yes);
    PressKey(f->Text1[0], Qt::Key_Escape);  // and Escape: Yes
    EXPECT_TRUE(f.Closed());
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{12, 12, 10, 1, 1, 1}));
    EXPECT_EQ(f.state.image, f.loaded);
    EXPECT_FALSE(f.state.ParamChanged || f.state.DataChanged);
}

TEST(frmMemory, CaptionsPerCpuType) {
    // clang-format off
    const struct { const char* cpu; const char* sequence; const char* main; } cases[] = {
        {"A0J", "Sequence", ""}, {"A1S", "Sequence (1 -- 8)", "Main"},
        {"A1 ", "Sequence (1 -- 6)", "Main"}, {"A2 ", "Sequence (1 -- 14)", "Main"},
        {"A3H", "Sequence (1 -- 30)", "Main"}, {"A2A", "Sequence (1 -- 14)", "Main"},
        {"A3A", "Sequence (1 -- 30)", "Main"}, {"A2U", "Sequence (1 -- 14)", "Main (Max14)"},
        {"A4U", "Sequence (1 -- 30)", "Main (Max30)"}, {"A9 ", "", ""},
    };
    // clang-format on
    for (const auto& c : cases) {
        Memory f(c.cpu);
        frmMemory& m = *f.form;
        EXPECT_EQ(m.SequenceHeader->isVisible() ? m.SequenceHeader->text() : "", c.sequence);
        EXPECT_EQ(m.ProgramRow[0]->isVisible() ? m.ProgramRow[0]->text() : "", c.main) << c.cpu;
    }
    Memory a4u("A4U");
    EXPECT_EQ(a4u->ProgramRow[1]->text() + a4u->ProgramRow[3]->text(), "Sub1Sub3");
    EXPECT_EQ(a4u->FileRegisterRange->text() + Memory("A2C")->FileRegisterRange->text(),
              " (0-8)  (0-4) ");
}

TEST(frmMemory, ReservedAreaOfTheWorkingFileAndTheA0jMicroMarker) {
    Memory f("A4U", [](Memory& f) {
        // The working file, copied from param.tmp, holds the reserved area; the image 0.
        std::vector<uint8_t> tmp = f.project.Read("param.tmp");
        tmp[138] = 1;
        tmp[139] = 4;  // 1025
        f.project.Write("param.tmp", tmp);
    });
    EXPECT_EQ(f->ProgramRow[0]->text(), "Main (Max28)");
    Retype(f->Text1[0], "29");
    f->OK->click();
    EXPECT_EQ(f.messages.Numbers(), std::vector<int>{3});
    EXPECT_EQ(Memory("A0J")->MicroState->text(), "None");
    Memory exist("A0J", [](Memory& f) {
        f.project.Write("Mmicro.bin", {0x12, 0x34});
        f.state.image.SetParamWord(4096, 72);
    });
    EXPECT_EQ(exist->MicroState->text(), "Exist");
}

TEST(frmMemory, FailuresAreShownOneBoxPerMessageWithTheirFieldsYellow) {
    Memory f("A2 ");
    frmMemory& m = *f.form;
    Retype(m.Text2, "1");
    Retype(m.Text1[0], "14");
    Retype(m.Text1[1], "2");
    m.OK->click();
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{3, 11}));
    EXPECT_TRUE(Yellow(m.Text2) && Yellow(m.Text1[0]) && Yellow(m.Text1[1]));
    EXPECT_FALSE(Yellow(m.Text4) || f.Closed());
    f.messages.Then(MessageButton::Yes);
    m.Clear->click();
    EXPECT_EQ(m.Text1[0]->text() + m.Text5->text(), "616");
    m.OK->click();
    EXPECT_FALSE(Yellow(m.Text2));
    EXPECT_EQ(f.state.image, f.loaded);
    // A box's length limits typing only: a stored value too long for it loads whole and the
    // check refuses it; it may be shortened but not grow.
    Memory g("A3 ", [](Memory& f) { f.state.image.SetParamWord(65535, 68); });
    EXPECT_EQ(g->Text4->text(), "63");
    g->OK->click();
    EXPECT_EQ(g.messages.Numbers(), std::vector<int>{3});
    EXPECT_TRUE(Yellow(g->Text4));
    g->Text4->setFocus();
    PressKey(g->Text4, Qt::Key_Backspace);
    QTest::keyClicks(g->Text4, "3");
    EXPECT_EQ(g->Text4->text(), "6");
}

}  // namespace
}  // namespace gantrix
