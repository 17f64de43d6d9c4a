#include <gtest/gtest.h>

#include <sys/resource.h>
#include <QApplication>
#include <QPushButton>
#include <QTest>

#include <csignal>

#include "common/ModuleState.h"
#include "entry/GantrixA0J.h"
#include "entry/RKParam.h"
#include "store/CheckSum.h"
#include "support/ModalDriver.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::ModalDriver;
using test::PressKey;
using test::TempProject;

struct Host {
    std::vector<std::pair<uintptr_t, intptr_t>> notifications;  // wParam, lParam value
    static void Proc(intptr_t, uint32_t, uintptr_t wParam, intptr_t lParam, void* context) {
        auto* host = static_cast<Host*>(context);
        host->notifications.emplace_back(
            wParam, lParam == 0 ? -1 : *reinterpret_cast<const int32_t*>(lParam));
    }
};

// One run of the parameter mode through the C interface.
struct HostRun {
    ::RKParam* object = RKParam_Create();
    Host host;
    int16_t result = -1;
    int status = -1;

    HostRun(const TempProject& project, bool contentChanged = false) {
        RKParam_Let_szPcName(object, project.Cpu().c_str());
        std::string dir = project.Path();
        dir.pop_back();  // without its separator, as a host may give it
        RKParam_Let_ProjectName(object, dir.c_str());
        RKParam_Let_ContentChangeFlag(object, contentChanged);
        RKParam_Let_hParentWnd(object, 9001);
        RKParam_RegisterHostWindow(9001, Host::Proc, &host);
    }
    ~HostRun() {
        RKParam_RegisterHostWindow(9001, nullptr, nullptr);
        RKParam_Release(object);
    }
    void Call(ModalDriver& driver) {
        driver.Run([this] { status = RKParam_Param_main(object, &result); });
    }
};

const char* const kWorkFiles[] = {"param.$$$", "netpara.$$$", "param.$$p",
                                  "temp.dat",  "param.net",   "netpara.net"};

TEST(EntryCall, OkSavesWithFreshCheckBytesAndCleansUp) {
    TempProject project("A3 ");
    ParameterImage stale = project.ParamTmp();
    stale[525] = 0;  // the check bytes must be recomputed
    stale[300] = 1;
    project.SetParamTmp(stale);
    project.Write("netpara.tmp", {1, 2, 3});
    project.Write("netpara.$$$", {4, 5});
    project.Write("temp.dat", {});

    HostRun run(project);
    ModalDriver driver;
    driver.On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
    run.Call(driver);

    EXPECT_EQ(run.status, 0) << RKParam_ErrorDescription(run.object);
    EXPECT_EQ(run.result, 1);
    EXPECT_EQ(RKParam_Get_ContentChangeFlag(run.object), 1);
    EXPECT_EQ(std::string(RKParam_Get_ProjectName(run.object)), project.Path());
    ParameterImage expected = stale;
    SetCheckSum(expected, "A3 ", false);
    EXPECT_EQ(project.ParamTmp(), expected);
    EXPECT_EQ(project.Read("netpara.tmp"), (std::vector<uint8_t>{4, 5}));
    for (const char* name : kWorkFiles) EXPECT_FALSE(project.Exists(name)) << name;
    // The menu notified the host on activation with the address of a 32-bit zero.
    ASSERT_FALSE(run.host.notifications.empty());
    EXPECT_EQ(run.host.notifications[0], (std::pair<uintptr_t, intptr_t>{60000, 0}));
}

TEST(EntryCall, CancelReturnsZeroKeepsTheFlagAndWritesNothing) {
    TempProject project("A2U");
    const auto before = project.Read("param.tmp");
    project.Write("param.net", {});
    HostRun run(project, true);
    ModalDriver driver;
    driver.On("frmMenu",
              [](QWidget* menu) { test::ChildAs<QPushButton>(menu, "Cancel")->click(); });
    run.Call(driver);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(RKParam_Get_ContentChangeFlag(run.object), 1);
    EXPECT_EQ(project.Read("param.tmp"), before);
    for (const char* name : kWorkFiles) EXPECT_FALSE(project.Exists(name)) << name;
}

TEST(EntryCall, AfterClearAllCancelAsksNoKeepsTheMenuYesLeavesWithoutSaving) {
    TempProject project("A3H");
    ParameterImage edited = project.ParamTmp();
    edited.SetParamWord(2048, 64);
    project.SetParamTmp(edited);
    const auto before = project.Read("param.tmp");
    HostRun run(project);
    ModalDriver driver;
    driver
        .On("frmMenu",
            [](QWidget* menu) { PressKey(test::Child(menu, "MenuItem(7)"), Qt::Key_Return); })
        .Message(12, "Yes")
        .Message(10, "OK")
        .On("frmMenu", [](QWidget* menu) { PressKey(test::Child(menu, "Cancel"), Qt::Key_Return); })
        .Message(1, "Enter")  // No is the default
        .On("frmMenu", [](QWidget* menu) { test::ChildAs<QPushButton>(menu, "Cancel")->click(); })
        .Message(1, "Yes");
    run.Call(driver);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(driver.messages, (std::vector<int>{12, 10, 1, 1}));
    EXPECT_EQ(project.Read("param.tmp"), before);
    for (const char* name : kWorkFiles) EXPECT_FALSE(project.Exists(name)) << name;
}

TEST(EntryCall, ClearAllThenOkSavesTheDefaults) {
    TempProject project("A2A");
    ParameterImage edited = project.ParamTmp();
    edited.SetParamWord(1024, 64);
    SetCheckSum(edited, "A2A", false);
    project.SetParamTmp(edited);
    project.Write("netpara.tmp", {9});
    HostRun run(project);
    ModalDriver driver;
    driver
        .On("frmMenu",
            [](QWidget* menu) { test::ChildAs<QPushButton>(menu, "MenuItem(7)")->click(); })
        .Message(12, "Yes")
        .Message(10, "OK")
        .On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
    run.Call(driver);
    EXPECT_EQ(run.result, 1);
    ParameterImage expected = test::DefaultImage("A2A");
    EXPECT_EQ(test::DifferingBytes(project.ParamTmp(), expected), std::vector<int>{});
    // Clear All deleted the network working file, so the saved run drops "netpara.tmp".
    EXPECT_FALSE(project.Exists("netpara.tmp"));
}

TEST(EntryCall, TheSmallestCpuHasThreeItemsDisabled) {
    TempProject project("A0J");
    HostRun run(project);
    ModalDriver driver;
    std::vector<bool> enabled;
    driver.On("frmMenu", [&](QWidget* menu) {
        for (int i = 0; i < 8; ++i) {
            enabled.push_back(test::Child(menu, QString("MenuItem(%1)").arg(i))->isEnabled());
        }
        PressKey(menu, Qt::Key_Escape);
    });
    run.Call(driver);
    EXPECT_EQ(enabled, (std::vector<bool>{true, true, false, false, true, false, true, true}));
    EXPECT_EQ(run.result, 0);
}

TEST(EntryCall, EndPositionsOfTheHostsProgramsAreCheckedOnOk) {
    TempProject project("A3 ");
    ParameterImage image = project.ParamTmp();
    image.SetParamWord(2048, 64);
    project.SetParamTmp(image);
    project.WriteText("program.end", "2049 0 0 0");
    {
        HostRun run(project);
        ModalDriver driver;
        driver.On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); })
            .Message(9, "OK")
            .On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_Escape); });
        run.Call(driver);
        EXPECT_EQ(run.result, 0);
    }
    project.WriteText("program.end", "2048 0 0 0");
    HostRun run(project);
    ModalDriver driver;
    driver.On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
    run.Call(driver);
    EXPECT_EQ(run.result, 1);
}

TEST(EntryCall, AUTypeOverItsTotalMemoryShowsMessage23AndStays) {
    TempProject project("A3U");
    ParameterImage image = project.ParamTmp();
    image.SetParamWord(30 * 1024, 64);
    image.SetParamWord(2048, 138);  // 2 K reserved: 32 in all
    project.SetParamTmp(image);
    HostRun run(project);
    ModalDriver driver;
    QString caption;
    driver.On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); })
        .On("MessageBox",
            [&](QWidget* box) {
                caption = box->windowTitle();
                PressKey(box, Qt::Key_Return);
            })
        .On("frmMenu", [](QWidget* menu) {
            EXPECT_TRUE(menu->isVisible());
            PressKey(menu, Qt::Key_Escape);
        });
    run.Call(driver);
    EXPECT_EQ(caption, "MorvaneR");
    // The request to save stays once OK got that far, so leaving afterwards saves.
    EXPECT_EQ(run.result, 1);
}

TEST(EntryCall, LanguageModeChangesNoText) {
    TempProject project("A2 ");
    HostRun run(project);
    RKParam_Let_LanguageMode(run.object, "Japanese");
    ModalDriver driver;
    QString title, item;
    driver.On("frmMenu", [&](QWidget* menu) {
        title = menu->windowTitle();
        item = test::ChildAs<QPushButton>(menu, "MenuItem(0)")->text();
        PressKey(menu, Qt::Key_Escape);
    });
    run.Call(driver);
    EXPECT_EQ(title, "Parameter");
    EXPECT_EQ(item, "Memory Capacity Setting");
    EXPECT_EQ(std::string(RKParam_Get_LanguageMode(run.object)), "Japanese");
}

TEST(EntryCall, AFailingSaveReachesTheHostAndKeepsTheProjectFile) {
    TempProject project("A3 ");
    const auto before = project.Read("param.tmp");
    HostRun run(project);
    ModalDriver driver;
    // The disk fills while the menu is open: the save cannot be written.
    rlimit saved{};
    ::getrlimit(RLIMIT_FSIZE, &saved);
    auto* previous = std::signal(SIGXFSZ, SIG_IGN);
    driver.On("frmMenu", [&](QWidget* menu) {
        rlimit full = saved;
        full.rlim_cur = 100;
        ::setrlimit(RLIMIT_FSIZE, &full);
        test::ChildAs<QPushButton>(menu, "OK")->click();
    });
    run.Call(driver);
    ::setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previous);
    EXPECT_NE(run.status, 0);
    EXPECT_NE(std::string(RKParam_ErrorDescription(run.object)).find(project.Path() + "param.tmp"),
              std::string::npos)
        << RKParam_ErrorDescription(run.object);
    EXPECT_EQ(project.Read("param.tmp"), before);
}

}  // namespace
}  // namespace gantrix
