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

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

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
            return HostOutcome{1, ""};
        };
    }
    void Show() {
        window = std::make_unique<frmStart>(host);
        window->show();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    std::string Project(const std::string& name, const std::string& note) {
        CreateProject("A3 ", plc.File(name), false);
        if (!note.empty()) notes[plc.File(name)] = note;
        return plc.File(name);
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
    SaveRecentProjects(RecentProjects({{s.Project("old", "A3 "), "A3 "}}));
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
            test::Retype(test::ChildAs<QLineEdit>(dialog, "Folder"), Q(made));
            PressKey(test::Child(dialog, "Folder"), Qt::Key_Tab);
            PressKey(QApplication::focusWidget(), Qt::Key_Tab);  // past Browse... to the CPU type
            PressKey(QApplication::focusWidget(), Qt::Key_End);
            PressKey(QApplication::focusWidget(), Qt::Key_Up);
            PressKey(QApplication::focusWidget(), Qt::Key_Return);
        });
        if (again) {
            driver.On("StartMessage", [&](QWidget* box) {
                refusal = static_cast<QMessageBox*>(box)->text().toStdString();
                PressKey(box, Qt::Key_Return);
            });
            driver.On("frmNewProject", [](QWidget* dialog) { PressKey(dialog, Qt::Key_Escape); });
        }
        driver.Run([&] { PressButtonKey(s.window.get(), Qt::Key_N); });
        EXPECT_EQ(s.runs, Strings{made + " "});
        EXPECT_EQ(s.notes[made], "A3U");
        EXPECT_EQ(refusal.find("param.tmp") != std::string::npos, again) << refusal;
    }
    EXPECT_TRUE(s.window->isVisible());
    s.Show();
    EXPECT_EQ(s.Rows(), (Strings{made + " A3U", s.plc.File("old") + " A3"}));
    PressKey(s.window->RecentList, Qt::Key_Delete);
    s.Show();
    EXPECT_EQ(s.Rows(), Strings{s.plc.File("old") + " A3"});
}

// A folder chosen, dropped or picked from the list: one without "param.tmp" is refused by name
// and not listed; a project runs on its note, else on the CPU type listed or chosen.
TEST(frmStart, AFolderWithoutParamTmpIsRefusedAProjectRunsOnItsCpuType) {
    const struct {
        const char* how;
        const char* folder;
        const char* note;
        const char* chosen;  // in the CPU type chooser, "" when none is asked
        const char* run;     // the CPU type the run is given ("" its note; none for "empty")
    } cases[] = {
        {"chooser", "empty", "", "", ""},    {"drop", "empty", "", "", ""},
        {"chooser", "noted", "A2C", "", ""}, {"drop", "unnoted", "", "A0J", "A0J"},
        {"list", "unnoted", "", "", "A4U"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.how) + " " + c.folder);
        Start s;
        const std::string folder = s.plc.File(c.folder);
        if (std::string(c.folder) == "empty") {
            std::filesystem::create_directory(folder);
        } else {
            s.Project(c.folder, c.note);
        }
        if (std::string(c.how) == "list") SaveRecentProjects(RecentProjects({{folder, c.run}}));
        s.Show();
        std::string refusal;
        test::ModalDriver driver;
        if (std::string(c.how) == "chooser") {
            driver.On("FolderChooser", [&](QWidget* chooser) {
                test::TypeKeys(chooser->findChild<QLineEdit*>("fileNameEdit"), Q(folder));
                PressKey(QApplication::focusWidget(), Qt::Key_Return);
            });
        }
        if (*c.chosen) {
            driver.On("CpuTypeChooser", [&](QWidget* ask) {
                test::TypeKeys(QApplication::focusWidget(), c.chosen);
                PressKey(ask, Qt::Key_Return);
            });
        }
        if (std::string(c.folder) == "empty") {
            driver.On("StartMessage", [&](QWidget* box) {
                refusal = static_cast<QMessageBox*>(box)->text().toStdString();
                PressKey(box, Qt::Key_Return);
            });
        }
        driver.Run([&] {
            if (std::string(c.how) == "chooser") {
                PressButtonKey(s.window.get(), Qt::Key_O);
            } else if (std::string(c.how) == "list") {
                PressKey(s.window->RecentList, Qt::Key_Return);
            } else {
                QMimeData data;
                data.setUrls({QUrl::fromLocalFile(Q(folder))});
                QDragEnterEvent enter(QPoint(9, 9), Qt::CopyAction, &data, Qt::LeftButton, {});
                QDropEvent drop(QPointF(9, 9), Qt::CopyAction, &data, Qt::LeftButton, {});
                QApplication::sendEvent(s.window.get(), &enter);
                QApplication::sendEvent(s.window.get(), &drop);
                QTest::qWait(50);
            }
        });
        const bool ran = std::string(c.folder) != "empty";
        EXPECT_EQ(s.runs, ran ? Strings{folder + " " + c.run} : Strings{});
        EXPECT_EQ(refusal.find("\"" + folder + "\" holds no \"param.tmp\"") != std::string::npos,
                  !ran)
            << refusal;
        EXPECT_EQ(s.Rows(), ran ? Strings{folder + " " + (*c.note ? c.note : c.run)} : Strings{});
    }
}

}  // namespace
}  // namespace gantrix
