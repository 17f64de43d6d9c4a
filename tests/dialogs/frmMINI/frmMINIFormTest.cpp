// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmMINI/frmMINI.h"

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
using Mini = test::Opened<frmMINI>;

QStringList Row(const Mini& f, int m) {
    QStringList cells;
    for (int c = 0; c < kMiniFieldsPerRow; ++c) cells << f->Text2[11 * (m - 1) + c]->text();
    return cells;
}
const QStringList kNewRow = {"", "MINI-S3", "------", "", "", "5", "CPU", "Clear", "", "", "Hold"};
const QStringList kNoRow = QStringList(kMiniFieldsPerRow, "");

// An A3U module at 1A0: MINI, 12 stations, X100, Y100, retries 5, CPU, Hold, M9016, D9010, OFF.
void OneModule(Mini& f) {
    f.state.image.SetParamWord(1, 2312);
    const uint8_t record[12] = {0x1A, 0x7A, 0x45, 0x0C, 0x10, 0x00,
                                0x10, 0x04, 0xC1, 0x0C, 0x0A, 0x0D};
    std::copy(record, record + 12, f.state.image.bytes().begin() + 2322);
}

TEST(frmMINI, CountMakesAndRemovesRowsAndArrowsStayInTheirColumn) {
    Mini f("A3U");
    for (const std::string& fault : test::LayoutFaults(f.form.get()))
        EXPECT_NE(fault.find("no caption"), std::string::npos) << fault;  // rows without number
    EXPECT_EQ(test::Focused(), "Text1");
    TypeKeys(f->Text1, "02");  // a digit replaces the one the box holds
    EXPECT_EQ(f->Text1->text() + f->Label2[13]->text() + f->Label2[14]->text(), "22");
    EXPECT_EQ(Row(f, 2) + Row(f, 3), kNewRow + kNoRow);
    EXPECT_FALSE(f->Text2[22]->isEnabled());
    EXPECT_TRUE(f->DataChanged && !f.state.DataChanged);  // its own flag, not the caller's
    // The upper arrow raises the count; lowering and raising it again renews a row.
    TypeKeys(f->Text2[11], "100");
    f->VScroll1->UpButton()->click();
    EXPECT_EQ(f->Text1->text(), "3");
    EXPECT_EQ(Row(f, 3), kNewRow);
    TypeKeys(f->Text1, "1");
    EXPECT_TRUE(Row(f, 2) == kNoRow && !f->Text2[11]->isEnabled());
    TypeKeys(f->Text1, "2");
    EXPECT_EQ(Row(f, 2), kNewRow);
    PressKey(f->Text1, Qt::Key_Backspace);  // an emptied box keeps the rows until a number
    EXPECT_EQ(f->Label2[13]->text(), "2");
    // clang-format off
    const struct { int from, key; const char* to; } moves[] = {
        {3, Qt::Key_Down, "Text2(14)"}, {14, Qt::Key_Down, "Text2(14)"},
        {14, Qt::Key_Right, "Text2(15)"}, {15, Qt::Key_Up, "Text2(4)"}, {4, Qt::Key_Up, "Text1"}};
    // clang-format on
    for (const auto& m : moves) {
        f->Text2[m.from]->setFocus();
        PressKey(f->Text2[m.from], m.key);
        EXPECT_EQ(test::Focused(), m.to) << m.from;
    }
    f->Text2[kLineError]->setFocus();  // the help lines of the field with the focus
    EXPECT_EQ(f->Label3[2]->text(), "0: Test message   1: Hold (send data)    2: OFF data");
    f->Text2[kDetection]->setFocus();
    EXPECT_EQ(f->Label3[0]->text() + "|" + f->Label3[2]->text(), "Detected|");
    TypeKeys(f->Text1, "9");
    EXPECT_EQ(Row(f, 1), kNoRow);
}

TEST(frmMINI, RefusedCellsArePaintedAndCancelLeavesTheImage) {
    Mini f("A3U", OneModule);
    EXPECT_EQ(Row(f, 1)[kDetection] + " " + f->Text2[11]->text(), "M9016 ");
    EXPECT_FALSE(f->DataChanged);  // loading is no edit
    TypeKeys(f->Text1, "2");
    Retype(f->Text2[0], "108");
    TypeKeys(f->Text2[11 + kStations], "5");  // a MINI-S3 keeps "------"
    EXPECT_EQ(f->Text2[11 + kStations]->text(), "------");
    TypeKeys(f->Text2[11 + kModel], "0");  // MINI: no number of stations yet
    TypeKeys(f->Text2[11], "800");
    PressKey(f->Text2[11], Qt::Key_End);
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{2, 3, 11}));
    for (int i = 0; i < kMiniCells; ++i)
        EXPECT_EQ(Yellow(f->Text2[i]), i == 0 || i == 11 || i == 13) << i;
    EXPECT_FALSE(f.Closed());
    Retype(f->Text2[0], "100");
    PressKey(f->Text2[0], Qt::Key_End);  // each check starts from clean colours
    EXPECT_FALSE(Yellow(f->Text2[0]));
    f.messages.Then(MessageButton::Yes);
    f->Clear->click();
    EXPECT_EQ(QStringList{f->Text1->text()} + Row(f, 1), QStringList{"0"} + kNoRow);
    f->Cancel->click();  // message 1 answered No by default
    EXPECT_FALSE(f.Closed());
    f.messages.Then(MessageButton::Yes);
    f->Cancel->click();
    EXPECT_TRUE(f.Closed());
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{2, 3, 11, 2, 3, 12, 10, 1, 1}));
    EXPECT_EQ(f.state.image, f.loaded);
}

}  // namespace
}  // namespace gantrix
