// SPDX-License-Identifier: Apache-2.0
#include "menus/frmMenu.h"
#include "menus/frmNetworkMenu.h"

#include <QPushButton>
#include <QRadioButton>
#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "common/qt/DialogRegistry.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "print/PrintRules.h"
#include "print/RecordingExcel.h"
#include "store/ParameterFiles.h"
#include "support/FormFixture.h"
#include "support/ParameterModeRun.h"

namespace gantrix {
namespace {

using test::PressKey;
using Menu = test::Opened<frmMenu>;

// The menu and every dialog it opens, left with OK at once on any new project: laid out whole,
// no byte changed.
TEST(frmMenu, OkAtOnceInTheMenuOrAnyDialogChangesNoByteOfAnyDefaultImage) {
    for (std::string_view type : platform::kCpuTypes) {
        const std::string cpu(type);
        SCOPED_TRACE(cpu);
        Menu f(cpu);
        EXPECT_EQ(test::LayoutFaults(f.form.get()), std::vector<std::string>{});
        for (const std::string dialog : {"frmMemory", "frmLatch", "frmTimerCounter",
                                         "frmInterruptCounter", "frmIOLayout", "frmStepRelay"}) {
            if (!IsDialogRegistered(dialog) || (dialog == "frmStepRelay" && cpu != "A0J")) continue;
            f.state.ParamChanged = false;
            test::ModalDriver driver;
            driver.On(QString::fromStdString(dialog), [&](QWidget* window) {
                EXPECT_EQ(test::LayoutFaults(window), std::vector<std::string>{}) << dialog;
                PressKey(window, Qt::Key_End);
            });
            driver.Run([&] { OpenDialog(dialog, f.state); });
            EXPECT_TRUE(f.messages.shown.empty() && f.state.ParamChanged) << dialog;
            EXPECT_EQ(test::DifferingBytes(f.state.image, f.loaded), std::vector<int>{}) << dialog;
            if (HasFailure()) return;  // one report is enough, and a stuck window costs time
        }
        f->OK->click();
        EXPECT_TRUE(f.Closed() && f.state.SaveRequested && f.state.ContentChangeFlag);
        EXPECT_EQ(test::DifferingBytes(f.state.image, test::DefaultImage(cpu)), std::vector<int>{});
    }
}

// A host's run through the menu: "param.tmp" holds what was typed, with fresh check bytes. A step
// naming a control focuses it with its text selected; one naming none presses Enter first.
TEST(frmMenu, OkWritesTheFixedBytesAndTakesOverTheNetworkData) {
    Menu f("A3A", [](Menu& f) {
        std::vector<uint8_t> work = f.project.Read("param.tmp");
        work[1500] = 0x42;  // edited in the spreadsheet
        work[100] = 0x42;   // main area: never taken from the working file
        f.project.Write("param.tmp", work);
        f.state.image[524] = 9;
    });
    PressKey(f->MenuItem[3], Qt::Key_End);
    EXPECT_TRUE(f.Closed());
    EXPECT_EQ(f.state.image[524], 0);
    EXPECT_EQ(f.state.image[1500], 0x42);
    EXPECT_NE(f.state.image[100], 0x42);
}

// A runtime error ends the menu as Cancel would, which never takes back a requested save.
TEST(frmMenu, ARuntimeErrorAfterOkRequestedTheSaveStillSaves) {
    test::TempProject project("A3 ");
    ParameterImage stale = project.ParamTmp();
    stale[525] = 0;    // saved means written with fresh check bytes,
    stale[2056] ^= 1;  // the network sum as it was: the working file was not merged
    project.SetParamTmp(stale);
    test::ModalDriver driver;
    driver.On("frmMenu", [&project](QWidget* menu) {
        std::remove(project.File(kParamWork).c_str());  // the merge fails after the save request
        PressKey(menu, Qt::Key_End);
    });
    driver.Message(0, "OK");
    const test::RunOutcome run = test::RunParameterMode(project, driver);
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(run.result, 1);
    EXPECT_TRUE(run.contentChanged);
    EXPECT_EQ(project.ParamTmp(), test::SavedWith(stale, "A3 ", {}));
}

TEST(frmMenu, UpAndDownWalkTheEnabledItemsAndCancelWithoutChangesLeavesAtOnce) {
    Menu f("A0J");
    f->MenuItem[2]->setEnabled(false);
    f->MenuItem[3]->setEnabled(false);
    // clang-format off
    for (const auto& [from, key, to] : {std::tuple<QWidget*, Qt::Key, const char*>{f->MenuItem[1],
         Qt::Key_Down, "MenuItem(4)"}, {f->MenuItem[4], Qt::Key_Up, "MenuItem(1)"},
         {f->MenuItem[0], Qt::Key_Up, "Cancel"}, {f->Cancel, Qt::Key_Down, "MenuItem(0)"}}) {
        // clang-format on
        from->setFocus();
        PressKey(from, key);
        EXPECT_EQ(test::Focused(), to);
    }
    PressKey(f->Cancel, Qt::Key_Return);
    EXPECT_TRUE(f.Closed() && f.messages.shown.empty());
    EXPECT_EQ(f->result(), QDialog::Rejected);
}

TEST(frmMenu, NetworkItemByCpuType) {
    Menu f("A4U");
    test::RecordingExcel excel;
    const std::string name = MakeBookName(f.project.Path(), "MORNET10.xls");
    f.project.WriteText(name, "workbook");
    f->MenuItem[5]->click();
    ASSERT_NE(excel.app->Book(name), nullptr);
    EXPECT_EQ(excel.app->Book(name)->cells["B32"], "3");
    Menu g("A3A");
    test::ModalDriver driver;
    driver.On("frmNetworkMenu",
              [](QWidget* menu) { PressKey(test::Child(menu, "Cancel"), Qt::Key_Return); });
    driver.Run([&g] { g->MenuItem[5]->click(); });
    EXPECT_FALSE(g.Closed());
}

TEST(frmMenu, OkAndCancelWaitForTheWorkbooksOfTheRunToClose) {
    Menu f("A3 ");
    test::RecordingExcel excel;
    const std::string dir = f.project.Path();
    f.project.WriteText(MakeBookName(dir, "Parameter mode.xls"), "workbook");
    f.project.WriteText(MakeBookName(dir, "MORNET.xls"), "workbook");
    f->MenuItem[6]->click();
    f->MenuItem[5]->click();
    ASSERT_EQ(excel.app->books.size(), 2u);
    EXPECT_EQ(excel.app->Book(MakeBookName(dir, "MORNET.xls"))->cells["B32"], "0");
    f->OK->click();
    f->Cancel->click();
    excel.app->books.erase(excel.app->books.begin());  // the parameter workbook
    f->OK->click();
    f->Cancel->click();
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{24, 24, 15, 15, 5, 5}));
    EXPECT_FALSE(f.Closed());
    excel.app->books.clear();
    f->OK->click();
    EXPECT_TRUE(f.Closed());
    EXPECT_FALSE(f.state.NetEditActive || f.state.ParamPrintActive);
}

// A run ended by a runtime error while its workbook is open still lets go of the spreadsheet.
TEST(frmMenu, TheRunReleasesTheSpreadsheetApplicationAtItsEnd) {
    test::TempProject project("A3 ");
    test::RecordingExcel excel;
    project.WriteText(MakeBookName(project.Path(), "Parameter mode.xls"), "workbook");
    test::ModalDriver driver;
    driver.On("frmMenu",
              [](QWidget* m) { PressKey(test::Child(m, "MenuItem(6)"), Qt::Key_Return); });
    driver.Message(24, "Yes").On("frmMenu", [&project](QWidget* menu) {
        std::remove(project.File(kParamWork).c_str());  // Clear All cannot write over a directory
        std::filesystem::create_directory(project.File(kParamWork));
        PressKey(test::Child(menu, "MenuItem(7)"), Qt::Key_Return);
    });
    driver.Message(12, "Yes").Message(0, "OK");
    const test::RunOutcome run = test::RunParameterMode(project, driver);
    EXPECT_EQ(run.result, 0) << run.error;
    ASSERT_EQ(excel.app->books.size(), 1u);
    EXPECT_EQ(excel.app.use_count(), 1);
}

// An "A3A" menu whose working file holds these bytes 1024 and 2560.
struct NetworkMenuFixture {
    test::TempProject project{"A3A"};
    ModuleState state = test::StateFor("A3A", project.Path());
    test::RecordingExcel excel{true};
    test::LoggingMessages messages{excel.log};
    std::unique_ptr<frmNetworkMenu> menu;

    NetworkMenuFixture(int b1024, int b2560) {
        state.Presenter = &messages;
        ParameterImage work = state.image;
        work[1024] = static_cast<uint8_t>(b1024);
        work[2560] = static_cast<uint8_t>(b2560);
        project.Write(kParamWork, {work.bytes().begin(), work.bytes().end()});
        menu = std::make_unique<frmNetworkMenu>(state);
        menu->show();
    }
};

TEST(frmNetworkMenu, AConfirmedClearingIsSavedBeforeTheEditingStarts) {
    NetworkMenuFixture f(1, 2);
    EXPECT_EQ(test::LayoutFaults(f.menu.get()), std::vector<std::string>{});
    EXPECT_EQ(f.state.image[2560], 2);  // taken over from "param.$$$", its option checked
    EXPECT_TRUE(f.menu->MenuItem[2]->isChecked() && f.menu->focusWidget() == f.menu->MenuItem[2]);
    f.menu->MenuItem[0]->click();
    f.messages.Then(MessageButton::Yes).Then(MessageButton::Ok).Then(MessageButton::No);
    f.menu->OK->click();
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{25, 10, 24}));
    EXPECT_EQ(f.state.image[2560], 255);  // cleared
    EXPECT_TRUE(std::ranges::equal(f.project.Read(kParamWork), f.state.image.bytes()));
    EXPECT_TRUE(f.state.NetworkMode == 0 && f.menu->isVisible());
    // Cleared data suit every mode: the MORNET II workbook opens without a question.
    const std::string book = MakeBookName(f.project.Path(), "MORNET2.xls");
    f.project.WriteText(book, "workbook");
    f.menu->MenuItem[2]->click();
    f.menu->OK->click();
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{25, 10, 24, 24}));
    ASSERT_NE(f.excel.app->Book(book), nullptr);
    EXPECT_EQ(f.excel.app->Book(book)->cells["B32"], "2");
}

TEST(frmNetworkMenu, EnterWalksToOkADeclinedModeChangeKeepsAllEndActsAsOkCancelCloses) {
    NetworkMenuFixture f(1, 63);
    const ParameterImage image = f.state.image;
    const auto work = f.project.Read(kParamWork);
    for (int i = 0; i < 3; ++i) PressKey(f.menu->focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(f.menu->focusWidget() == f.menu->OK && f.messages.shown.empty());
    f.menu->MenuItem[1]->click();
    f.menu->OK->click();  // message 25: No is the default
    EXPECT_EQ(f.state.image, image);
    EXPECT_EQ(f.project.Read(kParamWork), work);
    EXPECT_TRUE(f.menu->MenuItem[0]->isChecked() && f.menu->isVisible());
    f.messages.Then(MessageButton::No);
    PressKey(f.menu->MenuItem[1], Qt::Key_End);
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{25, 24}));
    PressKey(f.menu->Cancel, Qt::Key_Return);
    EXPECT_FALSE(f.menu->isVisible());
}

}  // namespace
}  // namespace gantrix
