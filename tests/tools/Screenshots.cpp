// Takes screenshots of the component's windows for the documentation.
//
//   gantrix_screenshots OUTDIR NAME CPU [KEY...]
//
// Opens the window NAME ("frmMenu" or any registered dialog) for a default project of CPU
// type CPU, sends the keys (Qt key names such as PageDown, or single characters) to the
// focused control, then saves OUTDIR/NAME-CPU[-suffix].png and closes the window.

#include <QApplication>
#include <QDialog>
#include <QKeySequence>
#include <QTest>
#include <QTimer>
#include <cstdio>
#include <iostream>

#include "common/qt/DialogRegistry.h"
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
    dir.Write("param.$$$", {state.image.bytes().begin(), state.image.bytes().end()});
    gantrix::test::ScriptedMessages messages;
    state.Presenter = &messages;

    QString file =
        outDir + "/" + QString::fromStdString(name) + "-" + QString::fromStdString(cpu).trimmed();
    if (!keys.isEmpty()) file += "-" + keys.join("").toLower();
    file += ".png";

    bool saved = false;
    QTimer::singleShot(400, [&] {
        auto* window = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (window == nullptr) return;
        for (const QString& key : keys) {
            QWidget* target = QApplication::focusWidget() ? QApplication::focusWidget() : window;
            const QKeySequence sequence(key);
            if (key.size() == 1) {
                QTest::keyClicks(target, key);
            } else if (!sequence.isEmpty()) {
                QTest::keyClick(target, static_cast<Qt::Key>(sequence[0].key()));
            }
            QApplication::processEvents();
        }
        QTimer::singleShot(200, [&, window] {
            saved = window->grab().save(file);
            window->done(QDialog::Rejected);
        });
    });
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
