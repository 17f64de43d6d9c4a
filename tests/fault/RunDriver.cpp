#include "fault/RunDriver.h"

#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "entry/GantrixA0J.h"

namespace gantrix::test {

std::string RunOutcome::Messages() const {
    std::string text = error;
    for (const std::string& box : boxes) text += "\n" + box;
    return text;
}

RunOutcome RunWithOk(const std::string& projectDir, const std::string& cpu,
                     const std::function<void()>& whileMenuOpen) {
    RunOutcome outcome;
    ::RKParam* object = RKParam_Create();
    RKParam_Let_szPcName(object, cpu.c_str());
    RKParam_Let_ProjectName(object, projectDir.c_str());

    QPointer<QWidget> handled;  // the modal window last acted on
    int menuActions = 0;
    QElapsedTimer clock;
    clock.start();
    QTimer poll;
    poll.setInterval(2);
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (clock.elapsed() > 20000) {
            outcome.timedOut = true;
            while (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                dialog->done(QDialog::Rejected);
                QApplication::processEvents();
            }
            return;
        }
        QWidget* modal = QApplication::activeModalWidget();
        if (modal == nullptr || !modal->isVisible() || modal == handled) return;
        handled = modal;
        // Queued, so that a modal loop the action opens does not run inside this poll.
        QPointer<QWidget> target = modal;
        QTimer::singleShot(0, [&, target] {
            if (!target) return;
            if (auto* box = qobject_cast<QMessageBox*>(target.data())) {
                outcome.boxes.push_back(box->text().toStdString());
                auto* button = box->findChild<QPushButton*>("OK");
                if (button == nullptr) button = box->findChild<QPushButton*>("Yes");
                if (button != nullptr) {
                    button->click();
                } else {
                    box->done(QDialog::Rejected);
                }
                return;
            }
            if (target->objectName() != "frmMenu") return;
            outcome.menuShown = true;
            if (menuActions++ == 0) {
                if (whileMenuOpen) whileMenuOpen();
                QTest::keyClick(target, Qt::Key_End);
            } else {
                QTest::keyClick(target, Qt::Key_Escape);  // OK did not close it: leave
            }
            if (target && target->isVisible()) handled = nullptr;
        });
    });
    poll.start();
    outcome.status = RKParam_Param_main(object, &outcome.result);
    poll.stop();
    outcome.error = RKParam_ErrorDescription(object);
    RKParam_Release(object);
    return outcome;
}

}  // namespace gantrix::test
