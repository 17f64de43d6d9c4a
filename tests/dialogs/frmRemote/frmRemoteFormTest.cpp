// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmRemote/frmRemote.h"

#include <QRadioButton>
#include <QToolButton>

#include "common/qt/SpinButton.h"
#include "support/FormFixture.h"

namespace gantrix {
namespace {

using test::Child;
using test::PressKey;
using test::TypeKeys;
using test::Yellow;
using Remote = test::Opened<frmRemote>;

TEST(frmRemote, FreshTableOpensWith64StationsRefusesOverlapsAndCancelKeepsTheImage) {
    Remote f("A2C", [](Remote& f) { std::fill_n(f.state.image.data() + 142, 18, 255); });
    EXPECT_TRUE(f->Text1->text() == "64" && f->OnlineMode[0]->isChecked());
    for (QLineEdit* cell : f->Text2) EXPECT_EQ(cell->text(), "");
    EXPECT_EQ(test::Focused(), "Text1");
    TypeKeys(f->Text1, "6");  // over the total shown selected: a change of its own
    EXPECT_TRUE(f->Text1->text() == "6" && f->DataChanged);
    TypeKeys(f->Text1, "4");
    TypeKeys(f->Text1, "a");      // discarded
    TypeKeys(f->Text2[14], "1");  // a protocol needs a start
    EXPECT_EQ(f->Text1->text() + f->Text2[14]->text(), "64");
    TypeKeys(f->Text2[0], "6x23");  // a letter is discarded, two digits at most
    PressKey(f->Text2[0], Qt::Key_Return);
    TypeKeys(QApplication::focusWidget(), "1a");  // the protocol beside it: 0 or 1
    for (Qt::Key key : {Qt::Key_Backspace, Qt::Key_Delete}) PressKey(f->Text2[14], key);
    EXPECT_EQ(f->Text2[0]->text() + f->Text2[14]->text(), "62Non-procedure");
    EXPECT_TRUE(f->DataChanged && !f.state.DataChanged);  // its own flag, not the caller's
    // Entries 2 and 3 share stations 3 and 4.
    for (const auto& [e, start] : {std::pair{1, "1"}, {2, "3"}}) {
        TypeKeys(f->Text2[e], start);
        TypeKeys(f->Text2[e + 14], "0");
    }
    EXPECT_EQ(f->Text2[15]->text(), "MINI Standard");
    PressKey(f->Text2[16], Qt::Key_End);
    EXPECT_EQ(f.messages.Numbers(), std::vector<int>{11});  // one box, two fields
    for (int i = 0; i < 28; ++i) EXPECT_EQ(Yellow(f->Text2[i]), i == 0 || i == 2) << i;
    f->Text2[2]->clear();  // no start: no protocol
    EXPECT_EQ(f->Text2[16]->text(), "");
    f->VScroll1->UpButton()->click();  // the upper arrow raises the total
    EXPECT_EQ(f->Text1->text(), "65");
    f->Text1->clear();
    f->VScroll1->UpButton()->click();  // an empty total starts from the spin button's end
    EXPECT_EQ(f->Text1->text(), "0");
    f->OnlineMode[2]->click();
    f->Cancel->click();  // No
    EXPECT_FALSE(f.Closed());
    f.messages.Then(MessageButton::Yes);
    f->Clear->click();
    QString cleared = f->Text1->text();
    for (int i : {0, 1, 14, 15}) cleared += f->Text2[i]->text();
    EXPECT_EQ(cleared, "64");
    EXPECT_TRUE(f->OnlineMode[0]->isChecked());
    f.messages.Then(MessageButton::Yes);
    f->Cancel->click();
    EXPECT_TRUE(f.Closed());
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{11, 1, 12, 10, 1}));
    EXPECT_EQ(f.state.image, f.loaded);
}

TEST(frmRemote, EnterAndArrowsMoveThroughTheTable) {
    Remote f("A2C", [](Remote& f) { f.state.image[144] = 7; });  // entry 2 filled
    // clang-format off
    const struct { const char* from; Qt::Key key; const char* to; int caret = 0; /* -1: at the end */ }
    moves[] = {
        {"Text1", Qt::Key_Return, "OnlineMode(0)"}, {"OnlineMode(0)", Qt::Key_Return, "Text2(0)"},
        {"Text2(0)", Qt::Key_Return, "Text2(1)"},   // empty: the next start
        {"Text2(1)", Qt::Key_Return, "Text2(15)"},  // filled: its protocol
        {"Text2(15)", Qt::Key_Return, "Text2(2)"}, {"Text2(27)", Qt::Key_Return, "OK"},
        {"Text1", Qt::Key_Down, "OnlineMode(0)"}, {"Text1", Qt::Key_Right, "Text2(0)", -1},
        {"Text2(5)", Qt::Key_Down, "Text2(6)"}, {"Text2(6)", Qt::Key_Down, "Text2(6)"}, {"Text2(8)", Qt::Key_Up, "Text2(7)"},
        {"Text2(15)", Qt::Key_Right, "Text2(8)", -1}, {"Text2(22)", Qt::Key_Left, "Text2(8)"},
        {"Text2(1)", Qt::Key_Left, "Text2(1)", 1},  // inside the text the caret moves
        {"Text2(27)", Qt::Key_Down, "Clear"}};
    // clang-format on
    for (const auto& m : moves) {
        QWidget* from = Child(f.form.get(), m.from);
        from->setFocus();
        if (auto* box = qobject_cast<QLineEdit*>(from))
            box->setCursorPosition(m.caret < 0 ? box->text().size() : m.caret);
        PressKey(from, m.key);
        EXPECT_EQ(test::Focused(), m.to) << m.from << " " << m.key;
    }
    EXPECT_EQ(f->Text1->text(), "64");  // Enter types nothing
}

}  // namespace
}  // namespace gantrix
