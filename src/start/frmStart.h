// SPDX-License-Identifier: Apache-2.0
#pragma once
// The start window of rkparam, shown when no project is named: the projects opened last,
// "Open project folder..." (chosen, dropped on the window or picked from the list) and
// "New project...". Projects are made and opened through the host program's own commands,
// so each works exactly as on the command line; while the parameter mode runs on a project
// the window is away, and it comes back with the project at the top of the list.

#include <QDialog>
#include <QWidget>
#include <functional>
#include <string>

#include "start/RecentProjects.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;

namespace gantrix {

// What a command of the host program came to: its exit status (0 done, 1 a run left without
// saving, 2 refused or failed) and what it had to say, for a message box ("" for nothing).
struct HostOutcome {
    int status = 0;
    std::string message;
};

// The host program's commands, as the start window uses them.
struct StartHost {
    // "rkparam new --cpu CPU DIR".
    std::function<HostOutcome(const std::string& cpu, const std::string& dir)> create;
    // The CPU type the project notes for itself; "" when it notes none that can be read.
    std::function<std::string(const std::string& dir)> cpuNote;
    // "rkparam [--cpu CPU] DIR": the parameter mode on the project; cpu "" takes its note.
    std::function<HostOutcome(const std::string& dir, const std::string& cpu)> run;
};

class frmStart : public QWidget {
    Q_OBJECT

  public:
    explicit frmStart(StartHost host, QWidget* parent = nullptr);

    // Runs the parameter mode on folder (relative to the working directory). A folder
    // without "param.tmp" is refused with a message naming it. The CPU type is the project's
    // note, else the one of its last run from this window, else the user chooses it.
    void OpenProject(const QString& folder);
    // Behind the buttons: the folder chooser, then OpenProject; frmNewProject, then
    // OpenProject on the new project; the current entry taken off the list.
    void OpenFolderClicked();
    void NewProjectClicked();
    void RemoveClicked();

    const RecentProjects& Recent() const { return recent_; }

    QTreeWidget* RecentList = nullptr;  // folder, CPU type, last change of "param.tmp"
    QLabel* EmptyNote = nullptr;        // shown instead of an empty list
    QLabel* Status = nullptr;           // how the last run ended
    QPushButton* OpenFolder = nullptr;
    QPushButton* NewProject = nullptr;
    QPushButton* Remove = nullptr;
    QPushButton* Close = nullptr;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void ShowList();
    void Remember();
    std::string AskCpuType(const std::string& folder);
    QString StartFolder() const;

    StartHost host_;
    RecentProjects recent_;
};

// Asks for the folder and CPU type of a new project and makes it through StartHost::create;
// a refusal is shown with the host's message and the dialog stays open.
class frmNewProject : public QDialog {
    Q_OBJECT

  public:
    frmNewProject(const StartHost& host, const QString& folder, const std::string& cpu,
                  QWidget* parent);
    void accept() override;
    // The folder made, absolute; "" until it is made.
    const std::string& Made() const { return made_; }

    QLineEdit* Folder = nullptr;
    QPushButton* Browse = nullptr;
    QComboBox* Cpu = nullptr;
    QPushButton* OK = nullptr;
    QPushButton* Cancel = nullptr;

  private:
    const StartHost& host_;
    std::string made_;
};

// Where the start window keeps its list: QSettings of organisation "gantrixa0j",
// application "rkparam" (~/.config/gantrixa0j/rkparam.conf).
RecentProjects LoadRecentProjects();
void SaveRecentProjects(const RecentProjects& recent);

// Shows the start window until it is closed, making the QApplication when there is none;
// returns the event loop's exit code.
int RunStartWindow(const StartHost& host);

}  // namespace gantrix
