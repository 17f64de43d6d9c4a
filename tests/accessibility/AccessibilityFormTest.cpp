// What a screen reader meets in every window that a run opens: for every CPU type, the menu
// opens each dialog it has, each dialog's buttons open the windows they lead to, and every
// field shown there (text box, combo box, spin button, option button, check box, button) has
// an accessible name, one that no other field of its window shares.

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
#include <cstdio>
#include <functional>
#include <map>
#include <set>

#include "common/qt/DialogRegistry.h"
#include "common/qt/SpinButton.h"
#include "entry/GantrixA0J.h"
#include "menus/frmMenu.h"
#include "support/ModalDriver.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::ModalDriver;
using test::TempProject;

const char* const kCpuTypes[] = {"A0J", "A0H", "A1S", "A1 ", "A2C", "A2 ", "A3 ",
                                 "A3H", "A2A", "A3A", "A2U", "A3U", "A4U"};

QString Read(QWidget* widget, QAccessible::Text text) {
    QAccessibleInterface* face = QAccessible::queryAccessibleInterface(widget);
    return face == nullptr ? QString() : face->text(text);
}

bool IsField(QWidget* w) {
    return qobject_cast<QLineEdit*>(w) || qobject_cast<QComboBox*>(w) ||
           qobject_cast<QAbstractButton*>(w) || qobject_cast<SpinButton*>(w);
}

// A field that a screen reader reads as a part of another: a spin button's arrows, the text
// box of a combo box.
bool IsPart(QWidget* w) {
    QWidget* parent = w->parentWidget();
    return qobject_cast<SpinButton*>(parent) != nullptr ||
           qobject_cast<QComboBox*>(parent) != nullptr;
}

struct Walk {
    std::string cpu;
    std::set<QString> windows;  // the object names of the windows met
    std::vector<std::string> faults;
    // The window whose fields are listed, with what a screen reader reads for them.
    QString listed;
    std::vector<std::pair<QString, QString>> listing;

    void Check(QWidget* window) {
        const QString where = QString::fromStdString(cpu) + " " + window->objectName() + ": ";
        std::map<QString, QString> seen;                      // name -> object name
        if (window->objectName() == listed) listing.clear();  // as the window shows last
        for (QWidget* w : window->findChildren<QWidget*>()) {
            if (!IsField(w) || !w->isVisibleTo(window)) continue;
            const QString name = Read(w, QAccessible::Name);
            if (name.trimmed().isEmpty()) {
                faults.push_back((where + w->metaObject()->className() + " " + w->objectName() +
                                  " has no accessible name")
                                     .toStdString());
                continue;
            }
            if (window->objectName() == listed && !qobject_cast<QPushButton*>(w) && !IsPart(w)) {
                listing.emplace_back(w->objectName(),
                                     name + " | " + Read(w, QAccessible::Description));
            }
            if (IsPart(w) || qobject_cast<SpinButton*>(w) || qobject_cast<QPushButton*>(w)) {
                continue;  // read with the field they belong to, or not fields to fill
            }
            const auto [it, fresh] = seen.emplace(name, w->objectName());
            if (!fresh) {
                faults.push_back((where + w->objectName() + " and " + it->second +
                                  " are both read as \"" + name + "\"")
                                     .toStdString());
            }
        }
        // A label that names a field points at a field of its own window that shows with it.
        for (QLabel* label : window->findChildren<QLabel*>()) {
            QWidget* buddy = label->buddy();
            if (buddy == nullptr || !label->isVisibleTo(window)) continue;
            if (buddy->window() != window || !IsField(buddy) || !buddy->isVisibleTo(window)) {
                faults.push_back((where + "label " + label->objectName() + " \"" + label->text() +
                                  "\" names a field that is not shown beside it")
                                     .toStdString());
            }
        }
    }

    // The buttons of window that lead somewhere: the menu items whose dialog has joined, and
    // every other enabled button of a dialog but the ones that close it.
    std::vector<QPointer<QAbstractButton>> Openers(QWidget* window) {
        std::vector<QPointer<QAbstractButton>> buttons;
        if (auto* menu = qobject_cast<frmMenu*>(window)) {
            for (int i = 0; i < 8; ++i) {
                if (menu->MenuItem[i]->isEnabled() && IsDialogRegistered(menu->ActionOf(i))) {
                    buttons.emplace_back(menu->MenuItem[i]);
                }
            }
            return buttons;
        }
        // A message box is read, not answered: it closes without an answer.
        if (window->objectName() == "MessageBox") return buttons;
        static const std::set<QString> closing = {"OK", "Cancel", "Clear", "Close"};
        for (QPushButton* b : window->findChildren<QPushButton*>()) {
            if (b->isVisibleTo(window) && b->isEnabled() && !closing.count(b->objectName())) {
                buttons.emplace_back(b);
            }
        }
        return buttons;
    }

    // Checks window, then presses each of its buttons in turn, twice round, so that a button
    // that leads somewhere only on another page is pressed there too: a window that opens is
    // walked the same way and closed without saving; a button that opens nothing (a page
    // turn) gets the window checked again.
    void Explore(QWidget* window) {
        windows.insert(window->objectName());
        Check(window);
        std::vector<QPointer<QAbstractButton>> buttons = Openers(window);
        const std::vector<QPointer<QAbstractButton>> again = buttons;
        buttons.insert(buttons.end(), again.begin(), again.end());
        for (const QPointer<QAbstractButton>& button : buttons) {
            if (button.isNull() || !button->isEnabled()) continue;
            bool opened = false;
            QTimer poll;
            poll.setInterval(2);
            QObject::connect(&poll, &QTimer::timeout, [&] {
                QWidget* modal = QApplication::activeModalWidget();
                if (modal == nullptr || modal == window || !modal->isVisible()) return;
                poll.stop();
                opened = true;
                Explore(modal);
                if (auto* dialog = qobject_cast<QDialog*>(modal)) dialog->done(QDialog::Rejected);
            });
            poll.start();
            button->click();  // returns when the window it opened has closed
            poll.stop();
            if (!opened) Check(window);
        }
    }
};

Walk WalkRun(const std::string& cpu, const QString& listed = {}) {
    Walk walk;
    walk.cpu = cpu;
    walk.listed = listed;
    TempProject project(cpu);
    ::RKParam* object = RKParam_Create();
    RKParam_Let_szPcName(object, cpu.c_str());
    RKParam_Let_ProjectName(object, project.Path().c_str());
    ModalDriver driver;
    driver.On("frmMenu", [&walk](QWidget* menu) {
        walk.Explore(menu);
        static_cast<QDialog*>(menu)->done(QDialog::Rejected);
    });
    int16_t result = -1;
    driver.Run([&] { RKParam_Param_main(object, &result); }, 60000);
    RKParam_Release(object);
    EXPECT_EQ(result, 0) << cpu << ": the walk saved";
    return walk;
}

TEST(Accessibility, EveryFieldOfEveryWindowHasItsOwnName) {
    std::set<QString> windows;
    for (const char* cpu : kCpuTypes) {
        const Walk walk = WalkRun(cpu);
        for (const std::string& fault : walk.faults) ADD_FAILURE() << fault;
        windows.insert(walk.windows.begin(), walk.windows.end());
    }
    // The walk reached every window a person reaches from the menu.
    for (const char* name : {"frmMenu", "frmMemory", "frmLatch", "frmTimerCounter",
                             "frmInterruptCounter", "frmIOLayout", "frmTypeNameSet", "frmStepRelay",
                             "frmAssistance", "frmRemote", "frmMINI", "frmNetworkMenu"}) {
        EXPECT_TRUE(windows.count(name)) << name << " was not reached";
    }
}

// The names say what a field is: its row and column captions, the range as a description.
// GANTRIX_LIST_NAMES=<window> prints what a screen reader reads for that window's fields.
TEST(Accessibility, NamesComeFromTheCaptionsBesideTheField) {
    const QString listed = qEnvironmentVariable("GANTRIX_LIST_NAMES", "frmLatch");
    const Walk walk = WalkRun("A3U", listed);
    std::map<QString, QString> read(walk.listing.begin(), walk.listing.end());
    if (qEnvironmentVariableIsSet("GANTRIX_LIST_NAMES")) {
        for (const auto& [field, text] : walk.listing) {
            std::printf("%s\t%s\n", qPrintable(field), qPrintable(text));
        }
        return;
    }
    const std::vector<std::pair<QString, QString>> expected = {
        {"Text1(0)", "L, start | 0 to 8191"},
        {"Text1(3)", "B, end | 0 to 1FFF"},
        {"Text1(6)", "T 10ms high speed, start | 200 to 255"},
        {"Text1(16)", "T 100ms low speed, second block, start | "},  // no second block here
    };
    for (const auto& [field, text] : expected) {
        EXPECT_EQ(read[field].toStdString(), text.toStdString()) << field.toStdString();
    }
}

}  // namespace
}  // namespace gantrix
