#include <gtest/gtest.h>

#include <QApplication>
#include <QPushButton>
#include <QTest>

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

}  // namespace
}  // namespace gantrix
