#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <cstdio>
#include <filesystem>
#include <tuple>

#include "common/qt/DialogRegistry.h"
#include "menus/frmMenu.h"
#include "print/PrintRules.h"
#include "print/RecordingExcel.h"
#include "store/ParameterFiles.h"
#include "support/ParameterModeRun.h"

namespace gantrix {
namespace {

using test::PressKey;
using test::ScriptedMessages;
using test::TempProject;

// A menu on a project of cpu, as the entry call sets it up, with scripted message boxes.
struct MenuFixture {
    TempProject project;
    ModuleState state;
    ScriptedMessages messages;
    std::unique_ptr<frmMenu> menu;

    explicit MenuFixture(const std::string& cpu)
        : project(cpu), state(test::StateFor(cpu, project.Path())) {
        state.Presenter = &messages;
        CopyWorkFiles(state);
        menu = std::make_unique<frmMenu>(state);
        menu->show();
    }
    bool Closed() const { return !menu->isVisible(); }
};

TEST(frmMenu, CaptionsAndTheSmallestCpusDisabledItems) {
    MenuFixture f("A3 ");
    EXPECT_EQ(f.menu->windowTitle(), "Parameter");
    EXPECT_EQ(f.menu->MenuItem[0]->text(), "Memory Capacity Setting");
    EXPECT_EQ(f.menu->MenuItem[6]->text(), "Parameter setting data printing (Paste to EXCEL)");
    EXPECT_EQ(f.menu->MenuItem[7]->text(), "Clear All");
    EXPECT_EQ(f.menu->Cancel->text(), "Cancel");
    EXPECT_EQ(f.menu->Label1->text(),
              "Network/Link Setting, Parameter Setting\nMicrosoft EXCEL is required\nto execute "
              "Data Printing (Paste to EXCEL)");
}

TEST(frmMenu, ActionsPerCpuType) {
    struct Case {
        const char* cpu;
        int item;
        const char* action;
    };
    const Case cases[] = {
        {"A0J", 4, "frmStepRelay"},
        {"A3 ", 4, "frmAssistance"},
        {"A9 ", 4, ""},
        {"A0J", 5, ""},
        {"A1S", 5, "PrintNetworkSettings(0)"},
        {"A3A", 5, "frmNetworkMenu"},
        {"A4U", 5, "PrintNetworkSettings(3)"},
        {"A9 ", 5, ""},
        {"A2 ", 0, "frmMemory"},
        {"A2 ", 3, "frmIOLayout"},
        {"A2 ", 7, "ClearAllParameters"},
    };
    for (const Case& c : cases) {
        ModuleState state = test::StateFor(c.cpu);
        frmMenu menu(state);
        EXPECT_EQ(menu.ActionOf(c.item), c.action) << c.cpu << " item " << c.item;
    }
}

TEST(frmMenu, EndPositionBeyondTheMainCapacityKeepsTheMenuOpen) {
    MenuFixture f("A3 ");
    f.state.image.SetParamWord(2048, 64);  // 2 K steps
    f.state.EndPosition = {2049, 0, 0, 0};
    PressKey(f.menu->MenuItem[3], Qt::Key_End);
    EXPECT_EQ(f.messages.Numbers(), std::vector<int>{9});
    EXPECT_FALSE(f.Closed());
    EXPECT_FALSE(f.state.SaveRequested);

    f.state.EndPosition = {2048, 0, 0, 0};
    PressKey(f.menu->OK, Qt::Key_Return);  // Enter on OK is OK
    EXPECT_TRUE(f.Closed());
    EXPECT_TRUE(f.state.SaveRequested);
    EXPECT_TRUE(f.state.ContentChangeFlag);
    EXPECT_EQ(f.menu->result(), QDialog::Accepted);
}

TEST(frmMenu, SubProgramEndPositionsCountOnlyForTheLargeCpus) {
    MenuFixture a2("A2 ");
    a2.state.EndPosition = {0, 30000, 30000, 30000};
    a2.menu->OK->click();
    EXPECT_TRUE(a2.Closed());
    EXPECT_TRUE(a2.messages.shown.empty());

    MenuFixture a3("A3H");
    a3.state.EndPosition = {0, 30000, 0, 0};
    a3.menu->OK->click();
    EXPECT_FALSE(a3.Closed());
    EXPECT_EQ(a3.messages.Numbers(), std::vector<int>{9});
}

TEST(frmMenu, OkWritesTheFixedBytesAndTakesOverTheNetworkData) {
    MenuFixture f("A3A");
    ParameterImage work = f.state.image;
    work[1500] = 0x42;  // edited in the spreadsheet
    work[100] = 0x42;   // main area: never taken from the working file
    f.project.Write(kParamWork, {work.bytes().begin(), work.bytes().end()});
    f.state.image[524] = 9;
    f.menu->OK->click();
    EXPECT_TRUE(f.Closed());
    EXPECT_EQ(f.state.image[524], 0);
    EXPECT_EQ(f.state.image[1500], 0x42);
    EXPECT_NE(f.state.image[100], 0x42);
}

TEST(frmMenu, TotalMemoryOfAUTypeAtThirtyOneKStaysOpenWithSaveRequested) {
    MenuFixture f("A3U");
    f.state.image.SetParamWord(30 * 1024, 64);
    f.state.image.SetParamWord(1024, 138);  // 1 K reserved: 31
    ParameterImage work = f.state.image;
    f.project.Write(kParamWork, {work.bytes().begin(), work.bytes().end()});
    f.menu->OK->click();
    ASSERT_EQ(f.messages.Numbers(), std::vector<int>{23});
    EXPECT_EQ(f.messages.shown[0].caption, "MorvaneR");
    EXPECT_FALSE(f.Closed());
    EXPECT_TRUE(f.state.SaveRequested);
    // A later Cancel leaves the menu without clearing the request.
    f.menu->Cancel->click();
    EXPECT_TRUE(f.Closed());
    EXPECT_TRUE(f.state.SaveRequested);
}

TEST(frmMenu, CancelAfterClearAllAsksAndNoKeepsTheMenu) {
    MenuFixture f("A2 ");
    f.state.image.SetParamWord(1, 64);
    f.messages.Then(MessageButton::Yes);  // message 12: set back to defaults
    PressKey(f.menu->MenuItem[7], Qt::Key_Return);
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{12, 10}));
    EXPECT_TRUE(f.state.ParamChanged);
    EXPECT_EQ(f.state.image.GetParamWord(64), 6144);
    EXPECT_TRUE(f.project.Exists(kParamWork));

    f.messages.Then(MessageButton::No);
    f.menu->Cancel->click();
    EXPECT_FALSE(f.Closed());
    f.messages.Then(MessageButton::Yes);
    f.menu->close();  // the close box asks the same
    EXPECT_TRUE(f.Closed());
    EXPECT_FALSE(f.state.ParamChanged);
    EXPECT_FALSE(f.state.SaveRequested);
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{12, 10, 1, 1}));
}

TEST(frmMenu, CancelWithoutChangesLeavesAtOnce) {
    MenuFixture f("A1 ");
    PressKey(f.menu->Cancel, Qt::Key_Return);
    EXPECT_TRUE(f.Closed());
    EXPECT_TRUE(f.messages.shown.empty());
    EXPECT_EQ(f.menu->result(), QDialog::Rejected);
}

// A runtime error ends the menu as Cancel would, and Cancel never takes back a save that
// the menu's OK has requested: the run saves, and the host's flag says so.
TEST(frmMenu, ARuntimeErrorAfterOkRequestedTheSaveStillSaves) {
    TempProject project("A3 ");
    ParameterImage stale = project.ParamTmp();
    stale[525] = 0;  // saved means written with fresh check bytes
    project.SetParamTmp(stale);
    test::ModalDriver driver;
    driver
        .On("frmMenu",
            [&project](QWidget* menu) {
                // The merge of the working file fails after the save was requested.
                std::remove(project.File(kParamWork).c_str());
                PressKey(menu, Qt::Key_End);
            })
        .Message(0, "OK");
    const test::RunOutcome run = test::RunParameterMode(project, driver);
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(run.result, 1);
    EXPECT_TRUE(run.contentChanged);
    EXPECT_EQ(project.ParamTmp(), test::SavedWith(stale, "A3 ", {}));
}

TEST(frmMenu, UpAndDownWalkTheEnabledItems) {
    MenuFixture f("A0J");
    f.menu->MenuItem[2]->setEnabled(false);
    f.menu->MenuItem[3]->setEnabled(false);
    f.menu->MenuItem[1]->setFocus();
    PressKey(f.menu->MenuItem[1], Qt::Key_Down);
    EXPECT_EQ(f.menu->focusWidget(), f.menu->MenuItem[4]);
    PressKey(f.menu->MenuItem[4], Qt::Key_Up);
    EXPECT_EQ(f.menu->focusWidget(), f.menu->MenuItem[1]);
}

TEST(frmMenu, NetworkItemByCpuType) {
    for (const auto& [cpu, book, mode] :
         {std::tuple{"A1S", "MORNET.xls", "0"}, std::tuple{"A4U", "MORNET10.xls", "3"}}) {
        MenuFixture f(cpu);
        test::RecordingExcel excel;
        const std::string name = MakeBookName(f.project.Path(), book);
        f.project.WriteText(name, "workbook");
        f.menu->MenuItem[5]->click();
        ASSERT_NE(excel.app->Book(name), nullptr) << cpu;
        EXPECT_EQ(excel.app->Book(name)->cells["B32"], mode);
    }
    MenuFixture f("A3A");
    test::ModalDriver driver;
    driver.On("frmNetworkMenu",
              [](QWidget* menu) { PressKey(test::Child(menu, "Cancel"), Qt::Key_Return); });
    driver.Run([&f] { f.menu->MenuItem[5]->click(); });
    EXPECT_FALSE(f.Closed());
}

TEST(frmMenu, OkAndCancelWaitForTheWorkbooksOfTheRunToClose) {
    MenuFixture f("A3 ");
    test::RecordingExcel excel;
    const std::string dir = f.project.Path();
    f.project.WriteText(MakeBookName(dir, "Parameter mode.xls"), "workbook");
    f.project.WriteText(MakeBookName(dir, "MORNET.xls"), "workbook");
    f.menu->MenuItem[6]->click();
    f.menu->MenuItem[5]->click();
    ASSERT_EQ(excel.app->books.size(), 2u);
    f.menu->OK->click();
    f.menu->Cancel->click();
    excel.app->books.erase(excel.app->books.begin());  // the parameter workbook
    f.menu->OK->click();
    f.menu->Cancel->click();
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{24, 24, 15, 15, 5, 5}));
    EXPECT_FALSE(f.Closed());
    excel.app->books.clear();
    f.menu->OK->click();
    EXPECT_TRUE(f.Closed());
    EXPECT_FALSE(f.state.NetEditActive || f.state.ParamPrintActive);
}

// A run ended by a runtime error while its workbook is open (so no CheckExcel let go of the
// application) still lets go of it: the spreadsheet keeps running, unheld.
TEST(frmMenu, TheRunReleasesTheSpreadsheetApplicationAtItsEnd) {
    TempProject project("A3 ");
    test::RecordingExcel excel;
    project.WriteText(MakeBookName(project.Path(), "Parameter mode.xls"), "workbook");
    test::ModalDriver driver;
    driver
        .On("frmMenu",
            [](QWidget* menu) { PressKey(test::Child(menu, "MenuItem(6)"), Qt::Key_Return); })
        .Message(24, "Yes")
        .On("frmMenu",
            [&project](QWidget* menu) {
                // Clear All cannot write "param.$$$" over a directory.
                std::remove(project.File(kParamWork).c_str());
                std::filesystem::create_directory(project.File(kParamWork));
                PressKey(test::Child(menu, "MenuItem(7)"), Qt::Key_Return);
            })
        .Message(12, "Yes")
        .Message(0, "OK");
    const test::RunOutcome run = test::RunParameterMode(project, driver);
    EXPECT_EQ(run.result, 0) << run.error;
    ASSERT_EQ(excel.app->books.size(), 1u);
    EXPECT_EQ(excel.app.use_count(), 1);
}

}  // namespace
}  // namespace gantrix
