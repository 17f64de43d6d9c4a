#include "menus/frmMenu.h"

#include <QPushButton>
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

TEST(frmMenu, OkOnEveryDefaultImageChangesNoByte) {
    for (std::string_view type : platform::kCpuTypes) {
        const std::string cpu(type);
        Menu f(cpu);
        EXPECT_EQ(test::LayoutFaults(f.form.get()), std::vector<std::string>{}) << cpu;
        f->OK->click();
        EXPECT_TRUE(f.Closed() && f.state.SaveRequested && f.state.ContentChangeFlag) << cpu;
        EXPECT_EQ(test::DifferingBytes(f.state.image, test::DefaultImage(cpu)), std::vector<int>{})
            << cpu;
    }
}

// Every dialog the menu opens, left with OK at once on any new project: laid out whole, no byte
// changed.
TEST(frmMenu, EveryDialogLeftWithOkAtOnceChangesNoByteOfAnyDefaultImage) {
    for (const char* dialog : {"frmMemory", "frmLatch", "frmTimerCounter", "frmInterruptCounter",
                               "frmIOLayout", "frmStepRelay"}) {
        if (!IsDialogRegistered(dialog)) continue;  // built without it
        for (std::string_view type : platform::kCpuTypes) {
            const std::string cpu(type);
            if (dialog == std::string("frmStepRelay") && cpu != "A0J") continue;  // A0J only
            test::TempProject project(cpu);
            ModuleState state = test::StateFor(cpu, project.Path());
            test::ScriptedMessages messages;
            state.Presenter = &messages;
            CopyWorkFiles(state);
            test::ModalDriver driver;
            driver.On(dialog, [&](QWidget* window) {
                EXPECT_EQ(test::LayoutFaults(window), std::vector<std::string>{}) << dialog << cpu;
                PressKey(window, Qt::Key_End);
            });
            driver.Run([&] { OpenDialog(dialog, state); });
            EXPECT_TRUE(messages.shown.empty() && state.ParamChanged) << dialog << cpu;
            EXPECT_EQ(test::DifferingBytes(state.image, test::DefaultImage(cpu)),
                      std::vector<int>{})
                << dialog << cpu;
            if (HasFailure()) return;  // one report is enough, and a stuck window costs time
        }
    }
}

// A host's run through the menu: "param.tmp" holds what was typed, with fresh check bytes.
TEST(frmMenu, WhatIsTypedInADialogReachesParamTmp) {
    using Words = std::vector<std::pair<int, int>>;
    // clang-format off
    const struct { const char* cpu; int item; const char* dialog; Words before;
                   std::vector<std::pair<const char*, const char*>> typed; Words saved; } cases[] = {
        {"A3 ", 0, "frmMemory", {}, {{"Text1(0)", "12"}}, {{64, 12 * 1024}}},
        {"A4U", 0, "frmMemory", {}, {{"Text4", "3"}}, {{68, 3 * 1024}}},
        {"A2U", 1, "frmLatch", {}, {{"Text1(2)", "1a0"}, {"Text1(3)", "1fff"}, {"Text1(12)", "100"},
                                    {"Text1(13)", "199"}},
         {{20, 0x1A0}, {22, 0x1FFF}, {40, 100}, {42, 199}}},
        // A new partition refits the timer latches T0-199 and T200-255.
        {"A3 ", 2, "frmTimerCounter", {{24, 0}, {26, 199}, {28, 200}, {30, 255}},
         {{"Text1(2)", "160"}, {"Text1(3)", "240"}}, {{194, 160}, {196, 240}, {26, 159}, {30, 239}}},
        {"A0J", 4, "frmStepRelay", {}, {{"StepRelayFlag", " "}}, {{18, 1535}}},
    };
    // clang-format on
    for (const auto& c : cases) {
        if (!IsDialogRegistered(c.dialog)) continue;
        test::TempProject project(c.cpu);
        ParameterImage image = project.ParamTmp();
        image[525] ^= 0x5A;  // the check bytes must be recomputed
        for (const auto& [index, value] : c.before) image.SetParamWord(value, index);
        project.SetParamTmp(image);
        test::ModalDriver driver;
        driver.On("frmMenu", [&c](QWidget* menu) {
            PressKey(test::Child(menu, QString("MenuItem(%1)").arg(c.item)), Qt::Key_Return);
        });
        driver.On(c.dialog, [&c](QWidget* dialog) {
            for (const auto& [box, keys] : c.typed) {
                QWidget* control = test::Child(dialog, box);
                control->setFocus();
                if (auto* edit = qobject_cast<QLineEdit*>(control)) edit->selectAll();
                QTest::keyClicks(control, keys);
            }
            PressKey(dialog, Qt::Key_End);
        });
        driver.On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
        const test::RunOutcome run = test::RunParameterMode(project, driver);
        EXPECT_EQ(run.result, 1) << c.dialog << run.error;
        EXPECT_TRUE(run.contentChanged);
        EXPECT_EQ(test::DifferingBytes(project.ParamTmp(), test::SavedWith(image, c.cpu, c.saved)),
                  std::vector<int>{})
            << c.dialog << " " << c.cpu;
        EXPECT_FALSE(project.Exists("param.$$$"));
    }
}

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

TEST(frmMenu, UpAndDownWalkTheEnabledItemsAndCancelWithoutChangesLeavesAtOnce) {
    Menu f("A0J");
    f->MenuItem[2]->setEnabled(false);
    f->MenuItem[3]->setEnabled(false);
    f->MenuItem[1]->setFocus();
    PressKey(f->MenuItem[1], Qt::Key_Down);
    EXPECT_EQ(test::Focused(), "MenuItem(4)");
    PressKey(f->MenuItem[4], Qt::Key_Up);
    EXPECT_EQ(test::Focused(), "MenuItem(1)");
    PressKey(f->MenuItem[0], Qt::Key_Up);
    EXPECT_EQ(test::Focused(), "Cancel");
    PressKey(f->Cancel, Qt::Key_Down);
    EXPECT_EQ(test::Focused(), "MenuItem(0)");
    PressKey(f->Cancel, Qt::Key_Return);
    EXPECT_TRUE(f.Closed() && f.messages.shown.empty());
    EXPECT_EQ(f->result(), QDialog::Rejected);
}

TEST(frmMenu, NetworkItemByCpuType) {
    for (const auto& [cpu, book, mode] :
         {std::tuple{"A1S", "MORNET.xls", "0"}, std::tuple{"A4U", "MORNET10.xls", "3"}}) {
        Menu f(cpu);
        test::RecordingExcel excel;
        const std::string name = MakeBookName(f.project.Path(), book);
        f.project.WriteText(name, "workbook");
        f->MenuItem[5]->click();
        ASSERT_NE(excel.app->Book(name), nullptr) << cpu;
        EXPECT_EQ(excel.app->Book(name)->cells["B32"], mode);
    }
    Menu f("A3A");
    test::ModalDriver driver;
    driver.On("frmNetworkMenu",
              [](QWidget* menu) { PressKey(test::Child(menu, "Cancel"), Qt::Key_Return); });
    driver.Run([&f] { f->MenuItem[5]->click(); });
    EXPECT_FALSE(f.Closed());
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
