#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <csignal>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>

#include "common/ModuleState.h"
#include "entry/GantrixA0J.h"
#include "entry/RKParam.h"
#include "store/CheckSum.h"
#include "store/ProjectLock.h"
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
    // The working files go on this way out too, and no temporary file stays.
    for (const char* name : kWorkFiles) EXPECT_FALSE(project.Exists(name)) << name;
    EXPECT_EQ(project.List(), std::vector<std::string>{"param.tmp"});
}

// The regular files of a directory with their bytes, and the names of the others.
std::map<std::string, std::vector<uint8_t>> Snapshot(const test::TempDir& dir) {
    std::map<std::string, std::vector<uint8_t>> files;
    for (const std::string& name : dir.List()) {
        struct stat info {};
        const bool regular = ::lstat(dir.File(name).c_str(), &info) == 0 && S_ISREG(info.st_mode);
        files[name] = regular ? dir.Read(name) : std::vector<uint8_t>{};
    }
    return files;
}

TEST(EntryCall, AProjectThatCannotBeLoadedWholeOrIsInUseIsRefusedUntouched) {
    // Each case spoils the project; what it returns is kept for the length of the run.
    struct Case {
        const char* what;
        std::function<std::shared_ptr<void>(const TempProject&)> spoil;
        const char* reason;
    };
    const Case cases[] = {
        {"too short",
         [](const TempProject& p) {
             p.Write("param.tmp", std::vector<uint8_t>(100, 1));
             return nullptr;
         },
         "holds 100 bytes"},
        {"a directory",
         [](const TempProject& p) {
             ::unlink(p.File("param.tmp").c_str());
             ::mkdir(p.File("param.tmp").c_str(), 0755);
             return nullptr;
         },
         "not a regular file"},
        {"a FIFO",
         [](const TempProject& p) {
             ::unlink(p.File("param.tmp").c_str());
             ::mkfifo(p.File("param.tmp").c_str(), 0644);
             return nullptr;
         },
         "not a regular file"},
        {"a link to nothing",
         [](const TempProject& p) {
             ::unlink(p.File("param.tmp").c_str());
             [[maybe_unused]] int linked = ::symlink("gone.tmp", p.File("param.tmp").c_str());
             return nullptr;
         },
         "No such file"},
        {"in use by another run",
         [](const TempProject& p) { return std::make_shared<ProjectLock>(p.Path()); },
         "in use by another run"},
    };
    // Each refused run comes after a run on another project, whose image the process holds.
    TempProject other("A3 ");
    {
        HostRun run(other);
        ModalDriver driver;
        driver.On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
        run.Call(driver);
        ASSERT_EQ(run.result, 1);
    }
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        TempProject project("A3 ");
        project.Write("temp.dat", {1});
        const auto held = c.spoil(project);
        const auto before = Snapshot(project);
        HostRun run(project);
        ModalDriver driver;  // a menu that opened would time the driver out
        std::string shown;
        driver.On("MessageBox", [&](QWidget* box) {
            shown = qobject_cast<QMessageBox*>(box)->text().toStdString();
            test::ChildAs<QPushButton>(box, "OK")->click();
        });
        run.Call(driver);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.result, 0);
        const std::string description = RKParam_ErrorDescription(run.object);
        EXPECT_EQ(description, shown);
        EXPECT_NE(description.find(c.reason), std::string::npos) << description;
        EXPECT_NE(description.find(project.Path()), std::string::npos) << description;
        EXPECT_EQ(Snapshot(project), before);
    }
}

TEST(EntryCall, AParamTmpSpelledInCapitalsIsLoadedAndSavedWhereItIs) {
    TempProject project("A3 ");
    ParameterImage image = project.ParamTmp();
    image[300] = 5;
    image[525] ^= 0xFF;
    ::unlink(project.File("param.tmp").c_str());
    project.Write("PARAM.TMP", {image.bytes().begin(), image.bytes().end()});
    HostRun run(project);
    ModalDriver driver;
    driver.On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
    run.Call(driver);
    EXPECT_EQ(run.result, 1);
    SetCheckSum(image, "A3 ", false);
    EXPECT_EQ(project.List(), std::vector<std::string>{"PARAM.TMP"});
    EXPECT_EQ(project.Read("PARAM.TMP"),
              std::vector<uint8_t>(image.bytes().begin(), image.bytes().end()));
}

TEST(EntryCall, ALinkedParamTmpUpdatesItsTargetAndStaysALink) {
    TempProject project("A3 ");
    ParameterImage image = project.ParamTmp();
    image[300] = 6;
    image[525] ^= 0xFF;
    ::mkdir(project.File("store").c_str(), 0755);
    project.Write("store/line1.prm", {image.bytes().begin(), image.bytes().end()});
    ::unlink(project.File("param.tmp").c_str());
    ASSERT_EQ(::symlink("store/line1.prm", project.File("param.tmp").c_str()), 0);
    HostRun run(project);
    ModalDriver driver;
    driver.On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
    run.Call(driver);
    EXPECT_EQ(run.result, 1);
    SetCheckSum(image, "A3 ", false);
    EXPECT_EQ(project.Read("store/line1.prm"),
              std::vector<uint8_t>(image.bytes().begin(), image.bytes().end()));
    char target[64] = {};
    EXPECT_GT(::readlink(project.File("param.tmp").c_str(), target, sizeof target - 1), 0);
    EXPECT_STREQ(target, "store/line1.prm");
    EXPECT_EQ(project.List(), (std::vector<std::string>{"param.tmp", "store"}));
    // The temporary file was written beside the target, and is gone.
    std::vector<std::string> stored;
    for (const auto& entry : std::filesystem::directory_iterator(project.File("store"))) {
        stored.push_back(entry.path().filename().string());
    }
    EXPECT_EQ(stored, std::vector<std::string>{"line1.prm"});
}

TEST(EntryCall, AnEmptyProjectNameIsAnErrorThatTouchesNothing) {
    ::RKParam* object = RKParam_Create();
    RKParam_Let_szPcName(object, "A3 ");
    RKParam_Let_ProjectName(object, "");
    // A menu that opened (on the root directory) is closed after a while instead of waiting.
    QTimer guard;
    guard.setSingleShot(true);
    QObject::connect(&guard, &QTimer::timeout, [] {
        if (auto* menu = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            menu->done(QDialog::Rejected);
        }
    });
    guard.start(5000);
    int16_t result = -1;
    const int status = RKParam_Param_main(object, &result);
    EXPECT_NE(status, 0);
    EXPECT_NE(std::string(RKParam_ErrorDescription(object)).find("ProjectName"), std::string::npos);
    EXPECT_EQ(std::string(RKParam_Get_ProjectName(object)), "");
    RKParam_Release(object);
}

TEST(EntryCall, TemporaryFilesOfAKilledWriterGoWithTheNextRun) {
    TempProject project("A2U");
    for (const char* name : {".param.tmp.4242.0.part", ".netpara.$$$.77.13.part", "notes.part",
                             ".notes.part", ".a.b.1.part"}) {
        project.Write(name, {1});
    }
    HostRun run(project);
    ModalDriver driver;
    driver.On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_Escape); });
    run.Call(driver);
    EXPECT_EQ(run.result, 0);
    // Only the names such a writer gives: ".<name>.<pid>.<n>.part".
    EXPECT_EQ(project.List(),
              (std::vector<std::string>{".a.b.1.part", ".notes.part", "notes.part", "param.tmp"}));
}

}  // namespace
}  // namespace gantrix
