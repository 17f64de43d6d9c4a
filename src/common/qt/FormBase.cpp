// SPDX-License-Identifier: Apache-2.0
#include "common/qt/FormBase.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <exception>

#include "common/Messages.h"
#include "common/qt/FormControls.h"
#include "store/RuntimeError.h"

namespace gantrix {

FormBase::FormBase(ModuleState& state, const QString& formName) : state_(state) {
    setObjectName(formName);
    setModal(true);
    // Keys reach the form before its controls; an application filter also sees controls
    // created after construction.
    qApp->installEventFilter(this);
}

FormBase::~FormBase() {
    qApp->removeEventFilter(this);
}

void FormBase::Guard(const std::function<void()>& handler) {
    try {
        handler();
    } catch (const RuntimeError& error) {
        ErrorExit(error.Description());
    } catch (const std::exception& error) {
        ErrorExit(error.what());
    }
}

void FormBase::ErrorExit(const std::string& description) {
    if (unloaded_) return;  // one error ends the form once
    state_.PendingErrorDescription = description;
    ShowMessage(state_, 0);
    state_.PendingErrorDescription.clear();
    Unload(false);
}

void FormBase::OnKeyPress(QWidget* control, KeyPressHandler handler) {
    keyPress_[control] = std::move(handler);
}

bool FormBase::FormKeyDown(QKeyEvent*, QWidget*) {
    return false;
}

void FormBase::Unload(bool accepted) {
    unloaded_ = true;
    done(accepted ? QDialog::Accepted : QDialog::Rejected);
}

int FormBase::exec() {
    if (unloaded_) return result();
    return QDialog::exec();
}

bool FormBase::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate) NotifyHost(state_);
    return QDialog::event(event);
}

void FormBase::showEvent(QShowEvent* event) {
    if (!centred_) {
        centred_ = true;
        adjustSize();
        if (QScreen* screen = this->screen()) {
            const QRect area = screen->geometry();
            move(area.x() + (area.width() - frameGeometry().width()) / 2,
                 area.y() + (area.height() - frameGeometry().height()) / 2);
        }
    }
    QDialog::showEvent(event);
}

bool FormBase::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType()) return false;
    auto* target = static_cast<QWidget*>(watched);
    if (target->window() != this) return false;
    // A key a control ignores is passed on to its parents as the same event; it is handled
    // at its first receiver only.
    const auto* key = static_cast<QKeyEvent*>(event);
    if (event == lastKeyEvent_ && lastKeyTarget_ && target != lastKeyTarget_ &&
        target->isAncestorOf(lastKeyTarget_) && key->key() == lastKey_ &&
        key->timestamp() == lastKeyTime_) {
        return false;
    }
    lastKeyEvent_ = event;
    lastKeyTarget_ = target;
    lastKey_ = key->key();
    lastKeyTime_ = key->timestamp();
    return HandleKeyPress(target, static_cast<QKeyEvent*>(event));
}

bool FormBase::HandleKeyPress(QWidget* target, QKeyEvent* event) {
    bool swallowed = false;
    Guard([&] { swallowed = FormKeyDown(event, target); });
    if (swallowed || !isVisible()) return true;

    const int keyAscii = KeyAsciiOf(event);
    if (keyAscii < 0) return false;
    // The handler of the control or of the composite control it belongs to.
    for (QWidget* w = target; w && w != this; w = w->parentWidget()) {
        const auto it = keyPress_.find(w);
        if (it == keyPress_.end()) continue;
        int key = keyAscii;
        Guard([&] { it->second(key); });
        if (!isVisible() || key == 0) return true;
        if (key != keyAscii) {
            if (auto* edit = qobject_cast<QLineEdit*>(target)) {
                edit->insert(QString(QChar(key)));
                return true;
            }
        }
        return false;
    }
    // Every button's Enter twin: Enter presses the focused button.
    if (keyAscii == 13) {
        if (auto* button = qobject_cast<QPushButton*>(target)) {
            button->click();
            return true;
        }
    }
    return false;
}

}  // namespace gantrix
