// SPDX-License-Identifier: Apache-2.0
// In every window a run opens, for every CPU type, each field shown has an accessible name of
// its own, and a label that names a field names one shown beside it.

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>
#include <map>
#include <set>

#include "common/qt/DialogRegistry.h"
#include "common/qt/SpinButton.h"
#include "menus/frmMenu.h"
#include "support/ParameterModeRun.h"

namespace gantrix {
namespace {

bool IsField(QWidget* w) {
    return qobject_cast<QLineEdit*>(w) || qobject_cast<QComboBox*>(w) ||
           qobject_cast<QAbstractButton*>(w) || qobject_cast<SpinButton*>(w);
}

struct Walk {
    std::string cpu;
    std::set<QString> windows;  // the object names of the windows met
    std::vector<QString> faults;
    std::map<std::string, QString> read;  // "cpu window field" -> "name | description"
    void Check(QWidget* window) {
        std::map<QString, QString> seen;  // name -> object name
        const QString where = QString::fromStdString(cpu) + " " + window->objectName() + ": ";
        for (QWidget* w : window->findChildren<QWidget*>()) {
            if (!IsField(w) || !w->isVisibleTo(window)) continue;
            QAccessibleInterface* face = QAccessible::queryAccessibleInterface(w);
            const QString name = face->text(QAccessible::Name);
            if (name.trimmed().isEmpty()) faults.push_back(where + w->objectName() + " no name");
            // A spin button's arrows are read as "<spin button>.up" and "<spin button>.down".
            QWidget* parent = w->parentWidget();
            QString field = w->objectName();
            if (auto* spin = qobject_cast<SpinButton*>(parent))
                field = parent->objectName() + (w == spin->UpButton() ? ".up" : ".down");
            read[cpu + " " + (window->objectName() + " " + field).toStdString()] =
                name + " | " + face->text(QAccessible::Description);
            // Parts of a spin button or combo box, and push buttons, need no name of their own.
            if (qobject_cast<SpinButton*>(parent) || qobject_cast<QComboBox*>(parent) ||
                qobject_cast<SpinButton*>(w) || qobject_cast<QPushButton*>(w))
                continue;
            const auto [it, fresh] = seen.emplace(name, w->objectName());
            if (!fresh)
                faults.push_back(where + w->objectName() + " and " + it->second + " share " + name);
        }
        // No field or caption lies over another, where a person could not read or click it.
        std::vector<QWidget*> shown;
        for (QWidget* w : window->findChildren<QWidget*>()) {
            auto* label = qobject_cast<QLabel*>(w);
            if ((IsField(w) || (label && !label->text().isEmpty())) && w->isVisibleTo(window))
                shown.push_back(w);
        }
        for (std::size_t i = 0; i < shown.size(); ++i) {
            for (std::size_t j = i + 1; j < shown.size(); ++j) {
                QWidget *a = shown[i], *b = shown[j];
                if (a->isAncestorOf(b) || b->isAncestorOf(a)) continue;
                const QRect onA(a->mapTo(window, QPoint()), a->size());
                if (onA.intersects(QRect(b->mapTo(window, QPoint()), b->size())))
                    faults.push_back(where + a->objectName() + " lies over " + b->objectName());
            }
        }
        for (QLabel* label : window->findChildren<QLabel*>()) {
            QWidget* buddy = label->buddy();
            if (buddy == nullptr || !label->isVisibleTo(window)) continue;
            if (buddy->window() != window || !IsField(buddy) || !buddy->isVisibleTo(window))
                faults.push_back(where + label->objectName() + " names a field not shown");
        }
    }
    // The menu items whose dialog has joined; a dialog's enabled buttons but those closing it.
    std::vector<QPointer<QAbstractButton>> Openers(QWidget* window) {
        std::vector<QPointer<QAbstractButton>> buttons;
        if (auto* menu = qobject_cast<frmMenu*>(window)) {
            for (int i = 0; i < 8; ++i)
                if (menu->MenuItem[i]->isEnabled() && IsDialogRegistered(menu->ActionOf(i)))
                    buttons.emplace_back(menu->MenuItem[i]);
        } else if (window->objectName() != "MessageBox") {
            static const std::set<QString> closing = {"OK", "Cancel", "Clear", "Close"};
            for (QPushButton* b : window->findChildren<QPushButton*>())
                if (b->isVisibleTo(window) && b->isEnabled() && !closing.count(b->objectName()))
                    buttons.emplace_back(b);
        }
        return buttons;
    }
    // Checks window and presses each button, twice round to reach those of another page; a
    // window that opens is walked the same way and closed without saving.
    void Explore(QWidget* window) {
        windows.insert(window->objectName());
        Check(window);
        const auto once = Openers(window);
        auto rounds = once;
        rounds.insert(rounds.end(), once.begin(), once.end());
        for (const QPointer<QAbstractButton>& button : rounds) {
            if (button.isNull() || !button->isEnabled()) continue;
            bool opened = false;
            QTimer poll;
            QObject::connect(&poll, &QTimer::timeout, [&] {
                QWidget* modal = QApplication::activeModalWidget();
                if (modal == nullptr || modal == window || !modal->isVisible()) return;
                poll.stop();
                opened = true;
                Explore(modal);
                if (auto* dialog = qobject_cast<QDialog*>(modal)) dialog->done(QDialog::Rejected);
            });
            poll.start(2);
            button->click();  // returns when the window it opened has closed
            poll.stop();
            if (!opened) Check(window);
        }
    }
};

TEST(Accessibility, EveryFieldOfEveryWindowHasItsOwnName) {
    Walk walk;
    for (const char* cpu : {"A0J", "A0H", "A1S", "A1 ", "A2C", "A2 ", "A3 ", "A3H", "A2A", "A3A",
                            "A2U", "A3U", "A4U"}) {
        walk.cpu = cpu;
        test::ModalDriver driver;
        driver.On("frmMenu", [&walk](QWidget* menu) {
            walk.Explore(menu);
            static_cast<QDialog*>(menu)->done(QDialog::Rejected);
        });
        EXPECT_EQ(test::RunParameterMode(test::TempProject(cpu), driver).result, 0) << cpu;
    }
    for (const QString& fault : walk.faults) ADD_FAILURE() << fault.toStdString();
    for (const char* name : {"frmMenu", "frmMemory", "frmLatch", "frmTimerCounter",
                             "frmInterruptCounter", "frmIOLayout", "frmTypeNameSet", "frmStepRelay",
                             "frmAssistance", "frmRemote", "frmMINI", "frmNetworkMenu"})
        EXPECT_TRUE(walk.windows.count(name)) << name << " was not reached";
    // The names say what a field is: its row and column captions, the range as a description.
    const std::pair<const char*, const char*> names[] = {
        {"A3U frmLatch Text1(0)", "L, start | 0 to 8191"},
        {"A3U frmLatch Text1(3)", "B, end | 0 to 1FFF"},
        {"A3U frmLatch Text1(6)", "T 10ms high speed, start | 200 to 255"},
        {"A3U frmLatch Text1(16)", "T 100ms low speed, second block, start | "},
        {"A3U frmAssistance Text2(1)", "PAUSE, X | 0 to 7FF"},
        {"A3U frmAssistance VScroll2(1).up", "PAUSE, X, up | 0 to 7FF"},
        {"A3U frmAssistance VScroll2(1).down", "PAUSE, X, down | 0 to 7FF"}};
    for (const auto& [field, text] : names)
        EXPECT_EQ(walk.read[field].toStdString(), text) << field;
}

}  // namespace
}  // namespace gantrix
