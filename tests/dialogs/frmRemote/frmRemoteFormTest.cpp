#include "dialogs/frmRemote/frmRemote.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QToolButton>

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
    std::unique_ptr<frmRemote> form;
    ParameterImage opened;  // the image before the dialog loaded

    explicit Open(const std::vector<std::pair<int, uint8_t>>& bytes = {})
        : state(test::StateFor("A2C")) {
        state.Presenter = &messages;
        for (const auto& [index, value] : bytes) state.image[index] = value;
        opened = state.image;
        form = std::make_unique<frmRemote>(state);
        form->show();
        form->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
};

QWidget* Focus() {
    return QApplication::focusWidget();
}

TEST(RemoteForm, FreshTableOpensWith64StationsAndRefusesStart62) {
    std::vector<std::pair<int, uint8_t>> fresh;
    for (int i = 142; i <= 159; ++i) fresh.push_back({i, 255});
    Open open(fresh);
    frmRemote& f = *open.form;
    EXPECT_EQ(f.Text1->text(), "64");
    EXPECT_TRUE(f.OnlineMode[0]->isChecked());
    for (QLineEdit* cell : f.Text2) EXPECT_EQ(cell->text(), "");
    EXPECT_EQ(Focus(), f.Text1);
    TypeKeys(f.Text1, "a");  // discarded
    EXPECT_EQ(f.Text1->text(), "64");

    TypeKeys(f.Text2[0], "6x23");  // a letter is discarded, two digits at most
    PressKey(f.Text2[0], Qt::Key_Return);
    EXPECT_EQ(Focus(), f.Text2[14]);
    TypeKeys(f.Text2[14], "1");
    EXPECT_EQ(f.Text2[14]->text(), "Non-procedure");
    for (int e : {1, 2}) {  // entries 2 and 3 share stations 3 and 4
        TypeKeys(f.Text2[e], e == 1 ? "1" : "3");
        TypeKeys(f.Text2[e + 14], "0");
    }
    PressKey(f.Text2[16], Qt::Key_End);
    EXPECT_EQ(open.messages.Numbers(), std::vector<int>{11});  // one box, two fields
    for (int e : {0, 1, 2}) EXPECT_EQ(HasErrorColor(f.Text2[e]), e != 1) << e;
    EXPECT_TRUE(f.isVisible());
    EXPECT_EQ(open.state.image, open.opened);

    f.Text2[2]->clear();
    f.Text2[0]->selectAll();
    TypeKeys(f.Text2[0], "61");
    f.OK->click();
    EXPECT_FALSE(f.isVisible());
    EXPECT_EQ(std::vector<int>(open.state.image.data() + 141, open.state.image.data() + 160),
              (std::vector<int>{0, 0, 61, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 64}));
    EXPECT_TRUE(open.state.ParamChanged);
}

TEST(RemoteForm, ProtocolCellsTakeOnlyTheKeys0And1BesideAStart) {
    Open open;
    frmRemote& f = *open.form;
    QLineEdit* protocol = f.Text2[14 + 3];
    TypeKeys(protocol, "1");
    EXPECT_EQ(protocol->text(), "");  // no start yet
    TypeKeys(f.Text2[3], "12");
    TypeKeys(protocol, "1a");
    EXPECT_EQ(protocol->text(), "Non-procedure");
    for (Qt::Key key : {Qt::Key_Backspace, Qt::Key_Delete}) PressKey(protocol, key);
    EXPECT_EQ(protocol->text(), "Non-procedure");
    TypeKeys(protocol, "0");
    EXPECT_EQ(protocol->text(), "MINI Standard");
    f.Text2[3]->clear();  // no start: no protocol
    EXPECT_EQ(protocol->text(), "");
    EXPECT_TRUE(f.DataChanged);
    EXPECT_FALSE(open.state.DataChanged);  // its own flag, not the caller's
}

TEST(RemoteForm, EnterAndArrowsMoveThroughTheTable) {
    Open open({{144, 7}});  // entry 2 filled
    frmRemote& f = *open.form;
    const struct {
        QWidget* from;
        Qt::Key key;
        QWidget* to;
        int caret = 0;  // -1: at the end of the text
    } moves[] = {
        // clang-format off
        {f.Text1, Qt::Key_Return, f.OnlineMode[0]},   {f.OnlineMode[0], Qt::Key_Return, f.Text2[0]},
        {f.Text2[0], Qt::Key_Return, f.Text2[1]},   // empty: the next start
        {f.Text2[1], Qt::Key_Return, f.Text2[15]},  // filled: its protocol
        {f.Text2[15], Qt::Key_Return, f.Text2[2]},    {f.Text2[27], Qt::Key_Return, f.OK},
        {f.Text1, Qt::Key_Down, f.OnlineMode[0]},     {f.Text1, Qt::Key_Right, f.Text2[0], -1},
        {f.Text2[0], Qt::Key_Down, f.Text2[1]},       {f.Text2[6], Qt::Key_Down, f.Text2[6]},
        {f.Text2[7], Qt::Key_Up, f.Text2[7]},         {f.Text2[8], Qt::Key_Up, f.Text2[7]},
        {f.Text2[1], Qt::Key_Right, f.Text2[15], -1}, {f.Text2[15], Qt::Key_Right, f.Text2[8], -1},
        {f.Text2[1], Qt::Key_Left, f.Text2[1], 1},  // inside the text the caret moves
        {f.Text2[8], Qt::Key_Left, f.Text2[15]},      {f.Text2[22], Qt::Key_Left, f.Text2[8]},
        {f.Text2[27], Qt::Key_Down, f.Clear},
        // clang-format on
    };
    for (const auto& m : moves) {
        m.from->setFocus();
        if (auto* box = qobject_cast<QLineEdit*>(m.from)) {
            box->setCursorPosition(m.caret < 0 ? box->text().size() : m.caret);
        }
        PressKey(m.from, m.key);
        EXPECT_EQ(Focus(), m.to) << m.from->objectName().toStdString() << " " << m.key;
    }
    EXPECT_EQ(f.Text1->text(), "64");  // Enter types nothing
}

TEST(RemoteForm, OkOnTheDefaultImageWritesNothingNew) {
    Open open;
    open.form->OK->click();
    EXPECT_FALSE(open.form->isVisible());
    for (int index : test::DifferingBytes(open.opened, open.state.image)) {
        EXPECT_EQ(index, 141);
    }
}

TEST(RemoteForm, CancelAfterAnEditAsksAndKeepsTheImage) {
    // Erased start bytes beside set ones: loading rewrites nothing.
    Open open({{143, 9}, {144, 255}, {145, 255}, {159, 20}});
    frmRemote& f = *open.form;
    EXPECT_EQ(f.Text2[0]->text(), "9");
    EXPECT_EQ(f.Text2[14]->text(), "MINI Standard");
    const auto up = [&f] { QTest::mouseClick(f.VScroll1->UpButton(), Qt::LeftButton); };
    up();  // the upper arrow raises the total
    EXPECT_EQ(f.Text1->text(), "21");
    f.Text1->clear();
    up();  // an empty total starts from the spin button's end value
    EXPECT_EQ(f.Text1->text(), "0");
    f.OnlineMode[2]->click();
    f.Cancel->click();  // No
    EXPECT_TRUE(f.isVisible());
    EXPECT_EQ(f.Text1->text(), "0");
    open.messages.Then(MessageButton::Yes);
    f.Clear->click();
    EXPECT_EQ(f.Text2[0]->text(), "");
    EXPECT_EQ(f.Text2[14]->text(), "");
    EXPECT_TRUE(f.OnlineMode[0]->isChecked());
    open.messages.Then(MessageButton::Yes);
    f.Cancel->click();
    EXPECT_FALSE(f.isVisible());
    EXPECT_EQ(open.messages.Numbers(), (std::vector<int>{1, 12, 10, 1}));
    EXPECT_EQ(open.state.image, open.opened);
}

}  // namespace
}  // namespace gantrix
