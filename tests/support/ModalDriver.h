// SPDX-License-Identifier: Apache-2.0
#pragma once
// Drives nested modal windows in order: each step waits for its window to be the active
// modal widget, then acts on it.

#include <QObject>
#include <QString>
#include <QTimer>
#include <deque>
#include <functional>
#include <string>
#include <vector>

class QWidget;

namespace gantrix::test {

class ModalDriver : public QObject {
    Q_OBJECT

  public:
    using Action = std::function<void(QWidget* modal)>;
    ModalDriver();
    ModalDriver& On(const QString& objectName, Action action);
    // Presses button "OK", "Yes" or "No" of message box number; "Enter" lets its default answer.
    ModalDriver& Message(int number, const QString& button);
    // Runs body while the steps run; a step late past timeoutMs, or left over, fails the
    // test (and a late one closes every modal window, so that no test hangs).
    void Run(const std::function<void()>& body, int timeoutMs = 10000);
    std::vector<int> messages;  // the boxes that Message steps answered, in order

  private:
    struct Step {
        QString objectName;
        int messageNumber;
        Action action;
        std::string description;
    };
    void Poll();
    std::deque<Step> steps_;
    QTimer timer_;
    qint64 waitingSince_ = 0;
    int timeoutMs_ = 10000;
    bool busy_ = false;
};

void TypeKeys(QWidget* widget, const QString& text);  // focuses widget, then types
void PressKey(QWidget* widget, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
QWidget* Child(QWidget* window, const QString& objectName);
template <typename T>
T* ChildAs(QWidget* window, const QString& objectName) {
    return qobject_cast<T*>(Child(window, objectName));
}

}  // namespace gantrix::test
