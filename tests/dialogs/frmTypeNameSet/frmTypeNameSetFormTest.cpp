// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmTypeNameSet/frmTypeNameSet.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>

#include "support/FormFixture.h"

namespace gantrix {
namespace {

using test::PressKey;
using test::TypeKeys;

// The model-name dialog on its own over slots 0..7.
struct TypeNames {
    ModuleState state = test::StateFor("A3 ");
    IOLayoutFields assignment;
    std::unique_ptr<frmTypeNameSet> form;
    explicit TypeNames(std::vector<const char*> codes, std::vector<const char*> names = {}) {
        for (size_t i = 0; i < codes.size(); ++i) assignment.codes[i] = codes[i];
        for (size_t i = 0; i < names.size(); ++i) assignment.names[i] = names[i];
        form = std::make_unique<frmTypeNameSet>(state, assignment);
        form->show();
        form->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
    QLineEdit* Code(int row) const { return form->Text1[row]; }
    QComboBox* Name(int row) const { return form->Combo1[row]; }
};

TEST(frmTypeNameSet, TypedNamesAreCleanedAndACodeChangeEmptiesTheName) {
    TypeNames f({"X16", "X32", ""}, {"", "AX11"});
    EXPECT_TRUE(f.assignment.namesEdited);
    EXPECT_EQ(test::LayoutFaults(f.form.get()), std::vector<std::string>{});
    EXPECT_EQ(test::Focused(), "Text1(0)");   // the page opens on its first row
    EXPECT_EQ(f.Name(0)->currentText(), "");  // offered, not chosen
    TypeKeys(f.Name(0), "ax6/0");
    EXPECT_EQ(f.Name(0)->currentText(), "AX60");
    f.Name(0)->lineEdit()->setText("ay/10 a");  // text that arrives without keys (pasted)
    EXPECT_EQ(f.Name(0)->currentText(), "AY10 A");
    f.Name(0)->lineEdit()->setCursorPosition(2);
    QTest::keyClicks(f.Name(0)->lineEdit(), "bc");  // the caret stays where it was typed
    EXPECT_EQ(f.Name(0)->currentText(), "AYBC10 A");
    TypeKeys(f.Name(2), "AX10");  // no module, no name
    EXPECT_EQ(f.Name(2)->currentText(), "");
    TypeKeys(f.Code(0), "a");  // X16 to Y16
    EXPECT_EQ(f.Code(0)->text() + f.Name(0)->currentText(), "Y16");
    EXPECT_EQ(f.Name(0)->itemText(12), "AY80");
    EXPECT_EQ(test::Focused(), "Text1(1)");
    TypeKeys(f.Code(1), "7");  // the same code again keeps the name
    EXPECT_EQ(f.Name(1)->currentText(), "AX11");
    f.Name(0)->setCurrentIndex(5);
    PressKey(f.Code(2), Qt::Key_End);
    EXPECT_FALSE(f.form->isVisible());
    EXPECT_EQ(f.assignment.names[0] + f.assignment.codes[0], "AY22Y16");
    EXPECT_TRUE(f.state.DataChanged);
}

TEST(frmTypeNameSet, PagesOfEightStopAtBothEndsAndKeepTheirEdits) {
    TypeNames f({});
    f.assignment.names[63] = "AD58";  // shown when its page comes
    f.assignment.codes[63] = "F64";
    PressKey(f.Code(0), Qt::Key_PageDown);
    EXPECT_EQ(f.form->Label2[0]->text(), "8");
    TypeKeys(f.Code(0), "6");
    TypeKeys(f.Name(0), "ax40");
    for (int i = 0; i < 7; ++i) f.form->ChangePage[1]->click();
    EXPECT_EQ(f.form->Label2[7]->text(), "63");
    EXPECT_FALSE(f.form->ChangePage[1]->isEnabled());
    EXPECT_EQ(f.Name(7)->currentText(), "AD58");
    f.form->ChangePage[0]->click();
    for (int i = 0; i < 7; ++i) PressKey(f.Code(0), Qt::Key_PageUp);
    EXPECT_EQ(f.form->Label2[0]->text(), "0");
    EXPECT_FALSE(f.form->ChangePage[0]->isEnabled());
    PressKey(f.Code(0), Qt::Key_PageDown);
    EXPECT_EQ(f.Name(0)->currentText(), "AX40");
    PressKey(f.Code(0), Qt::Key_Escape);  // closes as Close does
    EXPECT_EQ(f.assignment.codes[8], "X16");
    EXPECT_EQ(f.assignment.names[8], "AX40");
    TypeNames g({"X16"});  // paging and closing alone are no edit
    PressKey(g.Code(0), Qt::Key_PageDown);
    g.form->Close->click();
    EXPECT_FALSE(g.state.DataChanged);
}

TEST(frmTypeNameSet, EnterAndArrowsMoveThroughTheGrid) {
    TypeNames f({"X16", "X16", "X16", "X16", "X16", "X16", "X16", "X16"});
    const std::tuple<QWidget*, Qt::Key, QString> moves[] = {
        {f.Name(2), Qt::Key_Return, "Text1(3)"}, {f.Code(3), Qt::Key_Return, "Text1(4)"},
        {f.Name(7), Qt::Key_Return, "Close"},    {f.Code(3), Qt::Key_Right, "Combo1(3)"},
        {f.Name(3), Qt::Key_Left, "Text1(3)"},   {f.Code(3), Qt::Key_Left, "Text1(3)"},
        {f.Name(3), Qt::Key_Down, "Combo1(4)"},  {f.Code(0), Qt::Key_Up, "Text1(0)"},
        {f.Code(1), Qt::Key_Up, "Text1(0)"},     {f.Code(7), Qt::Key_Down, "Close"},
    };
    for (const auto& [from, key, to] : moves) {
        from->setFocus();
        PressKey(from, key);
        EXPECT_EQ(test::Focused(), to) << from->objectName().toStdString() << " " << key;
    }
    TypeKeys(f.Name(5), "ax");  // inside a name Left moves the caret first
    PressKey(f.Name(5), Qt::Key_Left);
    EXPECT_EQ(f.Name(5)->lineEdit()->cursorPosition(), 1);
    EXPECT_EQ(test::Focused(), "Combo1(5)");
}

}  // namespace
}  // namespace gantrix
