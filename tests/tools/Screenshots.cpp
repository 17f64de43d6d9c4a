// Takes screenshots of the component's windows for the documentation.
//
//   gantrix_screenshots OUTDIR NAME CPU [STEP...]
//
// Opens the window NAME ("frmMenu" or any registered dialog) for a default project of CPU
// type CPU and runs the steps on the active window: a Qt key name (PgDown, Return) or a
// single character is typed into the focused control; "click:OBJECT" clicks the button of
// that object name (which may open a nested dialog). Then the active window is saved as
// OUTDIR/NAME-CPU[-steps].png (or, after a click into a nested dialog, under that
// dialog's name) and every window is closed.

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QKeySequence>
#include <QTest>
#include <QTimer>
#include <cstdio>
#include <functional>
#include <iostream>

#include "common/DialogContext.h"
#include "common/qt/DialogRegistry.h"
#include "dialogs/frmMINI/MINIFields.h"
#include "entry/RKParam.h"
#include "menus/frmMenu.h"
#include "support/core/TestSupport.h"

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
