#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QPushButton>

#include "dialogs/frmIOLayout/IoLayoutTestSupport.h"
#include "dialogs/frmTypeNameSet/frmTypeNameSet.h"

namespace gantrix {
namespace {

using test::IoFixture;
using test::PressKey;
using test::TypeInto;
using MB = MessageButton;

// The model-name dialog on its own, over slots 0..7 with these codes and names.
struct NamesFixture {
    ModuleState state = test::StateFor("A3 ");
    IOLayoutFields assignment;
    std::unique_ptr<frmTypeNameSet> form;

    NamesFixture(std::vector<const char*> codes, std::vector<const char*> names = {}) {
        for (size_t i = 0; i < codes.size(); ++i) assignment.codes[i] = codes[i];
        for (size_t i = 0; i < names.size(); ++i) assignment.names[i] = names[i];
        form = std::make_unique<frmTypeNameSet>(state, assignment);
        form->show();
    }
    QLineEdit* Code(int row) const { return form->Text1[row]; }
    QComboBox* Name(int row) const { return form->Combo1[row]; }
    QString NameText(int row) const { return form->Combo1[row]->currentText(); }
    QWidget* Focus() const { return form->focusWidget(); }
};

TEST(frmTypeNameSet, TypedNamesAreCleanedAndACodeChangeEmptiesTheName) {
    NamesFixture f({"X16", "X32", ""}, {"", "AX11"});
    EXPECT_TRUE(f.assignment.namesEdited);
    EXPECT_EQ(f.Name(0)->count(), 9);
    EXPECT_EQ(f.NameText(0), "");  // offered, not chosen
    TypeInto(f.Name(0), "ax60-s");
    EXPECT_EQ(f.NameText(0), "AX60-S");
    TypeInto(f.Name(0), "/x12");
    EXPECT_EQ(f.NameText(0), "AX60-SX12");      // the slash dropped, nine at most
    f.Name(0)->lineEdit()->setText("ay/10 a");  // text that arrives without keys (pasted)
    EXPECT_EQ(f.NameText(0), "AY10 A");
    TypeInto(f.Name(2), "AX10");  // no module, no name
    f.Name(2)->lineEdit()->setText("AX10");
    EXPECT_EQ(f.NameText(2), "");

    TypeInto(f.Code(0), "a");  // X16 to Y16
    EXPECT_EQ(f.Code(0)->text(), "Y16");
    EXPECT_EQ(f.NameText(0), "");
    EXPECT_EQ(f.Name(0)->count(), 13);
    EXPECT_EQ(f.Name(0)->itemText(12), "AY80");
    EXPECT_EQ(f.Focus(), f.Code(1));
    TypeInto(f.Code(1), "7");  // the same code again keeps the name
    EXPECT_EQ(f.NameText(1), "AX11");
    f.Name(0)->setCurrentIndex(5);
    PressKey(f.Code(2), Qt::Key_End);
    EXPECT_FALSE(f.form->isVisible());
    EXPECT_EQ(f.assignment.names[0], "AY22");
    EXPECT_TRUE(f.state.DataChanged);
}

TEST(frmTypeNameSet, PagesOfEightStopAtBothEndsAndKeepTheirEdits) {
    NamesFixture f({});
    f.assignment.names[63] = "AD58";  // shown when its page comes
    f.assignment.codes[63] = "F64";
    PressKey(f.Code(0), Qt::Key_PageDown);
    EXPECT_EQ(f.form->Label2[0]->text(), "8");
    TypeInto(f.Code(0), "6");
    TypeInto(f.Name(0), "ax40");
    for (int i = 0; i < 7; ++i) f.form->ChangePage[1]->click();
    EXPECT_EQ(f.form->PageStart(), 56);
    EXPECT_FALSE(f.form->ChangePage[1]->isEnabled());
    EXPECT_EQ(f.NameText(7), "AD58");
    f.form->ChangePage[0]->click();
    for (int i = 0; i < 7; ++i) PressKey(f.Code(0), Qt::Key_PageUp);
    EXPECT_EQ(f.form->PageStart(), 0);
    EXPECT_FALSE(f.form->ChangePage[0]->isEnabled());
    PressKey(f.Code(0), Qt::Key_PageDown);
    EXPECT_EQ(f.NameText(0), "AX40");
    PressKey(f.Code(0), Qt::Key_Escape);  // closes as Close does
    EXPECT_EQ(f.assignment.codes[8], "X16");
    EXPECT_EQ(f.assignment.names[8], "AX40");

    NamesFixture g({"X16"});  // paging and closing alone are no edit
    PressKey(g.Code(0), Qt::Key_PageDown);
    g.form->Close->click();
    EXPECT_FALSE(g.state.DataChanged);
}

TEST(frmTypeNameSet, EnterAndArrowsMoveThroughTheGrid) {
    NamesFixture f({"X16", "X16", "X16", "X16", "X16", "X16", "X16", "X16"});
    const std::tuple<QWidget*, Qt::Key, QWidget*> moves[] = {
        {f.Name(2), Qt::Key_Return, f.Code(3)},     {f.Code(3), Qt::Key_Return, f.Code(4)},
        {f.Name(7), Qt::Key_Return, f.form->Close}, {f.Code(3), Qt::Key_Right, f.Name(3)},
        {f.Name(3), Qt::Key_Left, f.Code(3)},       {f.Code(3), Qt::Key_Left, f.Code(3)},
        {f.Name(3), Qt::Key_Down, f.Name(4)},       {f.Code(0), Qt::Key_Up, f.Code(0)},
        {f.Code(7), Qt::Key_Down, f.form->Close},
    };
    for (const auto& [from, key, to] : moves) {
        from->setFocus();
        PressKey(from, key);
        EXPECT_EQ(f.Focus(), to) << from->objectName().toStdString() << " " << key;
    }
    TypeInto(f.Name(5), "ax");  // inside a name Left moves the caret first
    PressKey(f.Name(5), Qt::Key_Left);
    EXPECT_EQ(f.Focus(), f.Name(5));
    EXPECT_TRUE(f.form->isVisible());
}

const ModelNameRecord kEmptyName = {0xC4, 0xE6, 0xC4, 0xE6, 0xC4, 0xE6};

TEST(frmTypeNameSet, FromTheIoAssignmentANameWithoutItsModuleIsDroppedOnSave) {
    IoFixture f("A3 ");
    f.Open();
    TypeInto(f.Field(4), "66");
    f.EditNames([](QWidget* names) {
        TypeInto(test::Child(names, "Combo1(4)"), "ax10");
        TypeInto(test::Child(names, "Combo1(5)"), "ax20");
        TypeInto(test::Child(names, "Text1(6)"), "f");  // reaches the I/O page on Close
    });
    EXPECT_EQ(f.Code(6), "F32");
    PressKey(f.Field(5), Qt::Key_Delete);
    PressKey(f.Field(5), Qt::Key_End);
    EXPECT_EQ(f.Record(4), PackModelName("AX10"));
    EXPECT_EQ(f.Record(5), kEmptyName);
    EXPECT_EQ(f.state.image[384 + 6], 0x42);
}

TEST(frmTypeNameSet, ShownNamesAreAllWrittenAndOnlyAModuleEditMakesCancelAsk) {
    // The default image has erased name records; once the names have been shown, OK writes
    // all 64 records, the empty ones as nine blanks.
    IoFixture f("A3 ");
    f.Open().EditNames([](QWidget*) {});
    EXPECT_FALSE(f.state.DataChanged);
    f.form->OK->click();
    const std::vector<int> diff = test::DifferingBytes(f.loaded, f.state.image);
    EXPECT_EQ(diff.size(), 384u);
    EXPECT_EQ(diff.front(), 640);
    EXPECT_EQ(diff.back(), 1023);
    EXPECT_EQ(f.Record(63), kEmptyName);

    // A typed name alone is no edit of the assignment: Cancel closes without a question.
    IoFixture g("A3 ", [](ParameterImage& image) { image[384] = 0x21; });
    g.Open().EditNames([](QWidget* names) { TypeInto(test::Child(names, "Combo1(0)"), "a"); });
    g.form->Cancel->click();
    EXPECT_FALSE(g.form->isVisible());
    EXPECT_TRUE(g.messages.Numbers().empty());
    EXPECT_EQ(g.state.image, g.loaded);

    // A module changed in the names dialog is one.
    IoFixture k("A3 ");
    k.Open().EditNames([](QWidget* names) { TypeInto(test::Child(names, "Text1(1)"), "6"); });
    k.messages.Then(MB::No).Then(MB::Yes);
    k.form->Cancel->click();
    EXPECT_TRUE(k.form->isVisible());
    k.form->Cancel->click();
    EXPECT_EQ(k.messages.Numbers(), (std::vector<int>{1, 1}));
    EXPECT_EQ(k.state.image, k.loaded);

    // The names belong to the first page only: there the button stays and does nothing.
    IoFixture h("A3 ");
    PressKey(h.Open().Field(0), Qt::Key_PageDown);
    EXPECT_TRUE(h.form->Type->isEnabled());
    EXPECT_FALSE(test::OpensAModalWindow([&] { h.form->Type->click(); }));
}

}  // namespace
}  // namespace gantrix
