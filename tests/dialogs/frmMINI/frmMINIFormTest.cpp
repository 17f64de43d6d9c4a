#include "dialogs/frmMINI/frmMINI.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

#include "common/qt/DialogRegistry.h"
#include "common/qt/FormControls.h"
#include "common/qt/SpinButton.h"
#include "support/ModalDriver.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::PressKey;
using test::TypeKeys;

struct Open {
    ModuleState state;
    test::ScriptedMessages messages;
    std::unique_ptr<frmMINI> form;

    explicit Open(const std::string& cpu, const ParameterImage* image = nullptr)
        : state(test::StateFor(cpu)) {
        state.Presenter = &messages;
        if (image) state.image = *image;
        form = std::make_unique<frmMINI>(state);
        form->show();
        form->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
    QStringList Row(int m) const {
        QStringList cells;
        for (int f = 0; f < kMiniFieldsPerRow; ++f) {
            cells << form->Text2[kMiniFieldsPerRow * (m - 1) + f]->text();
        }
        return cells;
    }
};

const QStringList kNewRow = {"", "MINI-S3", "------", "", "", "5", "CPU", "Clear", "", "", "Hold"};
const QStringList kNoRow = QStringList(kMiniFieldsPerRow, "");

const std::vector<uint8_t> kExampleU = {0x1A, 0x7A, 0x45, 0x0C, 0x10, 0x00,
                                        0x10, 0x04, 0xC1, 0x0C, 0x0A, 0x0D};

TEST(MINIForm, CountMakesAndRemovesRows) {
    Open open("A3U");
    frmMINI& f = *open.form;
    EXPECT_EQ(f.Text1->text(), "0");
    EXPECT_EQ(QApplication::focusWidget(), f.Text1);
    // Every control has its own place; each caption stands over its column.
    const QList<QWidget*> controls = f.findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
    for (QWidget* a : controls) {
        for (QWidget* b : controls) {
            EXPECT_TRUE(a == b || !a->geometry().intersects(b->geometry()))
                << a->objectName().toStdString() << " " << b->objectName().toStdString();
        }
    }
    for (int c = 0; c < kMiniFieldsPerRow; ++c) {
        EXPECT_NEAR(f.Label2[c]->geometry().center().x(), f.Text2[c]->geometry().center().x(), 2);
    }
    TypeKeys(f.Text1, "2");  // a digit replaces the one the box holds
    EXPECT_EQ(f.Text1->text(), "2");
    EXPECT_EQ(f.Label2[13]->text(), "2");
    EXPECT_EQ(f.Label2[14]->text(), "");
    EXPECT_EQ(open.Row(1), kNewRow);
    EXPECT_EQ(open.Row(2), kNewRow);
    EXPECT_EQ(open.Row(3), kNoRow);
    EXPECT_FALSE(f.Text2[22]->isEnabled());
    EXPECT_TRUE(f.DataChanged);
    EXPECT_FALSE(open.state.DataChanged);  // its own flag, not the caller's

    // The upper arrow raises the count; lowering and raising it again renews a row.
    TypeKeys(f.Text2[11], "100");
    QTest::mouseClick(f.VScroll1->UpButton(), Qt::LeftButton);
    EXPECT_EQ(f.Text1->text(), "3");
    EXPECT_EQ(open.Row(3), kNewRow);
    TypeKeys(f.Text1, "1");
    EXPECT_EQ(open.Row(2), kNoRow);
    EXPECT_FALSE(f.Text2[11]->isEnabled());
    TypeKeys(f.Text1, "2");
    EXPECT_EQ(open.Row(2), kNewRow);
    // An emptied box keeps the rows until a number comes; 9 leaves none.
    PressKey(f.Text1, Qt::Key_Backspace);
    EXPECT_EQ(f.Label2[13]->text(), "2");
    // Up and Down stay in their column; Left and Right follow the field order.
    // clang-format off
    const struct { int from, key, to; } moves[] = {  // cells, -1 for Text1
        {3, Qt::Key_Down, 14}, {14, Qt::Key_Down, 14}, {14, Qt::Key_Right, 15},
        {15, Qt::Key_Up, 4}, {4, Qt::Key_Up, -1}};
    // clang-format on
    for (const auto& m : moves) {
        f.Text2[m.from]->setFocus();
        PressKey(f.Text2[m.from], m.key);
        EXPECT_EQ(QApplication::focusWidget(), m.to < 0 ? f.Text1 : f.Text2[m.to]) << m.from;
    }
    TypeKeys(f.Text1, "9");
    EXPECT_EQ(open.Row(1), kNoRow);
}

TEST(MINIForm, TypedModuleIsSavedIntoBothAreasOfAUType) {
    Open open("A3U");
    frmMINI& f = *open.form;
    TypeKeys(f.Text1, "1");
    PressKey(f.Text1, Qt::Key_Return);
    // Keys typed per field, Enter after each; the selection cells take a digit.
    const char* keys[kMiniFieldsPerRow] = {"1a0g", "0", "12x",   "x100",  "y100z", "",
                                           "1",    "0", "m9016", "d9010", "2"};
    for (int i = 0; i < kMiniFieldsPerRow; ++i) {
        EXPECT_EQ(QApplication::focusWidget(), f.Text2[i]);
        QTest::keyClicks(f.Text2[i], keys[i]);
        PressKey(f.Text2[i], Qt::Key_Return);
    }
    EXPECT_EQ(open.Row(1), (QStringList{"1A0", "MINI", "12", "X100", "Y100", "5", "CPU", "Hold",
                                        "M9016", "D9010", "OFF"}));
    EXPECT_EQ(QApplication::focusWidget(), f.OK);  // after the last cell of the last row
    f.Text2[kLineError]->setFocus();               // its help has a third line
    EXPECT_EQ(f.Label3[2]->text(), "0: Test message   1: Hold (send data)    2: OFF data");
    f.Text2[kDetection]->setFocus();
    EXPECT_EQ(f.Label3[0]->text() + "|" + f.Label3[2]->text(), "Detected|");

    const ParameterImage before = open.state.image;
    PressKey(f.Text2[kDetection], Qt::Key_End);
    EXPECT_FALSE(f.isVisible());
    EXPECT_TRUE(open.state.ParamChanged);
    for (int first : {2322, 544}) {
        const auto& bytes = open.state.image.bytes();
        EXPECT_EQ(std::vector<uint8_t>(bytes.begin() + first, bytes.begin() + first + 12),
                  kExampleU);
    }
    // The low bytes of the two count words and the two records.
    EXPECT_EQ(test::DifferingBytes(before, open.state.image).size(), 2u + 2 * 12);
}

TEST(MINIForm, RefusedCellsAreReportedInOrderAndPaintedYellow) {
    Open open("A2U");
    frmMINI& f = *open.form;
    const ParameterImage before = open.state.image;
    TypeKeys(f.Text1, "2");
    TypeKeys(f.Text2[0], "108");
    TypeKeys(f.Text2[1], "0");  // MINI: no number of stations yet
    TypeKeys(f.Text2[11], "1000");
    TypeKeys(f.Text2[11 + kStations], "5");  // a MINI-S3 keeps "------"
    EXPECT_EQ(f.Text2[11 + kStations]->text(), "------");
    PressKey(f.Text2[11], Qt::Key_End);
    EXPECT_EQ(open.messages.Numbers(), (std::vector<int>{2, 3, 11}));
    for (int i : {0, 2, 11}) EXPECT_TRUE(HasErrorColor(f.Text2[i])) << i;
    EXPECT_FALSE(HasErrorColor(f.Text2[kModel]));
    EXPECT_TRUE(f.isVisible());
    EXPECT_EQ(open.state.image, before);

    // Corrected, the module is saved; each check starts from clean colours.
    PressKey(f.Text2[0], Qt::Key_Backspace);
    QTest::keyClicks(f.Text2[0], "0");
    TypeKeys(f.Text2[kStations], "64");
    f.Text2[11]->selectAll();
    QTest::keyClicks(f.Text2[11], "3F0");
    f.OK->click();
    EXPECT_FALSE(f.isVisible());
    EXPECT_FALSE(HasErrorColor(f.Text2[0]));
    EXPECT_EQ(open.state.image.GetParamWord(2312), 2);
}

TEST(MINIForm, OkWithoutEditChangesNoByteButTheAAreaOfAUType) {
    for (const char* cpu : {"A2A", "A3A", "A2U", "A3U", "A4U"}) {
        ModuleState state = test::StateFor(cpu);
        test::ModalDriver driver;
        driver.On("frmMINI", [](QWidget* dialog) { PressKey(dialog->focusWidget(), Qt::Key_End); });
        driver.Run([&] { EXPECT_TRUE(OpenDialog("frmMINI", state)); });
        EXPECT_EQ(test::DifferingBytes(test::DefaultImage(cpu), state.image), std::vector<int>{})
            << cpu;
        EXPECT_TRUE(state.ParamChanged) << cpu;
    }
    // A U type writes what it read from the U area into the A area too.
    ParameterImage image = test::DefaultImage("A4U");
    image.SetParamWord(1, 2312);
    std::copy(kExampleU.begin(), kExampleU.end(), image.bytes().begin() + 2322);
    Open open("A4U", &image);
    open.form->OK->click();
    std::vector<int> aArea = {534};
    for (int i = 544; i < 556; ++i) aArea.push_back(i);
    EXPECT_EQ(test::DifferingBytes(image, open.state.image), aArea);
}

TEST(MINIForm, CancelAsksAfterAnEditAndClearEmptiesTheRows) {
    ParameterImage image = test::DefaultImage("A3U");
    image.SetParamWord(1, 2312);
    std::copy(kExampleU.begin(), kExampleU.end(), image.bytes().begin() + 2322);
    {
        Open open("A3U", &image);
        EXPECT_EQ(open.Row(1)[0], "1A0");
        open.form->Cancel->click();  // loading is no edit: closes without a question
        EXPECT_FALSE(open.form->isVisible());
        EXPECT_TRUE(open.messages.Numbers().empty());
    }
    Open open("A3U", &image);
    frmMINI& f = *open.form;
    open.messages.Then(MessageButton::Yes);
    f.Clear->click();
    EXPECT_EQ(f.Text1->text(), "0");
    EXPECT_EQ(open.Row(1), kNoRow);
    f.Cancel->click();  // message 1 answered No by default
    EXPECT_TRUE(f.isVisible());
    open.messages.Then(MessageButton::Yes);
    f.Cancel->click();
    EXPECT_FALSE(f.isVisible());
    EXPECT_EQ(open.messages.Numbers(), (std::vector<int>{12, 10, 1, 1}));
    EXPECT_EQ(open.state.image, image);
}

}  // namespace
}  // namespace gantrix
