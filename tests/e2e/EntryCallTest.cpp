// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTableWidgetItem>
#include <QTimer>
#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>

#include "entry/GantrixA0J.h"
#include "menus/NetworkMenuRules.h"
#include "spreadsheet/NetworkWindow.h"
#include "store/CheckSum.h"
#include "store/ProjectLock.h"
#include "support/ParameterModeRun.h"

namespace gantrix {
namespace {

using spreadsheet::NetworkWindow;
using test::ModalDriver;
using test::PressKey;
using test::TempProject;
using Bytes = std::vector<uint8_t>;
using Names = std::vector<std::string>;

const auto PressEnd = [](QWidget* menu) { PressKey(menu, Qt::Key_End); };
const auto BytesOf = [](const ParameterImage& i) {
    return Bytes(i.bytes().begin(), i.bytes().end());
};

// OK saves "param.tmp" with fresh check bytes in its mode and carries the spreadsheet's network
// working file over; Cancel keeps both. The working files go either way.
TEST(EntryCall, OkSavesAndCancelKeepsAndBothCleanUp) {
    for (const bool ok : {true, false}) {
        SCOPED_TRACE(ok ? "OK" : "Cancel");
        TempProject project(ok ? "A3 " : "A0J");
        ParameterImage stale = project.ParamTmp();
        stale[525] = 0;
        stale[300] = 1;
        project.SetParamTmp(stale);
        ::chmod(project.File("param.tmp").c_str(), 0640);
        project.Write("netpara.tmp", {1, 2, 3});
        project.Write("netpara.$$$", {4, 5});
        // Temporary files a killed writer left (".<name>.<pid>.<n>.part") go; others stay.
        for (const char* name :
             {"temp.dat", "param.net", ".param.tmp.4242.0.part", ".netpara.$$$.77.13.part",
              "notes.part", ".notes.part", ".a.b.1.part"})
            project.Write(name, {});
        ModalDriver driver;
        std::vector<bool> enabled;
        driver.On("frmMenu", [&](QWidget* menu) {
            for (int i = 0; i < 8; ++i)
                enabled.push_back(test::Child(menu, QString("MenuItem(%1)").arg(i))->isEnabled());
            PressKey(ok ? menu : test::Child(menu, "Cancel"), ok ? Qt::Key_End : Qt::Key_Return);
        });
        const test::RunOutcome run = test::RunParameterMode(project, driver, !ok);
        EXPECT_EQ(run.status, 0) << run.error;
        EXPECT_EQ(run.result, ok ? 1 : 0);
        EXPECT_TRUE(run.contentChanged);
        EXPECT_EQ(project.ParamTmp(), ok ? test::SavedWith(stale, project.Cpu(), {}) : stale);
        EXPECT_EQ(project.Read("netpara.tmp"), (ok ? Bytes{4, 5} : Bytes{1, 2, 3}));
        EXPECT_EQ(project.List(),
                  (Names{".a.b.1.part", ".notes.part", "netpara.tmp", "notes.part", "param.tmp"}));
        EXPECT_EQ(std::filesystem::status(project.File("param.tmp")).permissions(),
                  std::filesystem::perms(0640));
        // The smallest CPU has no timer/counter, I/O assignment or network settings.
        EXPECT_EQ(enabled,
                  (ok ? std::vector<bool>(8, true)
                      : std::vector<bool>{true, true, false, false, true, false, true, true}));
    }
}

// Clear All asks (12), writes the defaults and says so (10), dropping the network working file;
// Cancel after it asks (1).
TEST(EntryCall, ClearAllThenOkSavesTheDefaultsAndCancelAsksFirst) {
    for (const bool ok : {true, false}) {
        SCOPED_TRACE(ok ? "OK" : "Cancel");
        TempProject project("A2A");
        ParameterImage edited = project.ParamTmp();
        edited.SetParamWord(1024, 64);
        SetCheckSum(edited, "A2A", false);
        project.SetParamTmp(edited);
        project.Write("netpara.tmp", {9});
        ModalDriver driver;
        driver
            .On("frmMenu",
                [](QWidget* menu) { PressKey(test::Child(menu, "MenuItem(7)"), Qt::Key_Return); })
            .Message(12, "Yes")
            .Message(10, "OK");
        const auto cancel = [](QWidget* menu) {
            PressKey(test::Child(menu, "Cancel"), Qt::Key_Return);
        };
        if (ok) driver.On("frmMenu", PressEnd);
        if (!ok)
            driver.On("frmMenu", cancel)
                .Message(1, "Enter")
                .On("frmMenu", cancel)
                .Message(1, "Yes");
        const test::RunOutcome run = test::RunParameterMode(project, driver);
        EXPECT_EQ(run.result, ok ? 1 : 0);
        EXPECT_EQ(test::DifferingBytes(project.ParamTmp(), ok ? test::DefaultImage("A2A") : edited),
                  std::vector<int>{});
        EXPECT_EQ(project.List(), (ok ? Names{"param.tmp"} : Names{"netpara.tmp", "param.tmp"}));
    }
}

TEST(EntryCall, OkRefusedByTheMenusChecksKeepsTheMenu) {
    // clang-format off
    const struct { const char* cpu; std::vector<std::pair<int, int>> words; const char* programEnd; int message, result; } cases[] = {
        {"A3 ", {{64, 2048}}, "2049 0 0 0", 9, 0},
        {"A3U", {{64, 30 * 1024}, {138, 2048}}, "", 23, 1},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message);
        TempProject project(c.cpu);
        project.SetParamTmp(test::SavedWith(project.ParamTmp(), c.cpu, c.words));
        project.WriteText("program.end", c.programEnd);
        ModalDriver driver;
        driver.On("frmMenu", PressEnd).Message(c.message, "OK").On("frmMenu", [](QWidget* menu) {
            PressKey(menu, Qt::Key_Escape);
        });
        EXPECT_EQ(test::RunParameterMode(project, driver).result, c.result);
    }
}

std::map<std::string, std::vector<uint8_t>> Snapshot(const test::TempDir& dir) {
    std::map<std::string, std::vector<uint8_t>> files;
    for (const std::string& name : dir.List())
        files[name] =
            std::filesystem::is_regular_file(std::filesystem::symlink_status(dir.File(name)))
                ? dir.Read(name)
                : Bytes{};
    return files;
}

TEST(EntryCall, AProjectThatCannotBeLoadedWholeOrIsInUseIsRefusedUntouched) {
    using Spoil = std::function<std::shared_ptr<void>(const TempProject&, const char* file)>;
    // clang-format off
    const struct { const char* what; Spoil spoil; const char* reason; } cases[] = {
        {"too short", [](auto& p, auto) { p.Write("param.tmp", std::vector<uint8_t>(100, 1)); return nullptr; }, "holds 100 bytes"},
        {"too long", [](auto& p, auto) { p.Write("param.tmp", std::vector<uint8_t>(3073, 1)); return nullptr; }, "holds 3073 bytes"},
        {"a directory", [](auto&, auto f) { ::unlink(f); ::mkdir(f, 0755); return nullptr; }, "not a regular file"},
        {"a FIFO", [](auto&, auto f) { ::unlink(f); ::mkfifo(f, 0644); return nullptr; }, "not a regular file"},
        {"a link to nothing", [](auto&, auto f) { ::unlink(f); [[maybe_unused]] int n = ::symlink("gone", f); return nullptr; }, "No such file"},
        {"in use by another run", [](auto& p, auto) { return std::make_shared<ProjectLock>(p.Path()); }, "in use by another run"},
        {"program.end a FIFO", [](auto& p, auto) { ::mkfifo(p.File("program.end").c_str(), 0644); return nullptr; }, "program.end"},
    };
    // clang-format on
    // Each refused run comes after a run on another project, whose image the process holds.
    TempProject other("A3 ");
    ModalDriver first;
    first.On("frmMenu", PressEnd);
    ASSERT_EQ(test::RunParameterMode(other, first).result, 1);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        TempProject project("A3 ");
        project.Write("temp.dat", {1});
        const auto held = c.spoil(project, project.File("param.tmp").c_str());
        const auto before = Snapshot(project);
        ModalDriver driver;  // a menu that opened would time the driver out
        std::string shown;
        driver.On("MessageBox", [&](QWidget* box) {
            shown = qobject_cast<QMessageBox*>(box)->text().toStdString();
            PressKey(box, Qt::Key_Return);
        });
        const test::RunOutcome run = test::RunParameterMode(project, driver);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.result, 0);
        EXPECT_NE(shown.find(c.reason), std::string::npos) << shown;
        EXPECT_NE(shown.find(project.Path()), std::string::npos) << shown;
        EXPECT_EQ(Snapshot(project), before);
    }
}

// Saved where it lies (param.tmp links to it when it differs), the save's temporary file gone.
TEST(EntryCall, ParamTmpIsSavedUnderItsOwnSpellingAndThroughItsLink) {
    const struct {
        const char* stored;
        std::vector<std::string> tree;
    } cases[] = {{"PARAM.TMP", {"PARAM.TMP"}},
                 {"store/line1.prm", {"param.tmp", "store", "store/line1.prm"}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.stored);
        TempProject project("A3 ");
        ParameterImage image = project.ParamTmp();
        image[300] = 6;
        image[525] ^= 0xFF;
        ::unlink(project.File("param.tmp").c_str());
        const bool linked = c.tree.size() > 1;
        if (linked) {
            ::mkdir(project.File("store").c_str(), 0755);
            ::symlink(c.stored, project.File("param.tmp").c_str());
        }
        project.Write(c.stored, BytesOf(image));
        ModalDriver driver;
        driver.On("frmMenu", PressEnd);
        EXPECT_EQ(test::RunParameterMode(project, driver).result, 1);
        EXPECT_EQ(project.Read(c.stored), BytesOf(test::SavedWith(image, "A3 ", {})));
        std::vector<std::string> tree;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(project.Path()))
            tree.push_back(entry.path().lexically_relative(project.Path()).string());
        std::sort(tree.begin(), tree.end());
        EXPECT_EQ(tree, c.tree);
        EXPECT_EQ(std::filesystem::is_symlink(project.File("param.tmp")), linked);
    }
}

TEST(EntryCall, AnEmptyProjectNameIsAnErrorThatTouchesNothing) {
    ::RKParam* object = RKParam_Create();
    RKParam_Let_szPcName(object, "A3 ");
    RKParam_Let_ProjectName(object, "");
    QObject guard;  // a menu that opened (on the root directory) is closed after a while
    QTimer::singleShot(5000, &guard, [] {
        if (auto* menu = qobject_cast<QDialog*>(QApplication::activeModalWidget())) menu->done(0);
    });
    int16_t result = -1;
    EXPECT_NE(RKParam_Param_main(object, &result), 0);
    EXPECT_NE(std::string(RKParam_ErrorDescription(object)).find("ProjectName"), std::string::npos);
    RKParam_Release(object);
}

// The network workbook window of the run whose template is file.
NetworkWindow* Book(const QString& file) {
    for (QWidget* window : QApplication::topLevelWidgets())
        if (auto* book = qobject_cast<NetworkWindow*>(window);
            book && book->isVisible() && book->windowTitle().endsWith(file))
            return book;
    ADD_FAILURE() << "no workbook " << file.toStdString();
    return nullptr;
}
void Click(QWidget* window, const char* name) {
    test::ChildAs<QAbstractButton>(window, name)->click();
}
const auto OpenNetwork = [](QWidget* menu) { Click(menu, "MenuItem(5)"); };
const auto AskForMornetII = [](QWidget* menu) {
    Click(menu, "MenuItem(2)");
    Click(menu, "OK");
};

// "param.tmp" of an "A3A" project with network data of MORNET mode (1024 = 1, mode bits 63).
ParameterImage StoreMornetData(const test::TempProject& project) {
    ParameterImage stored = project.ParamTmp();
    stored[1024] = 1;
    stored[1030] = 0x11;
    stored[2560] = 63;
    SetCheckSum(stored, "A3A", true);
    project.SetParamTmp(stored);
    return stored;
}

// Typed bytes, Save, Close, the menu's OK: "param.tmp" holds them with the sum of the block.
TEST(NetworkWorkbook, SavedBytesReachParamTmpWithTheBlocksSum) {
    test::TempProject project("A3 ");
    ParameterImage expected = project.ParamTmp();
    ModalDriver driver;
    driver.On("frmMenu", OpenNetwork).Message(24, "Yes").On("frmMenu", [](QWidget* menu) {
        NetworkWindow* book = Book("MORNET.xls");
        book->CellOf(1024)->setText("01");
        book->CellOf(1030)->setText("5A");
        book->Save->click();
        book->Close->click();
        PressEnd(menu);
    });
    EXPECT_EQ(test::RunParameterMode(project, driver).result, 1);
    expected[1024] = 1;
    expected[1030] = 0x5A;
    SetCheckSum(expected, "A3 ", true);
    EXPECT_EQ(test::DifferingBytes(project.ParamTmp(), expected), std::vector<int>{});
}

// Cleared for MORNET II, edited in its workbook and saved: MORNET II is its mode from then on.
TEST(NetworkWorkbook, DataSavedInTheMornetIIWorkbookAreOfThatMode) {
    const test::TempProject project("A3A");
    StoreMornetData(project);
    ModalDriver driver;
    driver.On("frmMenu", OpenNetwork).On("frmNetworkMenu", AskForMornetII);
    driver.Message(25, "Yes").Message(10, "OK").Message(24, "Yes");
    driver.On("frmNetworkMenu", [](QWidget* menu) {
        Book("MORNET2.xls")->CellOf(1024)->setText("01");
        Book("MORNET2.xls")->Save->click();
        Book("MORNET2.xls")->Close->click();
        AskForMornetII(menu);
    });
    driver.Message(24, "No").On("frmNetworkMenu", [](QWidget* menu) { Click(menu, "Cancel"); });
    driver.On("frmMenu", PressEnd);
    EXPECT_EQ(test::RunParameterMode(project, driver).result, 1);
    EXPECT_EQ(driver.messages, (std::vector<int>{25, 10, 24, 24}));
    EXPECT_EQ(project.ParamTmp()[2560], 0xC2);
}

// A workbook left open while the network menu clears the area: its Save asks about the edit
// made before the clearing, and dropping it brings none of the old bytes back.
TEST(NetworkWorkbook, AWorkbookOpenDuringTheClearingDoesNotSaveTheOldBytes) {
    const test::TempProject project("A3A");
    ParameterImage stored = StoreMornetData(project);
    ModalDriver driver;
    driver.On("frmMenu", OpenNetwork).On("frmNetworkMenu", [](QWidget* m) { Click(m, "OK"); });
    driver.Message(24, "Yes").On("frmNetworkMenu", [](QWidget* menu) {
        Book("MORNET.xls")->CellOf(1030)->setText("5A");
        AskForMornetII(menu);
    });
    driver.Message(25, "Yes").Message(10, "OK").Message(24, "Yes");
    driver.On("frmNetworkMenu", [](QWidget*) { Book("MORNET.xls")->Save->click(); });
    driver.On("FileChanged", [](QWidget* box) { Click(box, "Discard"); });
    driver.On("frmNetworkMenu", [](QWidget* menu) {
        Book("MORNET.xls")->Close->click();
        Book("MORNET2.xls")->Close->click();
        Click(menu, "Cancel");
    });
    driver.On("frmMenu", PressEnd);
    EXPECT_EQ(test::RunParameterMode(project, driver).result, 1);
    EXPECT_EQ(driver.messages, (std::vector<int>{24, 25, 10, 24}));
    ClearLink(stored);
    SetCheckSum(stored, "A3A", false);
    EXPECT_EQ(test::DifferingBytes(project.ParamTmp(), stored), std::vector<int>{});
}

}  // namespace
}  // namespace gantrix
