#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>

#include "common/qt/DialogRegistry.h"
#include "dialogs/frmIOLayout/IoLayoutTestSupport.h"
#include "platform/rkcmnt/DeviceTable.h"

namespace gantrix {
namespace {

using test::IoFixture;
using test::PressKey;
using test::TypeInto;
using MB = MessageButton;

TEST(frmIOLayout, KeysSetCodesAndMoveOnOtherKeysAreSwallowed) {
    IoFixture f("A3 ");
    f.Open();
    TypeInto(f.Field(10), "h");
    EXPECT_EQ(f.Code(10), "F64");
    EXPECT_EQ(f.Focus(), f.Field(11));
    TypeInto(f.Field(11), "Z/0 ");
    EXPECT_EQ(f.Code(11), "");
    EXPECT_EQ(f.Focus(), f.Field(11));
    PressKey(f.Field(10), Qt::Key_Backspace);
    EXPECT_EQ(f.Code(10), "F64");

    TypeInto(f.Field(0), "16aE9c");
    EXPECT_EQ((QStringList{f.Code(0), f.Code(1), f.Code(2), f.Code(3), f.Code(4), f.Code(5)}),
              (QStringList{"S0", "X16", "Y16", "F16", "X64", "Y48"}));
    TypeInto(f.Field(63), "5");  // the last field keeps the focus; Enter there goes to OK
    EXPECT_EQ(f.Focus(), f.Field(63));
    PressKey(f.Field(63), Qt::Key_Return);
    EXPECT_EQ(f.Focus(), f.form->OK);
    PressKey(f.Field(10), Qt::Key_Delete);  // takes a single slot's module out
    EXPECT_EQ(f.Code(10), "");
    f.Field(30)->setText("g");  // a key character that arrives without a key
    EXPECT_EQ(f.Code(30), "F48");
    EXPECT_FALSE(f.Closed());
}

TEST(frmIOLayout, ArrowKeysMoveAcrossTheColumnsAndAlongTheSlots) {
    IoFixture f("A3 ");
    f.Open();
    const std::tuple<int, Qt::Key, int> moves[] = {
        // to -1: the OK button
        {20, Qt::Key_Left, 4},   {4, Qt::Key_Left, 4},   {36, Qt::Key_Right, 52},
        {52, Qt::Key_Right, 52}, {52, Qt::Key_Up, 51},   {15, Qt::Key_Down, 16},
        {0, Qt::Key_Up, 0},      {63, Qt::Key_Down, -1},
    };
    for (const auto& [from, key, to] : moves) {
        f.Field(from)->setFocus();
        PressKey(f.Field(from), key);
        EXPECT_EQ(f.Focus(), to < 0 ? static_cast<QWidget*>(f.form->OK) : f.Field(to)) << from;
    }
    EXPECT_FALSE(f.state.DataChanged);
}

TEST(frmIOLayout, PagingKeepsTheCodesOfBothPagesAndIsNoEdit) {
    IoFixture f("A3 ", [](ParameterImage& image) { image[384 + 65] = 0x22; });
    f.Open();
    f.form->ChangePage->click();
    EXPECT_EQ(f.form->SlotNo[63]->text(), "127");
    EXPECT_EQ(f.form->ChangePage->text(), "Previous");
    EXPECT_EQ(f.Code(1), "X32");
    // Page Up and Page Down each turn to the other page.
    for (const auto& [key, marker] :
         {std::pair{Qt::Key_PageUp, "0"}, {Qt::Key_PageUp, "64"}, {Qt::Key_PageDown, "0"}}) {
        PressKey(f.Field(0), key);
        EXPECT_EQ(f.form->PageMarker->text(), marker);
    }
    EXPECT_FALSE(f.state.DataChanged);

    TypeInto(f.Field(0), "6");
    PressKey(f.Field(1), Qt::Key_PageDown);
    EXPECT_EQ(f.form->PageMarker->text(), "64");
    TypeInto(f.Field(63), "d");
    f.form->ChangePage->click();
    EXPECT_EQ(f.Code(0), "X16");
    PressKey(f.Field(0), Qt::Key_PageDown);
    EXPECT_EQ(f.Code(63), "Y64");
    PressKey(f.Field(1), Qt::Key_End);  // OK from the second page
    EXPECT_TRUE(f.Closed());
    EXPECT_EQ(test::DifferingBytes(f.loaded, f.state.image), (std::vector<int>{384, 511, 1071}));
    EXPECT_EQ(f.state.image[511], 0x34);
    EXPECT_EQ(f.state.image[1071], 1);
    EXPECT_TRUE(f.state.ParamChanged);
}

TEST(frmIOLayout, OddBytesLoadAsTheirCodesAfterTheWorkingFileIsMerged) {
    IoFixture f("A3 ", [](ParameterImage& image) {
        image[384] = 0x10;
        image[385] = 0x25;
        image[386] = 0x52;
    });
    auto work = f.project.Read("param.$$$");
    work[1030] = 9;    // network data edited outside
    work[387] = 0x44;  // the main area never comes from the working file
    f.project.Write("param.$$$", work);
    f.Open();
    EXPECT_EQ((QStringList{f.Code(0), f.Code(1), f.Code(2), f.Code(3)}),
              (QStringList{"S0", "X", "32", ""}));
    EXPECT_EQ(f.state.image[1030], 9);
    PressKey(f.Field(0), Qt::Key_End);
    EXPECT_EQ((std::vector<int>{f.state.image[384], f.state.image[385], f.state.image[386]}),
              (std::vector<int>{0x10, 0x20, 0}));
}

TEST(frmIOLayout, TooManyPointsShowsMessage16AndWritesNothing) {
    IoFixture f("A2 ");  // 512 I/O points
    f.Open();
    TypeInto(f.Field(0), "999999999");  // 576
    PressKey(f.Field(9), Qt::Key_End);
    ASSERT_EQ(f.messages.Numbers(), std::vector<int>{16});
    EXPECT_EQ(f.messages.shown[0].text, "Number of I/O points have exceeded its maximum.");
    EXPECT_FALSE(f.Closed());
    EXPECT_EQ(f.state.image, f.loaded);
    PressKey(f.Field(8), Qt::Key_Delete);  // 512 fit
    f.form->OK->click();
    EXPECT_TRUE(f.Closed());
    EXPECT_EQ(f.state.image[391], 0x24);
}

TEST(frmIOLayout, CancelAsksAfterAnEditAndClearWritesOnlyOnOk) {
    auto assigned = [](ParameterImage& image) {
        image[384] = 0x21;
        image[500] = 0x44;
        image[640] = 0;  // a name record, kept while the names are not shown
        image[1071] = 1;
    };
    IoFixture f("A3 ", assigned);
    f.Open().form->Cancel->click();  // nothing edited: closes at once
    EXPECT_TRUE(f.Closed());

    IoFixture g("A3 ", assigned);
    g.Open().messages.Then(MB::Yes).Then(MB::Ok).Then(MB::No);
    g.form->Clear->click();
    EXPECT_EQ(g.Code(0), "");
    PressKey(g.Field(0), Qt::Key_Escape);
    EXPECT_EQ(g.messages.Numbers(), (std::vector<int>{12, 10, 1}));
    EXPECT_FALSE(g.Closed());  // No keeps the edit
    PressKey(g.Field(0), Qt::Key_PageDown);
    EXPECT_EQ(g.Code(500 - 384 - 64), "");
    g.messages.Then(MB::Yes);
    g.form->Cancel->click();
    EXPECT_TRUE(g.Closed());
    EXPECT_EQ(g.state.image, g.loaded);
    EXPECT_FALSE(g.state.ParamChanged);

    IoFixture h("A3 ", assigned);
    h.Open().messages.Then(MB::Yes);
    PressKey(h.form->Clear, Qt::Key_Return);
    PressKey(h.Field(5), Qt::Key_End);
    EXPECT_EQ(test::DifferingBytes(h.loaded, h.state.image), (std::vector<int>{384, 500, 1071}));
    EXPECT_EQ(h.state.image[1071], 0);
}

TEST(frmIOLayout, OkWithoutAnEditChangesNoByteOfAnyDefaultImage) {
    for (std::string_view code : platform::kCpuTypes) {
        const std::string cpu(code);
        IoFixture f(cpu);
        f.Open();
        PressKey(f.Field(0), Qt::Key_End);
        EXPECT_TRUE(f.Closed() && f.messages.Numbers().empty()) << cpu;
        EXPECT_EQ(test::DifferingBytes(test::DefaultImage(cpu), f.state.image), std::vector<int>{})
            << cpu;
    }
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

}  // namespace
}  // namespace gantrix
