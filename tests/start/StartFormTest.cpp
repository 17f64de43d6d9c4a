// SPDX-License-Identifier: Apache-2.0
#include "start/frmStart.h"

#include <QAccessible>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QTreeWidget>
#include <map>

#include "store/RuntimeError.h"
#include "support/FormFixture.h"

namespace gantrix {
namespace {

using test::PressKey;
using Strings = std::vector<std::string>;

const auto Q = &QString::fromStdString;

// Alt and the underlined letter of a button, which clicks it once seen pressed.
void PressButtonKey(QWidget* window, Qt::Key key) {
    PressKey(window, key, Qt::AltModifier);
    QTest::qWait(200);
}

// The start window on settings of its own, over a host that makes projects as "rkparam new"
// does and records the runs.
struct Start {
    test::TempDir settings, plc;
    std::map<std::string, std::string> notes;  // folder -> the CPU type it notes
    Strings runs;                              // "folder cpu", cpu "" for the note
    HostOutcome ran{1, ""};                    // how each run ends
    StartHost host;
    std::unique_ptr<frmStart> window;

    Start() {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, Q(settings.Path()));
        host.create = [this](const std::string& cpu, const std::string& dir) -> HostOutcome {
            try {
                CreateProject(cpu, dir, false);
            } catch (const RuntimeError& error) {
                return {2, error.Description()};
            }
            notes[dir] = cpu;
            return {};
        };
        host.cpuNote = [this](const std::string& dir) { return notes[dir]; };
        host.run = [this](const std::string& dir, const std::string& cpu) {
            runs.push_back(dir + " " + cpu);
            EXPECT_FALSE(window->isVisible()) << "the window stays while the run shows its own";
            return ran;
        };
    }
    void Show() {
        window = std::make_unique<frmStart>(host);
        window->show();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    // Answers the next start window message with Enter, keeping its text.
    void ReadMessage(test::ModalDriver& driver, std::string& text) {
        driver.On("StartMessage", [&text](QWidget* box) {
            text = static_cast<QMessageBox*>(box)->text().toStdString();
            PressKey(box, Qt::Key_Return);
        });
    }
    Strings Rows() const {
        Strings rows;
        for (int i = 0; i < window->RecentList->topLevelItemCount(); ++i) {
            const QTreeWidgetItem* item = window->RecentList->topLevelItem(i);
            rows.push_back((item->text(0) + " " + item->text(1)).toStdString());
        }
        return rows;
    }
};

// Keys only: Alt+N, the folder typed, the CPU type by arrow, Enter; the project is made as
// "rkparam new" makes it, run, and listed first, also once the window is opened again. Made
// again, the host's refusal shows and the dialog stays; Delete takes an entry off the list.
TEST(frmStart, NewProjectByKeysIsMadeRunAndListedFirst) {
    Start s;
    CreateProject("A3 ", s.plc.File("old"), false);
    SaveRecentProjects(RecentProjects({{s.plc.File("old"), "A3 "}}));
    s.Show();
    const std::string made = s.plc.File("line/1");
    for (const bool again : {false, true}) {
        std::string refusal;
        test::ModalDriver driver;
        driver.On("frmNewProject", [&](QWidget* dialog) {
            for (QWidget* field : {test::Child(dialog, "Folder"), test::Child(dialog, "Cpu")})
                EXPECT_FALSE(QAccessible::queryAccessibleInterface(field)
                                 ->text(QAccessible::Name)
                                 .isEmpty());
            PressKey(dialog, Qt::Key_C, Qt::AltModifier);  // each caption's letter
            EXPECT_EQ(dialog->focusWidget(), test::Child(dialog, "Cpu"));
            PressKey(dialog, Qt::Key_F, Qt::AltModifier);
            EXPECT_EQ(dialog->focusWidget(), test::Child(dialog, "Folder"));
            test::Retype(test::ChildAs<QLineEdit>(dialog, "Folder"), Q(made));
            PressKey(test::Child(dialog, "Folder"), Qt::Key_Tab);
            PressKey(QApplication::focusWidget(), Qt::Key_Tab);  // past Browse... to the CPU type
            PressKey(QApplication::focusWidget(), Qt::Key_End);
            PressKey(QApplication::focusWidget(), Qt::Key_Up);
            PressKey(QApplication::focusWidget(), Qt::Key_Return);
        });
        if (again) {
            s.ReadMessage(driver, refusal);
            driver.On("frmNewProject", [](QWidget* dialog) {
                EXPECT_EQ(dialog->focusWidget(), test::Child(dialog, "Folder"));
                EXPECT_EQ(test::LayoutFaults(dialog), Strings{});
                PressKey(dialog, Qt::Key_Escape);
            });
        }
        driver.Run([&] { PressButtonKey(s.window.get(), Qt::Key_N); });
        EXPECT_EQ(s.runs, Strings{made + " "});
        EXPECT_EQ(s.notes[made], "A3U");
        EXPECT_EQ(refusal.find("param.tmp") != std::string::npos, again) << refusal;
    }
    EXPECT_TRUE(s.window->isVisible());
    EXPECT_EQ(test::LayoutFaults(s.window.get()), Strings{});
    s.Show();
    EXPECT_EQ(s.Rows(), (Strings{made + " A3U", s.plc.File("old") + " A3"}));
    PressKey(s.window->RecentList, Qt::Key_Delete);
    s.Show();
    EXPECT_EQ(s.Rows(), Strings{s.plc.File("old") + " A3"});
}

// A folder chosen, dropped or picked from the list: one without "param.tmp" is refused by name
// and not listed; a project noting no CPU type runs on the one chosen, or listed for it. A run
// that fails shows its message.
TEST(frmStart, AFolderWithoutParamTmpIsRefusedAProjectRunsOnItsCpuType) {
    // how the folder opens, whether it is a project, the CPU type chosen or listed, the run's
    // status and the line the window shows then
    const std::tuple<std::string, bool, std::string, int, std::string> cases[] = {
        {"chooser", false, "", 0, ""},
        {"drop", true, "A0J", 1, "Left without saving: "},
        {"list", true, "A4U", 2, "Not opened: "}};
    for (const auto& row : cases) {
        // Variables, not a structured binding: the lambdas below capture them.
        const std::string &how = std::get<0>(row), &cpu = std::get<2>(row),
                          &shown = std::get<4>(row);
        const bool project = std::get<1>(row);
        const int status = std::get<3>(row);
        SCOPED_TRACE(how);
        Start s;
        s.ran = {status, status == 2 ? "damaged" : ""};
        const std::string folder = s.plc.File("line");
        std::filesystem::create_directory(folder);
        if (project) CreateProject("A3 ", folder, false);  // noting no CPU type
        if (how == "list") SaveRecentProjects(RecentProjects({{folder, cpu}}));
        s.Show();
        std::string refusal;
        test::ModalDriver driver;
        if (how == "chooser") {
            driver.On("FolderChooser", [&](QWidget* chooser) {
                test::TypeKeys(chooser->findChild<QLineEdit*>("fileNameEdit"), Q(folder));
                PressKey(QApplication::focusWidget(), Qt::Key_Return);
            });
        } else if (how == "drop") {
            driver.On("CpuTypeChooser", [&](QWidget* ask) {
                test::TypeKeys(QApplication::focusWidget(), Q(cpu));
                PressKey(ask, Qt::Key_Return);
            });
        }
        if (!project || status == 2) s.ReadMessage(driver, refusal);
        driver.Run([&] {
            if (how == "chooser") return PressButtonKey(s.window.get(), Qt::Key_O);
            if (how == "list") return PressKey(s.window->RecentList, Qt::Key_Return);
            QMimeData data;
            data.setUrls({QUrl::fromLocalFile(Q(folder))});
            QDragEnterEvent enter(QPoint(9, 9), Qt::CopyAction, &data, Qt::LeftButton, {});
            QDropEvent drop(QPointF(9, 9), Qt::CopyAction, &data, Qt::LeftButton, {});
            QApplication::sendEvent(s.window.get(), &enter);
            QApplication::sendEvent(s.window.get(), &drop);
            QTest::qWait(50);
        });
        const Strings listed = project ? Strings{folder + " " + cpu} : Strings{};
        EXPECT_EQ(s.runs, listed);
        EXPECT_EQ(s.Rows(), listed);
        EXPECT_EQ(refusal.find('"' + folder + "\" holds no \"param.tmp\"") != std::string::npos,
                  !project)
            << refusal;
        EXPECT_EQ(refusal == "damaged", status == 2);
        EXPECT_EQ(s.window->Status->text().toStdString(), project ? shown + folder : "");
    }
}

// The program's start: the window shown under the program's own desktop entry, whose icon and
// name the desktop gives it, until it is closed.
TEST(frmStart, TheStartRunsUntilTheWindowIsClosed) {
    Start s;
    QString shownAs;
    QTimer stuck;  // no window to close; its timers go with the test
    stuck.setSingleShot(true);
    QObject::connect(&stuck, &QTimer::timeout, [] { QApplication::exit(9); });
    stuck.start(5000);
    QTimer::singleShot(100, &stuck, [&shownAs] {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (qobject_cast<frmStart*>(window) == nullptr || !window->isVisible()) continue;
            shownAs = QGuiApplication::desktopFileName();
            window->close();
        }
    });
    EXPECT_EQ(RunStartWindow(s.host), 0);
    EXPECT_EQ(shownAs.toStdString(), "rkparam");
}

}  // namespace
}  // namespace gantrix
