#pragma once
// Drives nested modal windows the way a person does: each step waits until a window of the
// given name is the active modal widget, then acts on it (types, presses keys, answers a
// message box). Steps run in order while the code under test sits in its modal loops.

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
    ~ModalDriver() override;

    // When the active modal widget is the window named objectName, run action on it.
    ModalDriver& On(const QString& objectName, Action action);

    // When message box number is shown, press its button "OK", "Yes" or "No". With
    // button "Enter", press Enter and let the box's default button answer.
    ModalDriver& Message(int number, const QString& button);

    // Runs body (which shows a modal window and returns when it closes) while the steps run.
    // A step that does not come within the time limit fails the test and closes every modal
    // window, so that a test never hangs. Fails too when steps are left over.
    void Run(const std::function<void()>& body, int timeoutMs = 10000);

    // Message numbers of the boxes pressed by Message steps, in order.
    std::vector<int> messages;

  private:
    struct Step {
        QString objectName;
        int messageNumber = -1;
        Action action;
        std::string description;
    };

    void Poll();
    void Abort(const std::string& why);

    std::deque<Step> steps_;
    QTimer timer_;
    qint64 waitingSince_ = 0;
    int timeoutMs_ = 10000;
    bool busy_ = false;
};

// Gives widget the focus and types text into it, one key at a time.
void TypeKeys(QWidget* widget, const QString& text);
// Sends one key press (and release) to widget.
void PressKey(QWidget* widget, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
// The child of window with that object name, or a test failure and nullptr.
QWidget* Child(QWidget* window, const QString& objectName);
template <typename T>
T* ChildAs(QWidget* window, const QString& objectName) {
    return qobject_cast<T*>(Child(window, objectName));
}

}  // namespace gantrix::test
