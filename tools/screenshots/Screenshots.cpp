// SPDX-License-Identifier: Apache-2.0
// Takes screenshots of the component's windows for the documentation.
//
//   gantrix_screenshots OUTDIR NAME CPU [STEP...]
//
// Opens the window NAME ("frmMenu" or any registered dialog) for a default project of CPU
// type CPU and runs the steps on the active window: a Qt key name (PgDown, Return) or a
// single character is typed into the focused control; "click:OBJECT" clicks the button of
// that object name (which may open a nested dialog). Then the active window is saved as
// OUTDIR/NAME-CPU[-steps].png (or, after a click into a nested dialog, under that
// dialog's name) and every window is closed. NAME "spreadsheet" shoots the workbook windows,
// "start" the start window and its new project dialog (OUTDIR/frmStart.png, frmNewProject.png).

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QKeySequence>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QPushButton>
#include <QSettings>
#include <QTest>
#include <QTimer>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <iostream>
#include <tuple>
#include <vector>

#include "common/DialogContext.h"
#include "common/StringTable.h"
#include "common/qt/DialogRegistry.h"
#include "dialogs/frmMINI/MINIFields.h"
#include "entry/RKParam.h"
#include "headless/Headless.h"
#include "menus/frmMenu.h"
#include "platform/excel/Excel.h"
#include "print/PrintRules.h"
#include "report/ParameterReport.h"
#include "spreadsheet/ReportWindow.h"
#include "start/frmStart.h"
#include "store/CheckSum.h"
#include "store/ParameterFiles.h"
#include "store/Project.h"
#include "support/core/TestSupport.h"

namespace {

// Waits for the window system, then saves widget as OUTDIR/spreadsheet-NAME-CPU.png.
bool Shoot(QWidget* widget, const QString& outDir, const QString& name, const std::string& cpu) {
    QTest::qWait(400);
    const QString file =
        outDir + "/spreadsheet-" + name + "-" + QString::fromStdString(cpu).trimmed() + ".png";
    const bool saved = widget != nullptr && widget->grab().save(file);
    std::cout << (saved ? "" : "could not save ") << file.toStdString() << "\n";
    return saved;
}

QWidget* WorkbookWindow() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == "frmSpreadsheet" && window->isVisible()) return window;
    }
    return nullptr;
}

// A workbook opened through the automation model, as the printing opens it.
void OpenWorkbook(gantrix::excel::Application& application, const gantrix::test::TempDir& project,
                  const std::string& file,
                  const std::vector<std::tuple<int, int, std::string>>& cells) {
    const std::string path = project.File("dsample" + file);
    gantrix::CopyFileAtomically(gantrix::GetTemplatePath() + file, path);
    gantrix::excel::Workbook* book = application.Open(path);
    if (book == nullptr) return;
    book->Activate();
    for (gantrix::excel::Worksheet* sheet : book->Worksheets()) {
        if (sheet->Name() != "TEMP") continue;
        for (const auto& [row, column, value] : cells) sheet->SetCell(row, column, value);
    }
    application.Run("auto_open");
    application.SetVisible(true);
}

int SpreadsheetShots(const QString& outDir, const std::string& cpu) {
    using namespace gantrix;
    test::TempProject project(cpu);
    // Values off the defaults in every sheet of the report, typed as the dialogs take them.
    const std::string m = "mini.module.1.";
    const std::vector<headless::Assignment> edits = {
        {"memory.sub1", "2"},       {"memory.comment", "8"},     {"latch.D.start", "100"},
        {"latch.D.end", "199"},     {"interrupt.I3", "on"},      {"io.slot.0", "X16"},
        {"io.slot.1", "Y32"},       {"io.slot.0.model", "AX41"}, {"assist.run_contact", "1F"},
        {"mini.modules", "1"},      {m + "start_io", "1A0"},     {m + "model", "MINI"},
        {m + "stations", "12"},     {m + "receive", "X100"},     {m + "send", "Y100"},
        {m + "retries", "5"},       {m + "response", "CPU"},     {m + "data_clear", "Hold"},
        {m + "detection", "M9016"}, {m + "error_no", "D9010"},   {m + "line_error", "OFF"}};
    const headless::SetOutcome edited =
        headless::Set(project.ParamTmp(), ReportContext(cpu, project.Path()), edits);
    if (!edited.refusals.empty())
        std::cerr << "some values do not apply to " << cpu << ": the report shows the rest\n";
    ParameterImage image = edited.image;
    // A network block of MORNET II mode, as its workbook saves it.
    for (int i = 1024; i < 1100; ++i) image[i] = static_cast<uint8_t>(i * 7);
    image[1024] = 1;
    image[2560] = 0x02;
    image[2561] = 0x10;
    SetCheckSum(image, "", true);
    project.Write("param.$$p", {image.bytes().begin(), image.bytes().end()});
    project.Write("param.$$$", {image.bytes().begin(), image.bytes().end()});
    const auto application = excel::CreateObject("excel.application");
    if (application == nullptr) return 2;
    bool saved = true;

    OpenWorkbook(*application, project, "Parameter mode.xls",
                 {{1, 1, "Param"}, {2, 1, cpu}, {3, 1, project.File("param.$$p")}});
    QWidget* report = WorkbookWindow();
    saved = Shoot(report, outDir, "report", cpu) && saved;
    auto* reportWindow = qobject_cast<spreadsheet::ReportWindow*>(report);
    // The print preview on the first page of a sheet: the widest, and the network bytes.
    const auto previewAt = [&](const QString& sheet, const QString& name) {
        QPrinter printer(QPrinter::HighResolution);
        reportWindow->SetUpPrinter(printer);
        const int page = reportWindow->PageSheets(printer).indexOf(sheet) + 1;
        if (page == 0) return;
        QTimer::singleShot(0, [&, page, name] {
            QWidget* dialog = QApplication::activeModalWidget();
            if (dialog == nullptr) return;
            dialog->resize(900, 700);
            // Through the dialog's own action, so that its page number follows.
            for (QAction* action : dialog->findChildren<QAction*>()) {
                if (action->text() != "Next page") continue;
                for (int p = 1; p < page; ++p) action->trigger();
            }
            saved = Shoot(dialog, outDir, name, cpu) && saved;
            dialog->close();
        });
        reportWindow->PrintPreview->click();
    };
    if (reportWindow != nullptr) {
        previewAt(QString::fromStdString(LoadResString(ids::MiniTitle)), "print-preview");
        previewAt(QString::fromStdString(LoadResString(ids::NetworkLinkSetting)),
                  "print-preview-network");
    }
    if (report != nullptr) report->close();

    OpenWorkbook(*application, project, "MORNET10.xls",
                 {{29, 1, "NetParam"}, {30, 2, project.Path()}, {31, 2, cpu}, {32, 2, "3"}});
    QWidget* network = WorkbookWindow();
    saved = Shoot(network, outDir, "network", cpu) && saved;
    if (network != nullptr) network->close();
    return saved ? 0 : 1;
}

// The start window listing three projects in /tmp/plc, on settings of its own.
int StartShot(const QString& outDir, const std::string& cpu) {
    using namespace gantrix;
    test::TempDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                       QString::fromStdString(settings.Path()));
    RecentProjects recent;
    for (const auto& [name, type] : {std::pair<std::string, std::string>{"conveyor", "A1 "},
                                     {"press", "A2C"},
                                     {"line1", cpu}}) {
        const std::string folder = "/tmp/plc/" + name;
        if (!std::filesystem::exists(folder + "/param.tmp")) CreateProject(type, folder, false);
        recent.Add(folder, type);
    }
    SaveRecentProjects(recent);
    frmStart window(StartHost{});
    window.show();
    QTest::qWait(400);
    bool saved = true;
    const auto save = [&](QWidget* widget, const QString& name) {
        const QString file = outDir + "/" + name + ".png";
        saved = widget != nullptr && widget->grab().save(file) && saved;
        std::cout << file.toStdString() << "\n";
    };
    save(&window, "frmStart");
    QTimer::singleShot(400, [&] {
        QWidget* dialog = QApplication::activeModalWidget();
        save(dialog, "frmNewProject");
        if (dialog != nullptr) dialog->close();
    });
    window.NewProject->click();
    return saved ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    gantrix::EnsureApplication();
    if (argc < 4) {
        std::cerr << "usage: gantrix_screenshots OUTDIR NAME CPU [KEY...]\n";
        return 2;
    }
    const QString outDir = argv[1];
    const std::string name = argv[2];
    std::string cpu = argv[3];
    if (cpu.size() == 2) cpu += ' ';
    QStringList keys;
    for (int i = 4; i < argc; ++i) keys << argv[i];
    if (name == "spreadsheet") return SpreadsheetShots(outDir, cpu);
    if (name == "start") return StartShot(outDir, cpu);

    gantrix::test::TempDir dir;
    gantrix::ModuleState state = gantrix::test::StateFor(cpu, dir.Path());
    if (name == "frmMINI") {
        // Two modules, so that the table shows filled rows.
        gantrix::MINIFields modules;
        modules.Text1 = "2";
        const std::array<const char*, 22> cells = {
            "1A0",   "MINI",  "12",    "X100", "Y100",    "5",      "CPU", "Hold",
            "M9016", "D9010", "OFF",   "200",  "MINI-S3", "------", "B0",  "B100",
            "3",     "Link",  "Clear", "",     "",        "Hold"};
        std::copy(cells.begin(), cells.end(), modules.Text2.begin());
        gantrix::WriteMINI(modules, state.image, gantrix::ContextOf(state));
    }
    dir.Write("param.$$$", {state.image.bytes().begin(), state.image.bytes().end()});
    if (name == "frmRemote") {
        // Two remote terminals, one of each protocol, so that the table shows its cells.
        state.image[143] = 1;
        state.image[144] = 33;
        state.image[157] = 2;
    }
    gantrix::test::ScriptedMessages messages;
    state.Presenter = &messages;

    QString file =
        outDir + "/" + QString::fromStdString(name) + "-" + QString::fromStdString(cpu).trimmed();
    if (!keys.isEmpty()) file += "-" + keys.join("").toLower().remove(':');
    file += ".png";

    bool saved = false;
    // Each step runs from the event loop, so that a click opening a nested dialog returns
    // here through that dialog's own loop.
    std::function<void(int)> step = [&](int index) {
        auto* window = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (window == nullptr) return;
        if (index == keys.size()) {
            if (window->objectName() != QString::fromStdString(name)) {
                file = outDir + "/" + window->objectName() + "-" +
                       QString::fromStdString(cpu).trimmed() + ".png";
            }
            saved = window->grab().save(file);
            while (auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                modal->done(QDialog::Rejected);
                QApplication::processEvents();
            }
            return;
        }
        const QString key = keys[index];
        QTimer::singleShot(200, [&, index] { step(index + 1); });
        QWidget* target = QApplication::focusWidget() ? QApplication::focusWidget() : window;
        if (key.startsWith("click:")) {
            if (auto* button = window->findChild<QAbstractButton*>(key.mid(6))) button->click();
        } else if (key.size() == 1) {
            QTest::keyClicks(target, key);
        } else if (key == "PageDown" || key == "PageUp") {
            QTest::keyClick(target, key == "PageDown" ? Qt::Key_PageDown : Qt::Key_PageUp);
        } else if (const QKeySequence sequence(key); !sequence.isEmpty()) {
            QTest::keyClick(target, static_cast<Qt::Key>(sequence[0].key()));
        }
    };
    QTimer::singleShot(400, [&] { step(0); });
    if (name == "frmMenu") {
        gantrix::frmMenu menu(state);
        menu.exec();
    } else if (!gantrix::OpenDialog(name, state)) {
        std::cerr << "no window " << name << "\n";
        return 2;
    }
    if (!saved) {
        std::cerr << "could not save " << file.toStdString() << "\n";
        return 1;
    }
    std::cout << file.toStdString() << "\n";
    return 0;
}
