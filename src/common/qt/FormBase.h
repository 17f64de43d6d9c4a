// SPDX-License-Identifier: Apache-2.0
#pragma once
// What every window of the parameter mode does alike: centred on the screen, the host told
// on every activation, keys seen by the form before its controls (End, arrows, Page Up and
// Down), Enter on a button pressing it, KeyPress handlers that may discard a key, and
// runtime errors inside handlers ending in ErrorExit instead of reaching the event loop.

#include <QDialog>
#include <QPointer>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "common/ModuleState.h"

class QKeyEvent;
class QPushButton;

namespace gantrix {

class FormBase : public QDialog {
    Q_OBJECT

  public:
    FormBase(ModuleState& state, const QString& formName);
    ~FormBase() override;

    ModuleState& State() { return state_; }
    const ModuleState& State() const { return state_; }

    // Runs a handler; a runtime error (or any other exception) inside it ends in ErrorExit.
    void Guard(const std::function<void()>& handler);

    // The error's description in message 0, then the form unloads as Cancel would.
    virtual void ErrorExit(const std::string& description);

  protected:
    // A KeyPress handler: it may set keyAscii to 0 to discard the key, or to another
    // character to type that one instead.
    using KeyPressHandler = std::function<void(int& keyAscii)>;
    void OnKeyPress(QWidget* control, KeyPressHandler handler);

    // Form_KeyDown, seen before the focused control; return true to swallow the key.
    virtual bool FormKeyDown(QKeyEvent* event, QWidget* focus);

    // Unloads the form: ends the modal loop with accepted or not. A form unloaded while it
    // loads (a runtime error in its load) is not shown by exec() at all.
    void Unload(bool accepted);

  public:
    bool Unloaded() const { return unloaded_; }
    int exec() override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    bool HandleKeyPress(QWidget* target, QKeyEvent* event);

    ModuleState& state_;
    std::map<QWidget*, KeyPressHandler> keyPress_;
    bool centred_ = false;
    bool unloaded_ = false;
    const QEvent* lastKeyEvent_ = nullptr;
    QPointer<QWidget> lastKeyTarget_;
    int lastKey_ = 0;
    quint64 lastKeyTime_ = 0;
};

}  // namespace gantrix
