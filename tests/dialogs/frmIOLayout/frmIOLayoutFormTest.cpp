// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmIOLayout/frmIOLayout.h"

#include <QLabel>
#include <QPushButton>

#include "common/qt/DialogRegistry.h"
#include "dialogs/frmTypeNameSet/TypeNameSetFields.h"
#include "store/CheckSum.h"
#include "support/FormFixture.h"
#include "support/ParameterModeRun.h"

namespace gantrix {
namespace {

using test::Child;
using test::PressKey;
using IoLayout = test::Opened<frmIOLayout>;

// Types as a person does: each key goes to the control that has the focus by then.
void TypeInto(QWidget* control, const QString& keys) {
    control->setFocus();
    for (const QChar key : keys) QTest::keyClicks(control->window()->focusWidget(), QString(key));
}

// Opens the model names with Type, runs edit on them and closes them with End.
void EditNames(IoLayout& f, const std::function<void(QWidget*)>& edit) {
    test::ModalDriver driver;
    driver.On("frmTypeNameSet", [&](QWidget* names) {
        edit(names);
        PressKey(names, Qt::Key_End);
    });
    driver.Run([&] { f->Type->click(); });
}

QStringList Codes(const IoLayout& f, int first, int count) {
    QStringList codes;
    for (int i = first; i < first + count; ++i) codes << f->Text1[i]->text();
    return codes;
}

TEST(frmIOLayout, OneKeySetsACodeAndMovesOnOtherKeysAreSwallowed) {
    IoLayout f("A3 ");
    TypeInto(f->Text1[0], "123456789ABCDEFGHabcdefgh");
    EXPECT_EQ(Codes(f, 0, 25),
              (QStringList{"S0",  "S16", "S32", "S48", "S64", "X16", "X32", "X48", "X64",
                           "Y16", "Y32", "Y48", "Y64", "F16", "F32", "F48", "F64", "Y16",
                           "Y32", "Y48", "Y64", "F16", "F32", "F48", "F64"}));
    EXPECT_EQ(test::Focused(), "Text1(25)");
    TypeInto(f->Text1[25], "Z/0I ");
    PressKey(f->Text1[24], Qt::Key_Backspace);
    EXPECT_EQ(Codes(f, 24, 2), (QStringList{"F64", ""}));
    EXPECT_EQ(test::Focused(), "Text1(25)");
    TypeInto(f->Text1[63], "5");  // the last field keeps the focus; Enter there goes to OK
    EXPECT_EQ(test::Focused(), "Text1(63)");
    PressKey(f->Text1[63], Qt::Key_Return);
    EXPECT_EQ(test::Focused(), "OK");
    PressKey(f->Text1[63], Qt::Key_Delete);  // takes a single slot's module out
    f->Text1[30]->setText("g");              // a key character that arrives without a key
    EXPECT_EQ(f->Text1[30]->text(), "F48");
    EXPECT_TRUE(f.state.DataChanged);
    PressKey(f->Text1[0], Qt::Key_End);
    EXPECT_TRUE(f.Closed());
    const uint8_t bytes[] = {0x10, 0x11, 0x12, 0x13, 0x14, 0x21, 0x22, 0x23, 0x24,
                             0x31, 0x32, 0x33, 0x34, 0x41, 0x42, 0x43, 0x44, 0x31,
                             0x32, 0x33, 0x34, 0x41, 0x42, 0x43, 0x44};
    ParameterImage expected = f.loaded;
    for (int i = 0; i < 25; ++i) expected[384 + i] = bytes[i];
    expected[384 + 30] = 0x43;
    expected[1071] = 1;
    EXPECT_EQ(test::DifferingBytes(f.state.image, expected), std::vector<int>{});
}

TEST(frmIOLayout, ArrowKeysMoveAcrossTheColumnsAndAlongTheSlots) {
    IoLayout f("A3 ");
    const std::tuple<int, Qt::Key, QString> moves[] = {
        {20, Qt::Key_Left, "Text1(4)"},   {4, Qt::Key_Left, "Text1(4)"},
        {36, Qt::Key_Right, "Text1(52)"}, {52, Qt::Key_Right, "Text1(52)"},
        {52, Qt::Key_Up, "Text1(51)"},    {15, Qt::Key_Down, "Text1(16)"},
        {0, Qt::Key_Up, "Text1(0)"},      {63, Qt::Key_Down, "OK"},
    };
    for (const auto& [from, key, to] : moves) {
        f->Text1[from]->setFocus();
        PressKey(f->Text1[from], key);
        EXPECT_EQ(test::Focused(), to) << from << " " << key;
    }
    EXPECT_FALSE(f.state.DataChanged);
}

TEST(frmIOLayout, PagingKeepsTheCodesOfBothPagesAndIsNoEdit) {
    IoLayout f("A3 ", [](IoLayout& f) {
        f.state.image[384 + 65] = 0x22;
        // Odd bytes load as what they tell; the main area never comes from the working file.
        f.state.image[384] = 0x10;
        f.state.image[385] = 0x25;
        f.state.image[386] = 0x52;
        std::vector<uint8_t> work = f.project.Read("param.tmp");
        work[1030] = 9;  // network data edited outside
        work[387] = 0x44;
        f.project.Write("param.tmp", work);
    });
    EXPECT_EQ(Codes(f, 0, 4), (QStringList{"S0", "X", "32", ""}));
    EXPECT_EQ(f.state.image[1030], 9);
    f->ChangePage->click();
    EXPECT_EQ(f->SlotNo[63]->text(), "127");
    EXPECT_EQ(f->ChangePage->text(), "Previous");
    EXPECT_EQ(f->Text1[1]->text(), "X32");
    for (const auto& [key, marker] :
         {std::pair{Qt::Key_PageUp, "0"}, {Qt::Key_PageUp, "64"}, {Qt::Key_PageDown, "0"}}) {
        PressKey(f->Text1[0], key);  // Page Up and Page Down each turn to the other page
        EXPECT_EQ(f->PageMarker->text(), marker);
    }
    EXPECT_FALSE(f.state.DataChanged);
    PressKey(f->Text1[1], Qt::Key_PageDown);
    TypeInto(f->Text1[63], "d");
    f->ChangePage->click();
    PressKey(f->Text1[0], Qt::Key_PageDown);
    EXPECT_EQ(f->Text1[63]->text(), "Y64");
    PressKey(f->Text1[1], Qt::Key_End);  // OK from the second page
    ParameterImage expected = f.loaded;
    expected[385] = 0x20;  // saved as the kind alone
    expected[386] = 0;
    expected[511] = 0x34;
    expected[1071] = 1;
    EXPECT_EQ(test::DifferingBytes(f.state.image, expected), std::vector<int>{});
}

TEST(frmIOLayout, ClearEmptiesEverySlotAndOkWritesIt) {
    IoLayout f("A3 ", [](IoLayout& f) {
        f.state.image[384] = 0x21;
        f.state.image[500] = 0x44;
        f.state.image[640] = 0;  // a name record, kept while the names are not shown
        f.state.image[1071] = 1;
    });
    f.messages.Then(MessageButton::Yes);
    PressKey(f->Clear, Qt::Key_Return);
    EXPECT_EQ(f->Text1[0]->text(), "");
    PressKey(f->Text1[5], Qt::Key_End);
    EXPECT_EQ(test::DifferingBytes(f.loaded, f.state.image), (std::vector<int>{384, 500, 1071}));
    EXPECT_EQ(f.state.image[1071], 0);
}

TEST(frmIOLayout, WithoutItsWorkingFileTheErrorIsShownAndNothingOpens) {
    test::TempProject project("A3 ");  // "param.tmp" only
    ModuleState state = test::StateFor("A3 ", project.Path());
    test::ScriptedMessages messages;
    state.Presenter = &messages;
    EXPECT_FALSE(test::OpensAModalWindow([&] { EXPECT_TRUE(OpenDialog("frmIOLayout", state)); }));
    ASSERT_EQ(messages.Numbers(), std::vector<int>{0});
    EXPECT_NE(messages.shown[0].text.find("param.$$$"), std::string::npos);
    EXPECT_EQ(state.image, test::DefaultImage("A3 "));
}

// Names are saved once shown, all 64 records, and only for a slot that keeps its module.
TEST(frmIOLayout, SlotsAndModelNamesFromTheMenuReachTheProjectFile) {
    test::TempProject project("A3 ");
    test::ModalDriver driver;
    driver
        .On("frmMenu", [](QWidget* menu) { PressKey(Child(menu, "MenuItem(3)"), Qt::Key_Return); })
        .On("frmIOLayout",
            [](QWidget* io) {
                TypeInto(Child(io, "Text1(0)"), "6a");  // slots 0 and 1
                PressKey(Child(io, "Text1(2)"), Qt::Key_PageDown);
                TypeInto(Child(io, "Text1(0)"), "h");  // slot 64
                PressKey(Child(io, "Text1(1)"), Qt::Key_PageUp);
                Child(io, "Type")->setFocus();
                PressKey(Child(io, "Type"), Qt::Key_Return);
            })
        .On("frmTypeNameSet",
            [](QWidget* names) {
                TypeInto(Child(names, "Combo1(0)"), "ax10");
                TypeInto(Child(names, "Combo1(1)"), "ay10a");
                TypeInto(Child(names, "Text1(2)"), "f");  // reaches the I/O page on End
                PressKey(Child(names, "Combo1(1)"), Qt::Key_End);
            })
        .On("frmIOLayout",
            [](QWidget* io) {
                PressKey(Child(io, "Text1(1)"), Qt::Key_Delete);
                PressKey(Child(io, "Text1(5)"), Qt::Key_End);
            })
        .On("frmMenu", [](QWidget* menu) { PressKey(Child(menu, "MenuItem(0)"), Qt::Key_End); });
    EXPECT_EQ(test::RunParameterMode(project, driver).result, 1);
    ParameterImage expected = test::DefaultImage("A3 ");
    expected[384] = 0x21;
    expected[386] = 0x42;
    expected[384 + 64] = 0x44;
    for (int slot = 0; slot < 64; ++slot) {  // all 64 records, blank after slot 0
        const ModelNameRecord record = PackModelName(slot ? "" : "AX10");
        for (int b = 0; b < 6; ++b) expected[640 + 6 * slot + b] = record[b];
    }
    expected[1071] = 1;
    SetCheckSum(expected, "A3 ", true);  // the flag changed the network block: its sum too
    EXPECT_EQ(test::DifferingBytes(expected, project.ParamTmp()), std::vector<int>{});
}

TEST(frmTypeNameSet, OnlyAModuleChangedAmongTheNamesMakesCancelAsk) {
    IoLayout g("A3 ", [](IoLayout& f) { f.state.image[384] = 0x21; });
    EditNames(g, [](QWidget* names) { TypeInto(Child(names, "Combo1(0)"), "a"); });
    g->Cancel->click();  // a typed name alone is no edit of the assignment
    EXPECT_TRUE(g.Closed());
    EXPECT_EQ(g.state.image, g.loaded);
    IoLayout k("A3 ");
    EditNames(k, [](QWidget* names) { TypeInto(Child(names, "Text1(1)"), "6"); });
    k.messages.Then(MessageButton::No);
    k->Cancel->click();
    EXPECT_FALSE(k.Closed());
    EXPECT_EQ(k.messages.Numbers(), std::vector<int>{1});
    // The names belong to the first page only: there the button stays and does nothing.
    PressKey(k->Text1[0], Qt::Key_PageDown);
    EXPECT_TRUE(k->Type->isEnabled());
    EXPECT_FALSE(test::OpensAModalWindow([&] { k->Type->click(); }));
}

}  // namespace
}  // namespace gantrix
