// SPDX-License-Identifier: Apache-2.0
#pragma once
// A form opened as the menu opens it during a run, and what a person checks on it.

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <functional>
#include <memory>

#include "store/ParameterFiles.h"
#include "store/Project.h"
#include "support/ModalDriver.h"
#include "support/core/TestSupport.h"

namespace gantrix::test {

// Form on a new project of cpu (unknown: an empty directory) with its working files;
// prepare may change the files or the image before the form loads.
template <typename Form>
struct Opened {
    TempDir project;
    ModuleState state;
    ScriptedMessages messages;
    ParameterImage loaded;  // the image once the form has loaded
    std::unique_ptr<Form> form;

    explicit Opened(const std::string& cpu, const std::function<void(Opened&)>& prepare = {})
        : state(StateFor(cpu, project.Path())) {
        if (IsKnownCpuType(cpu)) CreateProject(cpu, project.Path(), false);
        state.Presenter = &messages;
        if (prepare) prepare(*this);
        if (project.Exists("param.tmp")) CopyWorkFiles(state);
        form = std::make_unique<Form>(state);
        loaded = state.image;
        form->show();
        form->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
    Form* operator->() const { return form.get(); }
    bool Closed() const { return !form->isVisible(); }
};

// Selects all of a box's text, erases it and types text.
inline void Retype(QLineEdit* box, const QString& text) {
    box->setFocus();
    box->selectAll();
    PressKey(box, Qt::Key_Backspace);
    QTest::keyClicks(box, text);
}

inline bool Yellow(const QWidget* control) {
    return control->palette().color(QPalette::Base) == QColor(255, 255, 0);
}

inline QString Focused() {
    const QWidget* focus = QApplication::focusWidget();
    return focus ? focus->objectName() : QString();
}

// Runs body and tells whether it opened a modal window (closing it at once).
inline bool OpensAModalWindow(const std::function<void()>& body) {
    bool opened = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (QWidget* modal = QApplication::activeModalWidget()) {
            opened = true;
            modal->close();
        }
    });
    watch.start(20);
    body();
    return opened;
}

// No title, a control without its caption or too small for it, or two controls overlapping.
inline std::vector<std::string> LayoutFaults(QWidget* window) {
    std::vector<std::string> faults;
    if (window->windowTitle().isEmpty()) faults.push_back("no title");
    std::vector<std::pair<QWidget*, QRect>> controls;
    for (QWidget* w : window->findChildren<QWidget*>()) {
        const auto* label = qobject_cast<QLabel*>(w);
        const auto* button = qobject_cast<QAbstractButton*>(w);
        if (!(label || button || qobject_cast<QLineEdit*>(w) || qobject_cast<QComboBox*>(w) ||
              qobject_cast<QGroupBox*>(w)) ||
            !w->isVisible() || qobject_cast<QComboBox*>(w->parentWidget())) {
            continue;
        }
        const std::string name = w->objectName().toStdString();
        const bool captioned = label || (button && !qobject_cast<QToolButton*>(w));
        const QSize least = w->minimumSizeHint();
        if (captioned && (label ? label->text().trimmed() : button->text()).isEmpty())
            faults.push_back(name + " has no caption");
        if (captioned && (w->width() < least.width() || w->height() < least.height()))
            faults.push_back(name + " is cut");
        controls.emplace_back(w, QRect(w->mapTo(window, QPoint(0, 0)), w->size()));
    }
    for (size_t i = 0; i < controls.size(); ++i)
        for (size_t j = i + 1; j < controls.size(); ++j) {
            auto [a, ra] = controls[i];
            auto [b, rb] = controls[j];
            if (!a->isAncestorOf(b) && !b->isAncestorOf(a) && ra.intersects(rb))
                faults.push_back(a->objectName().toStdString() + " overlaps " +
                                 b->objectName().toStdString());
        }
    return faults;
}

}  // namespace gantrix::test
