// SPDX-License-Identifier: Apache-2.0
#include "start/frmStart.h"

#include <QApplication>
#include <QComboBox>
#include <QDateTime>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIcon>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSettings>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "common/qt/FormControls.h"
#include "entry/RKParam.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "store/ParameterFiles.h"
#include "store/RuntimeError.h"

namespace gantrix {
namespace {

const char* const kTitle = "PLC Parameter Mode";

void Warn(QWidget* parent, const std::string& text) {
    QMessageBox box(QMessageBox::Warning, kTitle, Q(text), QMessageBox::Ok, parent);
    box.setObjectName("StartMessage");
    box.exec();
}

// A folder as typed or chosen, absolute: "~/" is the home folder, a relative one is taken
// from the working directory, as the command line takes it.
std::string Absolute(const QString& folder) {
    QString path = folder;
    if (path == "~" || path.startsWith("~/")) path = QDir::homePath() + path.mid(1);
    return ListedFolder(path.toStdString(), QDir::currentPath().toStdString());
}

// The reason folder is no project folder; "" when it holds a "param.tmp".
std::string Refusal(const std::string& folder) {
    try {
        if (!QFileInfo(Q(folder)).isDir()) return "The folder \"" + folder + "\" does not exist.";
        if (FindEntry(folder + "/param.tmp").empty()) {
            return "The folder \"" + folder +
                   "\" holds no \"param.tmp\", so it is not a project folder. Choose the folder "
                   "of a project, or make one with \"New project...\".";
        }
    } catch (const RuntimeError& error) {
        return error.Description();
    }
    return {};
}

// When "param.tmp" last changed, as the list shows it.
QString LastChange(const std::string& folder) {
    try {
        const std::string name = Dir(folder + "/param.tmp");
        if (!name.empty())
            return QFileInfo(Q(folder + "/" + name)).lastModified().toString("yyyy-MM-dd HH:mm");
    } catch (const RuntimeError&) {
    }
    return "param.tmp not found";
}

QStringList CpuTypes() {
    QStringList codes;
    for (std::string_view code : platform::kCpuTypes) codes << Q(std::string(code));
    return codes;
}

}  // namespace

RecentProjects LoadRecentProjects() {
    QSettings settings("gantrixa0j", "rkparam");
    std::vector<RecentProject> stored;
    const int count = settings.beginReadArray("RecentProjects");
    for (int i = 0; i < count; ++i) {
        settings.setArrayIndex(i);
        stored.push_back({settings.value("folder").toString().toStdString(),
                          settings.value("cpu").toString().toStdString()});
    }
    settings.endArray();
    return RecentProjects(stored);
}

void SaveRecentProjects(const RecentProjects& recent) {
    QSettings settings("gantrixa0j", "rkparam");
    settings.remove("RecentProjects");
    settings.beginWriteArray("RecentProjects", static_cast<int>(recent.Entries().size()));
    for (size_t i = 0; i < recent.Entries().size(); ++i) {
        settings.setArrayIndex(static_cast<int>(i));
        settings.setValue("folder", Q(recent.Entries()[i].folder));
        settings.setValue("cpu", Q(recent.Entries()[i].cpu));
    }
    settings.endArray();
}

frmStart::frmStart(StartHost host, QWidget* parent)
    : QWidget(parent), host_(std::move(host)), recent_(LoadRecentProjects()) {
    setObjectName("frmStart");
    setWindowTitle(kTitle);
    setAcceptDrops(true);

    auto* caption = new QLabel("&Recent projects", this);
    caption->setObjectName("RecentCaption");
    RecentList = new QTreeWidget(this);
    RecentList->setObjectName("RecentList");
    RecentList->setHeaderLabels({"Project folder", "CPU type", "Last change"});
    RecentList->setRootIsDecorated(false);
    RecentList->setUniformRowHeights(true);
    RecentList->setAllColumnsShowFocus(true);
    RecentList->header()->setStretchLastSection(false);
    RecentList->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    RecentList->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    RecentList->header()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
    RecentList->installEventFilter(this);
    caption->setBuddy(RecentList);
    NameField(RecentList, "Recent projects",
              "Enter opens the project, Delete takes it off the list");
    EmptyNote = new QLabel(
        "No project has been opened here yet. Open a project folder, make a new project, or "
        "drop a project folder on this window.",
        this);
    EmptyNote->setObjectName("EmptyNote");
    EmptyNote->setWordWrap(true);
    Status = new QLabel(this);
    Status->setObjectName("Status");
    Status->setWordWrap(true);

    OpenFolder = new QPushButton("&Open project folder...", this);
    OpenFolder->setObjectName("OpenFolder");
    NewProject = new QPushButton("&New project...", this);
    NewProject->setObjectName("NewProject");
    Remove = new QPushButton("&Remove from list", this);
    Remove->setObjectName("Remove");
    Close = new QPushButton("&Close", this);
    Close->setObjectName("Close");
    connect(OpenFolder, &QPushButton::clicked, this, &frmStart::OpenFolderClicked);
    connect(NewProject, &QPushButton::clicked, this, &frmStart::NewProjectClicked);
    connect(Remove, &QPushButton::clicked, this, &frmStart::RemoveClicked);
    connect(Close, &QPushButton::clicked, this, &QWidget::close);
    connect(RecentList, &QTreeWidget::itemActivated, this,
            [this](QTreeWidgetItem* item) { OpenProject(item->data(0, Qt::UserRole).toString()); });
    connect(RecentList, &QTreeWidget::currentItemChanged, this,
            [this](QTreeWidgetItem* item) { Remove->setEnabled(item != nullptr); });

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(OpenFolder);
    buttons->addWidget(NewProject);
    buttons->addWidget(Remove);
    buttons->addStretch();
    buttons->addWidget(Close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(caption);
    layout->addWidget(RecentList, 1);
    layout->addWidget(EmptyNote, 1);
    layout->addWidget(Status);
    layout->addLayout(buttons);
    setTabOrder(RecentList, OpenFolder);
    setTabOrder(OpenFolder, NewProject);
    setTabOrder(NewProject, Remove);
    setTabOrder(Remove, Close);
    resize(720, 380);
    ShowList();
}

void frmStart::ShowList() {
    RecentList->clear();
    for (const RecentProject& entry : recent_.Entries()) {
        auto* item = new QTreeWidgetItem(
            RecentList, {Q(entry.folder), Q(entry.cpu).trimmed(), LastChange(entry.folder)});
        item->setData(0, Qt::UserRole, Q(entry.folder));
        item->setToolTip(0, Q(entry.folder));
    }
    const bool empty = recent_.Entries().empty();
    RecentList->setVisible(!empty);
    EmptyNote->setVisible(empty);
    if (!empty) RecentList->setCurrentItem(RecentList->topLevelItem(0));
    if (Status->text().isEmpty() && !empty)
        Status->setText("Enter opens the selected project, Delete takes it off the list.");
    Remove->setEnabled(!empty);
    (empty ? static_cast<QWidget*>(OpenFolder) : RecentList)->setFocus();
}

void frmStart::Remember() {
    SaveRecentProjects(recent_);
    ShowList();
}

QString frmStart::StartFolder() const {
    if (recent_.Entries().empty()) return QDir::homePath();
    return QFileInfo(Q(recent_.Entries().front().folder)).path();
}

std::string frmStart::AskCpuType(const std::string& folder) {
    QInputDialog ask(this);
    ask.setObjectName("CpuTypeChooser");
    ask.setWindowTitle(kTitle);
    ask.setLabelText(Q("The project \"" + folder + "\" does not note its CPU type.\n&CPU type:"));
    ask.setComboBoxItems(CpuTypes());
    ask.setComboBoxEditable(false);
    if (ask.exec() != QDialog::Accepted) return {};
    return ask.textValue().toStdString();
}

void frmStart::OpenProject(const QString& chosen) {
    const std::string folder = Absolute(chosen);
    if (const std::string refusal = Refusal(folder); !refusal.empty()) {
        Warn(this, refusal);
        return;
    }
    std::string cpu = host_.cpuNote(folder);
    const bool noted = !cpu.empty();
    if (const RecentProject* known = recent_.Find(folder); !noted && known) cpu = known->cpu;
    if (cpu.empty() && (cpu = AskCpuType(folder)).empty()) return;

    // The parameter mode is the one window while it runs; its last window closing must not
    // end the application.
    hide();
    const bool quitOnClose = QApplication::quitOnLastWindowClosed();
    QApplication::setQuitOnLastWindowClosed(false);
    const HostOutcome outcome = host_.run(folder, noted ? "" : cpu);
    QApplication::setQuitOnLastWindowClosed(quitOnClose);
    show();
    raise();
    activateWindow();
    const bool ran = outcome.status == 0 || outcome.status == 1;
    static const char* const kEnds[] = {
        "Parameters saved: ", "Left without saving: ", "Not opened: "};
    Status->setText(kEnds[ran ? outcome.status : 2] + Q(folder));
    if (ran) {
        recent_.Add(folder, cpu);
        Remember();
    }
    if (!outcome.message.empty()) Warn(this, outcome.message);
}

void frmStart::OpenFolderClicked() {
    QFileDialog chooser(this, "Open project folder", StartFolder());
    chooser.setObjectName("FolderChooser");
    chooser.setFileMode(QFileDialog::Directory);
    chooser.setOption(QFileDialog::ShowDirsOnly);
    if (chooser.exec() != QDialog::Accepted || chooser.selectedFiles().isEmpty()) return;
    OpenProject(chooser.selectedFiles().first());
}

void frmStart::NewProjectClicked() {
    const std::string cpu = recent_.Entries().empty() ? "" : recent_.Entries().front().cpu;
    frmNewProject dialog(host_, StartFolder() + "/", cpu, this);
    if (dialog.exec() == QDialog::Accepted) OpenProject(Q(dialog.Made()));
}

void frmStart::RemoveClicked() {
    if (QTreeWidgetItem* item = RecentList->currentItem()) {
        recent_.Remove(item->data(0, Qt::UserRole).toString().toStdString());
        Remember();
    }
}

bool frmStart::eventFilter(QObject* watched, QEvent* event) {
    if (watched == RecentList && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Delete) {
        RemoveClicked();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

namespace {

// The first local folder among the dropped items; "" when there is none.
QString DroppedFolder(const QMimeData* data) {
    for (const QUrl& url : data->urls()) {
        if (url.isLocalFile() && QFileInfo(url.toLocalFile()).isDir()) return url.toLocalFile();
    }
    return {};
}

}  // namespace

void frmStart::dragEnterEvent(QDragEnterEvent* event) {
    if (!DroppedFolder(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void frmStart::dropEvent(QDropEvent* event) {
    const QString folder = DroppedFolder(event->mimeData());
    if (folder.isEmpty()) return;
    event->acceptProposedAction();
    // The run has its own event loop: it starts once the drop is over.
    QTimer::singleShot(0, this, [this, folder] { OpenProject(folder); });
}

frmNewProject::frmNewProject(const StartHost& host, const QString& folder, const std::string& cpu,
                             QWidget* parent)
    : QDialog(parent), host_(host) {
    setObjectName("frmNewProject");
    setWindowTitle("New project");
    auto* folderCaption = new QLabel("Project &folder:", this);
    folderCaption->setObjectName("FolderCaption");
    Folder = new QLineEdit(folder, this);
    Folder->setObjectName("Folder");
    Folder->setMinimumWidth(360);
    folderCaption->setBuddy(Folder);
    NameField(Folder, "Project folder", "made with its parents when missing");
    Browse = new QPushButton("&Browse...", this);
    Browse->setObjectName("Browse");
    Browse->setAutoDefault(false);
    auto* cpuCaption = new QLabel("&CPU type:", this);
    cpuCaption->setObjectName("CpuCaption");
    Cpu = new QComboBox(this);
    Cpu->setObjectName("Cpu");
    Cpu->addItems(CpuTypes());
    if (const int index = Cpu->findText(Q(cpu)); index >= 0) Cpu->setCurrentIndex(index);
    cpuCaption->setBuddy(Cpu);
    NameField(Cpu, "CPU type");
    OK = new QPushButton("OK", this);
    OK->setObjectName("OK");
    OK->setDefault(true);
    Cancel = new QPushButton("Cancel", this);
    Cancel->setObjectName("Cancel");
    Cancel->setAutoDefault(false);
    connect(OK, &QPushButton::clicked, this, &QDialog::accept);
    connect(Cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(Browse, &QPushButton::clicked, this, [this] {
        const QString chosen =
            QFileDialog::getExistingDirectory(this, "Project folder", Folder->text());
        if (!chosen.isEmpty()) Folder->setText(chosen);
    });

    auto* grid = new QGridLayout;
    grid->addWidget(folderCaption, 0, 0);
    grid->addWidget(Folder, 0, 1);
    grid->addWidget(Browse, 0, 2);
    grid->addWidget(cpuCaption, 1, 0);
    grid->addWidget(Cpu, 1, 1, Qt::AlignLeft);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(OK);
    buttons->addWidget(Cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(buttons);
    setTabOrder(Folder, Browse);
    setTabOrder(Browse, Cpu);
    setTabOrder(Cpu, OK);
    setTabOrder(OK, Cancel);
    Folder->setFocus();
}

void frmNewProject::accept() {
    if (Folder->text().trimmed().isEmpty()) {
        Warn(this, "Give the folder of the new project.");
        Folder->setFocus();
        return;
    }
    const std::string folder = Absolute(Folder->text());
    const HostOutcome outcome = host_.create(Cpu->currentText().toStdString(), folder);
    if (!outcome.message.empty()) Warn(this, outcome.message);
    if (outcome.status != 0) {
        Folder->setFocus();
        return;
    }
    made_ = folder;
    QDialog::accept();
}

int RunStartWindow(const StartHost& host) {
    EnsureApplication();
    QGuiApplication::setDesktopFileName("rkparam");
    QApplication::setWindowIcon(QIcon::fromTheme("gantrixa0j"));
    frmStart window(host);
    window.show();
    return QApplication::exec();
}

}  // namespace gantrix
