#include "monkey/Monkey.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDateTime>
#include <QDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <set>
#include <utility>

#include "entry/GantrixA0J.h"
#include "store/ParameterFiles.h"
#include "support/core/TestSupport.h"

namespace gantrix::monkey {

const std::vector<std::string> kCpuTypes = {"A0J", "A0H", "A1S", "A1 ", "A2C", "A2 ", "A3 ",
                                            "A3H", "A2A", "A3A", "A2U", "A3U", "A4U"};

namespace {

std::function<void()>& Heartbeat() {
    static std::function<void()> beat;
    return beat;
}

// A window that takes no step for this long has stopped answering.
constexpr qint64 kStallMs = 20000;
// Polls to wait for a new window to become the active window before acting on it.
constexpr int kActivationPolls = 50;
// Close attempts after which questions are answered Yes, so that Cancel gets through.
constexpr int kForcedAnswersAfter = 8;
// Close attempts after which a window that is still open counts as hung.
constexpr int kCloseAttempts = 40;
// Menu items the walk opens: the settings dialogs. 5 and 6 hand over to other programs,
// and 7 (Clear All) changes the image by design.
constexpr int kWalkedMenuItems = 5;

qint64 Now() {
    return QDateTime::currentMSecsSinceEpoch();
}

std::string Name(const QWidget* widget) {
    if (widget == nullptr) return "(none)";
    if (!widget->objectName().isEmpty()) return widget->objectName().toStdString();
    // The arrows of a spin button and the text box of a combo box carry no name of their own.
    if (const auto* arrow = qobject_cast<const QToolButton*>(widget)) {
        return Name(arrow->parentWidget()) + (arrow->arrowType() == Qt::UpArrow ? " up" : " down");
    }
    return Name(widget->parentWidget());
}

std::string Quoted(const QString& text) {
    return "'" + text.toStdString() + "'";
}

enum class Kind { Message, Menu, Dialog };
enum class Mode { Random, Walk };

// One window as the monkey met it.
struct Frame {
    int id = 0;
    int parent = -1;  // the window whose action showed this one
    QPointer<QWidget> window;
    Kind kind = Kind::Dialog;
    std::string name;
    std::string path;  // how the walk reached it from the menu
    bool started = false;
    int activationPolls = 0;
    bool budgetSet = false;
    int eventsLeft = 0;
    int closeAttempts = 0;
    std::vector<int> messages;  // numbers of the boxes shown while this window acted
    bool childOpened = false;
    std::string lastClicked;
    // The walk.
    int walkState = 0;
    std::vector<std::string> openers;
    int walkItem = 0;
};

// What the host tells the component besides the project.
struct Host {
    bool subEditing[3] = {false, false, false};
    bool contentChanged = false;
};

struct Outcome {
    int status = 0;
    int16_t result = -1;
    std::string error;
    bool contentChangedIn = false;
    bool contentChanged = false;  // the host's change flag after the run
    bool menuOk = false;          // the menu's OK was pressed during the run
    bool aborted = false;
};

class Driver {
  public:
    Driver(Random& random, SessionLog& log) : random_(random), log_(log) {
        timer_.setInterval(0);
        QObject::connect(&timer_, &QTimer::timeout, [this] { Poll(); });
    }

    Outcome Run(const test::TempProject& project, const Host& host, Mode mode, bool endWithOk);

  private:
    void Poll();
    Frame& FrameOf(QWidget* modal);
    bool IsActing(const QWidget* modal) const;
    void Act(Frame& f);

    void Answer(Frame& f);
    void MenuRandom(Frame& f);
    void CloseWorkbookWindows();
    void MenuWalk(Frame& f);
    void DialogRandom(Frame& f);
    void DialogWalk(Frame& f);
    void RandomEvent(Frame& f);
    void CloseStep(Frame& f);

    QAbstractButton* Button(const Frame& f, const std::string& name) const;
    template <typename T>
    std::vector<T*> Usable(const Frame& f) const;
    void Click(Frame& f, QAbstractButton* button);
    void Confirm(Frame& f, QAbstractButton* ok);
    void Key(Frame& f, int key, const QString& text, const std::string& name,
             Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void Hang(const std::string& why);

    Random& random_;
    SessionLog& log_;
    Mode mode_ = Mode::Random;
    bool endWithOk_ = false;
    QTimer timer_;
    std::unique_ptr<QObject> context_;  // owns the queued actions of one run
    std::map<int, Frame> frames_;
    std::vector<int> acting_;  // windows whose action is running, innermost last
    bool scheduled_ = false;
    bool aborted_ = false;
    bool menuOk_ = false;
    qint64 lastStep_ = 0;
    int nextId_ = 1;
    // The walk: buttons already tried, and those that open a window, by window path.
    std::set<std::string> probed_;
    std::map<std::string, std::vector<std::string>> openers_;
    int newProbes_ = 0;
};

Outcome Driver::Run(const test::TempProject& project, const Host& host, Mode mode, bool endWithOk) {
    mode_ = mode;
    endWithOk_ = endWithOk;
    frames_.clear();
    acting_.clear();
    probed_.clear();
    openers_.clear();
    newProbes_ = 0;
    scheduled_ = false;
    aborted_ = false;
    menuOk_ = false;
    context_ = std::make_unique<QObject>();
    log_.Note(mode == Mode::Walk ? "run: open again, every dialog with OK and no edit"
              : endWithOk        ? "run: random, ends with OK"
                                 : "run: random, ends with Cancel");

    ::RKParam* object = RKParam_Create();
    RKParam_Let_szPcName(object, project.Cpu().c_str());
    std::string dir = project.Path();
    dir.pop_back();
    RKParam_Let_ProjectName(object, dir.c_str());
    RKParam_Let_ContentChangeFlag(object, host.contentChanged ? 1 : 0);
    RKParam_Let_blnSubEditing1(object, host.subEditing[0] ? 1 : 0);
    RKParam_Let_blnSubEditing2(object, host.subEditing[1] ? 1 : 0);
    RKParam_Let_blnSubEditing3(object, host.subEditing[2] ? 1 : 0);
    Outcome outcome;
    outcome.contentChangedIn = host.contentChanged;
    lastStep_ = Now();
    timer_.start();
    outcome.status = RKParam_Param_main(object, &outcome.result);
    timer_.stop();
    if (outcome.status != 0) outcome.error = RKParam_ErrorDescription(object);
    outcome.contentChanged = RKParam_Get_ContentChangeFlag(object) != 0;
    RKParam_Release(object);
    context_.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    outcome.menuOk = menuOk_;
    outcome.aborted = aborted_;
    return outcome;
}

void Driver::Poll() {
    if (Heartbeat()) Heartbeat()();
    if (scheduled_ || aborted_) return;
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr || !modal->isVisible() || IsActing(modal)) {
        // Nothing to act on: the window on top is busy in its own handler.
        if (Now() - lastStep_ > kStallMs) {
            Hang("no window to act on for " + std::to_string(kStallMs / 1000) +
                 " s; active modal window: " + Name(modal));
        }
        return;
    }
    Frame& f = FrameOf(modal);
    if (!f.started && QApplication::activeWindow() != modal &&
        ++f.activationPolls < kActivationPolls) {
        return;
    }
    f.started = true;
    // Acting may open a nested modal loop: the action is queued so that this poll returns
    // and the timer goes on inside that loop.
    scheduled_ = true;
    const int id = f.id;
    QTimer::singleShot(0, context_.get(), [this, id] {
        scheduled_ = false;
        Frame& frame = frames_.at(id);
        if (aborted_ || !frame.window || !frame.window->isVisible()) return;
        acting_.push_back(id);
        lastStep_ = Now();
        Act(frame);
        lastStep_ = Now();
        acting_.pop_back();
    });
}

bool Driver::IsActing(const QWidget* modal) const {
    const QVariant id = modal->property("monkeyFrame");
    if (!id.isValid()) return false;
    return std::find(acting_.begin(), acting_.end(), id.toInt()) != acting_.end();
}

Frame& Driver::FrameOf(QWidget* modal) {
    const QVariant known = modal->property("monkeyFrame");
    if (known.isValid()) return frames_.at(known.toInt());
    Frame f;
    f.id = nextId_++;
    f.window = modal;
    f.name = Name(modal);
    f.parent = acting_.empty() ? -1 : acting_.back();
    f.kind = qobject_cast<QMessageBox*>(modal) ? Kind::Message
             : f.parent < 0                    ? Kind::Menu
                                               : Kind::Dialog;
    f.path = f.name;
    if (f.parent >= 0) {
        Frame& parent = frames_.at(f.parent);
        if (f.kind == Kind::Dialog) parent.childOpened = true;
        f.path = parent.path + " / " + parent.lastClicked + " > " + f.name;
    }
    modal->setProperty("monkeyFrame", f.id);
    if (f.kind != Kind::Message) {
        ++log_.windows[f.name];
        log_.Note("open " + f.path);
    }
    return frames_.emplace(f.id, std::move(f)).first->second;
}

void Driver::Act(Frame& f) {
    switch (f.kind) {
        case Kind::Message:
            Answer(f);
            break;
        case Kind::Menu:
            mode_ == Mode::Walk ? MenuWalk(f) : MenuRandom(f);
            break;
        case Kind::Dialog:
            mode_ == Mode::Walk ? DialogWalk(f) : DialogRandom(f);
            break;
    }
}

QAbstractButton* Driver::Button(const Frame& f, const std::string& name) const {
    for (QAbstractButton* button :
         f.window->findChildren<QAbstractButton*>(QString::fromStdString(name))) {
        if (button->window() == f.window && button->isEnabled() && button->isVisibleTo(f.window)) {
            return button;
        }
    }
    return nullptr;
}

// The enabled and visible controls of type T of the window, in the order they were made.
template <typename T>
std::vector<T*> Driver::Usable(const Frame& f) const {
    std::vector<T*> found;
    for (T* widget : f.window->findChildren<T*>()) {
        if (widget->window() == f.window && widget->isEnabled() && widget->isVisibleTo(f.window)) {
            found.push_back(widget);
        }
    }
    return found;
}

void Driver::Click(Frame& f, QAbstractButton* button) {
    log_.Event(f.name + ": click " + Name(button));
    // A mouse click moves the focus to a button that takes it, before the click itself.
    if (button->focusPolicy() & Qt::ClickFocus) button->setFocus(Qt::MouseFocusReason);
    button->click();
}

bool WorkbookWindowOpen() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == "frmSpreadsheet" && window->isVisible()) return true;
    }
    return false;
}

// Presses a window's OK (or Close): it must close the window or show a message. The network
// menu's OK stays open by design once it has opened its workbook beside it.
void Driver::Confirm(Frame& f, QAbstractButton* ok) {
    const std::string name = Name(ok);
    const size_t shown = f.messages.size();
    Click(f, ok);
    if (!aborted_ && f.window && f.window->isVisible() && f.messages.size() == shown &&
        !WorkbookWindowOpen()) {
        log_.Fail(f.path + ": " + name + " neither closed the window nor showed a message");
    }
}

void Driver::Key(Frame& f, int key, const QString& text, const std::string& name,
                 Qt::KeyboardModifiers modifiers) {
    QWidget* target = f.window->focusWidget();
    if (target == nullptr || target->window() != f.window) target = f.window;
    log_.Event(f.name + ": key " + name + " -> " + Name(target));
    QPointer<QWidget> alive = target;
    QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(target, &press);
    if (alive) {
        QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
        QApplication::sendEvent(target, &release);
    }
}

void Driver::Hang(const std::string& why) {
    log_.Fail("hang: " + why);
    aborted_ = true;
    // Close every window, innermost first, so that the run returns.
    for (int i = 0; i < 100; ++i) {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr) break;
        dialog->done(QDialog::Rejected);
        QApplication::processEvents();
    }
}

void Driver::Answer(Frame& f) {
    auto* box = static_cast<QMessageBox*>(f.window.data());
    const QVariant numberProperty = box->property("messageNumber");
    const int number = numberProperty.isValid() ? numberProperty.toInt() : -1;
    Frame* parent = f.parent >= 0 ? &frames_.at(f.parent) : nullptr;
    if (parent) parent->messages.push_back(number);
    ++log_.messages;
    ++log_.windows["message " + std::to_string(number)];
    if (number == 0) {
        log_.Fail("a runtime error reached the user: " + box->text().toStdString() + " (in " +
                  (parent ? parent->path : std::string("?")) + ")");
    }
    std::vector<QAbstractButton*> buttons;
    for (QAbstractButton* button : box->buttons()) {
        if (button->isEnabled()) buttons.push_back(button);
    }
    if (buttons.empty()) {
        Hang("message " + std::to_string(number) + " has no button to press");
        return;
    }
    QAbstractButton* choice = nullptr;
    const bool forced =
        mode_ == Mode::Walk || (parent && parent->closeAttempts > kForcedAnswersAfter);
    if (forced) {
        for (const char* preferred : {"Yes", "OK"}) {
            for (QAbstractButton* button : buttons) {
                if (!choice && button->objectName() == preferred) choice = button;
            }
        }
    }
    if (choice == nullptr) {
        choice = buttons[static_cast<size_t>(random_.Below(static_cast<int>(buttons.size())))];
    }
    log_.Event("message " + std::to_string(number) + " [" + (parent ? parent->name : "?") +
               "]: " + Name(choice));
    choice->click();
}

// The spreadsheet application's windows stay open beside the menu, which waits for them
// (messages 15 and 5): they are closed now and then, and always before the menu is left.
void Driver::CloseWorkbookWindows() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() != "frmSpreadsheet" || !window->isVisible()) continue;
        if (auto* close = window->findChild<QPushButton*>("Close")) {
            log_.Event("workbook window: click Close");
            close->click();
        }
    }
}

void Driver::MenuRandom(Frame& f) {
    if (f.eventsLeft == 0 || random_.Chance(20)) CloseWorkbookWindows();
    if (!f.budgetSet) {
        f.budgetSet = true;
        f.eventsLeft = 1 + random_.Below(8);
    }
    if (f.eventsLeft > 0) {
        --f.eventsLeft;
        std::vector<QAbstractButton*> items;
        for (int i = 0; i < 8; ++i) {
            if (QAbstractButton* item = Button(f, "MenuItem(" + std::to_string(i) + ")")) {
                items.push_back(item);
            }
        }
        if (!items.empty() && random_.Chance(85)) {
            const auto pick = [&] {
                return items[static_cast<size_t>(random_.Below(static_cast<int>(items.size())))];
            };
            QAbstractButton* item = pick();
            // Clear All wipes every setting: rarer than the dialogs.
            if (item->objectName() == "MenuItem(7)" && !random_.Chance(40)) item = pick();
            f.lastClicked = Name(item);
            Click(f, item);
            return;
        }
        static const std::pair<int, const char*> kMenuKeys[] = {
            {Qt::Key_Up, "Up"}, {Qt::Key_Down, "Down"}, {Qt::Key_Tab, "Tab"}};
        const auto& [key, name] = kMenuKeys[random_.Below(3)];
        Key(f, key, key == Qt::Key_Tab ? "\t" : "", name);
        return;
    }
    if (++f.closeAttempts > kCloseAttempts) {
        Hang("the menu did not close");
        return;
    }
    if (f.closeAttempts == 1 && endWithOk_) {
        menuOk_ = true;
        if (QAbstractButton* ok = Button(f, "OK")) Confirm(f, ok);
        return;
    }
    QAbstractButton* cancel = Button(f, "Cancel");
    if (cancel && random_.Chance(80)) {
        Click(f, cancel);
    } else {
        Key(f, Qt::Key_Escape, "\x1b", "Escape");
    }
}

void Driver::MenuWalk(Frame& f) {
    while (f.walkItem < kWalkedMenuItems) {
        QAbstractButton* item = Button(f, "MenuItem(" + std::to_string(f.walkItem) + ")");
        if (item == nullptr) {
            ++f.walkItem;
            continue;
        }
        // An item is opened again until an opening has no button left to try.
        const int probes = newProbes_;
        f.lastClicked = Name(item);
        Click(f, item);
        if (newProbes_ == probes) ++f.walkItem;
        return;
    }
    if (++f.closeAttempts > kCloseAttempts) {
        Hang("the menu did not close");
        return;
    }
    if (f.closeAttempts == 1) {
        menuOk_ = true;
        if (QAbstractButton* ok = Button(f, "OK")) {
            Confirm(f, ok);
            return;
        }
    }
    if (QAbstractButton* cancel = Button(f, "Cancel")) Click(f, cancel);
}

void Driver::DialogRandom(Frame& f) {
    if (!f.budgetSet) {
        f.budgetSet = true;
        f.eventsLeft = random_.Chance(25) ? random_.Below(4) : random_.Below(150);
    }
    if (f.eventsLeft > 0) {
        --f.eventsLeft;
        RandomEvent(f);
        return;
    }
    CloseStep(f);
}

void Driver::CloseStep(Frame& f) {
    if (++f.closeAttempts > kCloseAttempts) {
        Hang(f.path + " did not close after " + std::to_string(kCloseAttempts) + " attempts");
        return;
    }
    QAbstractButton* ok = Button(f, "OK");
    QAbstractButton* cancel = Button(f, "Cancel");
    QAbstractButton* close = Button(f, "Close");
    // OK, Cancel, Escape and End at random; once that has not closed the window for a
    // while, Cancel with every question answered Yes.
    const int choice = f.closeAttempts > kForcedAnswersAfter ? 5 : random_.Below(10);
    if (choice < 5 && (ok || close)) {
        Confirm(f, ok ? ok : close);
    } else if (choice < 8 && (cancel || close)) {
        Click(f, cancel ? cancel : close);
    } else if (choice == 9) {
        Key(f, Qt::Key_End, "", "End");
    } else {
        Key(f, Qt::Key_Escape, "\x1b", "Escape");
    }
}

void Driver::RandomEvent(Frame& f) {
    const int r = random_.Below(100);
    if (r < 30) {
        // Mostly what the boxes take (digits, hexadecimal digits, slot code letters), then
        // any printable character.
        static const char kLikely[] = "ABCDEFXYIOSMLKHTUWZabcdefx  -";
        char c;
        const int kind = random_.Below(100);
        if (kind < 45) {
            c = static_cast<char>('0' + random_.Below(10));
        } else if (kind < 70) {
            c = kLikely[random_.Below(static_cast<int>(sizeof(kLikely) - 1))];
        } else {
            c = static_cast<char>(0x20 + random_.Below(0x7f - 0x20));
        }
        const QString text(QChar::fromLatin1(c));
        const int key =
            c >= 'a' && c <= 'z' ? Qt::Key_A + (c - 'a') : QChar::fromLatin1(c).unicode();
        Key(f, key, text, Quoted(text));
    } else if (r < 34) {
        static const char* const kForeign[] = {"ä", "ß", "°", "é", "Ω", "あ", "€", "😀"};
        const QString text = QString::fromUtf8(kForeign[random_.Below(8)]);
        Key(f, Qt::Key_unknown, text, Quoted(text));
    } else if (r < 42) {
        Key(f, Qt::Key_Return, "\r", "Enter");
    } else if (r < 47) {
        if (random_.Chance(70)) {
            Key(f, Qt::Key_Tab, "\t", "Tab");
        } else {
            Key(f, Qt::Key_Backtab, "", "Shift+Tab", Qt::ShiftModifier);
        }
    } else if (r < 57) {
        static const std::pair<int, const char*> kArrows[] = {{Qt::Key_Left, "Left"},
                                                              {Qt::Key_Right, "Right"},
                                                              {Qt::Key_Up, "Up"},
                                                              {Qt::Key_Down, "Down"}};
        const auto& [key, name] = kArrows[random_.Below(4)];
        Key(f, key, "", name);
    } else if (r < 60) {
        if (random_.Chance(50)) {
            Key(f, Qt::Key_PageUp, "", "PageUp");
        } else {
            Key(f, Qt::Key_PageDown, "", "PageDown");
        }
    } else if (r < 63) {
        // End acts as OK: rarer than Home, so that a dialog lives through its budget.
        if (random_.Chance(85)) {
            Key(f, Qt::Key_Home, "", "Home");
        } else {
            Key(f, Qt::Key_End, "", "End");
        }
    } else if (r < 67) {
        Key(f, Qt::Key_Delete, "\x7f", "Delete");
    } else if (r < 72) {
        Key(f, Qt::Key_Backspace, "\b", "Backspace");
    } else if (r < 73) {
        if (random_.Chance(50)) Key(f, Qt::Key_Escape, "\x1b", "Escape");
    } else if (r < 89) {
        // Push buttons (the nested dialogs' buttons among them), check boxes, option
        // buttons and spin arrows.
        const auto buttons = Usable<QAbstractButton>(f);
        if (buttons.empty()) return;
        const auto pick = [&] {
            return buttons[static_cast<size_t>(random_.Below(static_cast<int>(buttons.size())))];
        };
        const auto closes = [](const QAbstractButton* b) {
            return b->objectName() == "OK" || b->objectName() == "Cancel" ||
                   b->objectName() == "Close";
        };
        // The buttons that close the dialog are picked less often than the others, so that
        // a dialog lives through its budget.
        QAbstractButton* button = pick();
        if (closes(button) && !random_.Chance(25)) button = pick();
        if (button->objectName() == "OK" || button->objectName() == "Close") {
            Confirm(f, button);
        } else {
            f.lastClicked = Name(button);
            Click(f, button);
        }
    } else if (r < 96) {
        // A click into a text box or a combo box.
        std::vector<QWidget*> fields;
        for (QLineEdit* edit : Usable<QLineEdit>(f)) {
            if (!qobject_cast<QComboBox*>(edit->parentWidget())) fields.push_back(edit);
        }
        for (QComboBox* combo : Usable<QComboBox>(f)) fields.push_back(combo);
        if (fields.empty()) return;
        QWidget* field =
            fields[static_cast<size_t>(random_.Below(static_cast<int>(fields.size())))];
        log_.Event(f.name + ": click into " + Name(field));
        field->setFocus(Qt::MouseFocusReason);
    } else {
        // An item chosen from a combo box's list.
        std::vector<QComboBox*> combos;
        for (QComboBox* combo : Usable<QComboBox>(f)) {
            if (combo->count() > 0) combos.push_back(combo);
        }
        if (combos.empty()) return;
        QComboBox* combo =
            combos[static_cast<size_t>(random_.Below(static_cast<int>(combos.size())))];
        const int index = random_.Below(combo->count());
        log_.Event(f.name + ": choose " + Quoted(combo->itemText(index)) + " in " + Name(combo));
        combo->setFocus(Qt::MouseFocusReason);
        combo->setCurrentIndex(index);
        emit combo->activated(index);
        emit combo->textActivated(combo->itemText(index));
    }
}

void Driver::DialogWalk(Frame& f) {
    static const std::set<QString> kStandard = {"OK", "Cancel", "Clear", "Close"};
    switch (f.walkState) {
        case 0: {
            // Each opening tries at most one button not tried before: one that opens a
            // window is then confirmed with OK; any other may have edited, so Cancel.
            for (QPushButton* button : Usable<QPushButton>(f)) {
                if (kStandard.count(button->objectName())) continue;
                const std::string name = Name(button);
                if (!probed_.insert(f.path + " | " + name).second) continue;
                ++newProbes_;
                f.childOpened = false;
                f.lastClicked = name;
                Click(f, button);
                if (aborted_ || !f.window || !f.window->isVisible()) return;
                if (f.childOpened) openers_[f.path].push_back(name);
                f.walkState = f.childOpened ? 3 : 4;
                return;
            }
            f.openers = openers_[f.path];
            f.walkState = 2;
            [[fallthrough]];
        }
        case 2:
            // Nothing left to try: every window this one opens, then OK.
            while (!f.openers.empty()) {
                const std::string name = f.openers.front();
                f.openers.erase(f.openers.begin());
                if (QAbstractButton* button = Button(f, name)) {
                    f.lastClicked = name;
                    Click(f, button);
                    return;
                }
            }
            f.walkState = 3;
            [[fallthrough]];
        case 3: {
            f.walkState = 4;
            QAbstractButton* ok = Button(f, "OK");
            if (ok == nullptr) ok = Button(f, "Close");
            if (ok == nullptr) {
                Key(f, Qt::Key_End, "", "End");
                return;
            }
            const size_t shown = f.messages.size();
            Confirm(f, ok);
            if (!aborted_ && f.window && f.window->isVisible() && f.messages.size() > shown) {
                std::string numbers;
                for (size_t i = shown; i < f.messages.size(); ++i) {
                    numbers += " " + std::to_string(f.messages[i]);
                }
                log_.Fail(f.path + ": OK without an edit was refused with message" + numbers);
            }
            return;
        }
        default: {
            if (++f.closeAttempts > kCloseAttempts) {
                Hang(f.path + " did not close");
                return;
            }
            QAbstractButton* cancel = Button(f, "Cancel");
            if (cancel == nullptr) cancel = Button(f, "Close");
            if (cancel) {
                Click(f, cancel);
            } else {
                Key(f, Qt::Key_Escape, "\x1b", "Escape");
            }
        }
    }
}

std::string Differences(const std::vector<uint8_t>& before, const std::vector<uint8_t>& after) {
    if (before.size() != after.size()) {
        return "size " + std::to_string(before.size()) + " -> " + std::to_string(after.size());
    }
    std::string text;
    int count = 0;
    for (size_t i = 0; i < before.size(); ++i) {
        if (before[i] == after[i]) continue;
        if (++count <= 12) {
            text += (count > 1 ? ", " : "") + std::string("byte ") + std::to_string(i) + " " +
                    std::to_string(before[i]) + " -> " + std::to_string(after[i]);
        }
    }
    if (count > 12) text += ", ... (" + std::to_string(count) + " bytes)";
    return text;
}

std::string Joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
    return text;
}

// The model names are written once their dialog has been opened, and an erased record
// (six bytes 255, read as no name) is written back as the empty name C4 E6 C4 E6 C4 E6.
// That one change of an unedited file is by design; before takes it over from after.
void AcceptErasedModelNames(std::vector<uint8_t>& before, const std::vector<uint8_t>& after) {
    static constexpr uint8_t kErased[6] = {255, 255, 255, 255, 255, 255};
    static constexpr uint8_t kEmpty[6] = {0xC4, 0xE6, 0xC4, 0xE6, 0xC4, 0xE6};
    if (before.size() != after.size() || before.size() < 1024) return;
    for (size_t record = 640; record < 1024; record += 6) {
        if (std::equal(kErased, kErased + 6, before.begin() + static_cast<long>(record)) &&
            std::equal(kEmpty, kEmpty + 6, after.begin() + static_cast<long>(record))) {
            std::copy(kEmpty, kEmpty + 6, before.begin() + static_cast<long>(record));
        }
    }
}

// What holds after every run, whatever happened in it.
void CheckRun(SessionLog& log, const test::TempProject& project, const Outcome& run,
              const std::vector<uint8_t>& before, const std::vector<std::string>& files) {
    if (run.status != 0) log.Fail("a runtime error reached the host: " + run.error);
    const std::vector<uint8_t> after = project.Read(kParamTmp);
    if (!run.menuOk && run.result != 0) log.Fail("a run left with Cancel saved");
    if ((!run.menuOk || run.result == 0) && after != before) {
        log.Fail("a run that did not save changed param.tmp: " + Differences(before, after));
    }
    if (run.result == 1 && !run.contentChanged) {
        log.Fail("the run saved, yet the host's change flag came back False");
    }
    if (!run.menuOk && run.contentChanged != run.contentChangedIn) {
        log.Fail("a run left with Cancel changed the host's change flag");
    }
    // The workbooks the spreadsheet hand-over copies into the project stay there.
    const auto workbook = [](const std::string& name) { return name.ends_with(".xls"); };
    std::vector<std::string> left = project.List();
    std::vector<std::string> expected = files;
    std::erase_if(left, workbook);
    std::erase_if(expected, workbook);
    if (left != expected) {
        log.Fail("the run left the project with files " + Joined(project.List()) + " instead of " +
                 Joined(files));
    }
}

}  // namespace

Random::Random(uint64_t seed, uint64_t session) : state_(seed * 0x9E3779B97F4A7C15ULL) {
    state_ ^= Next() + session;
    Next();
}

uint64_t Random::Next() {
    uint64_t z = (state_ += 0x9E3779B97F4A7C15ULL);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
}

int Random::Below(int n) {
    return n <= 1 ? 0 : static_cast<int>(Next() % static_cast<uint64_t>(n));
}

void SessionLog::Note(const std::string& text) {
    events.push_back(text);
    if (verbose) std::printf("%6zu %s\n", events.size(), text.c_str()), std::fflush(stdout);
}

void SessionLog::Event(const std::string& text) {
    ++actions;
    Note(text);
}

void SessionLog::Fail(const std::string& text) {
    if (std::find(failures.begin(), failures.end(), text) != failures.end()) return;
    failures.push_back(text);
    Note("FAILED: " + text);
}

void SetHeartbeat(std::function<void()> beat) {
    Heartbeat() = std::move(beat);
}

void RunSession(SessionLog& log) {
    Random random(log.seed, static_cast<uint64_t>(log.index));
    log.cpu = kCpuTypes[static_cast<size_t>(log.index) % kCpuTypes.size()];
    test::TempProject project(log.cpu);
    // Now and then the host has a sub program open in an editor, and the programs have END
    // positions that may exceed the memory capacities.
    Host host;
    if (random.Chance(25)) host.subEditing[random.Below(3)] = true;
    if (random.Chance(30)) {
        std::string steps =
            std::to_string(random.Chance(25) ? random.Below(65536) : random.Below(8192));
        for (int sub = 0; sub < 3; ++sub) {
            steps += " " + std::to_string(random.Chance(30) ? random.Below(32768) : 0);
        }
        project.WriteText("program.end", steps + "\n");
        log.Note("program.end: " + steps);
    }
    Driver driver(random, log);
    const int runs = 1 + random.Below(3);
    for (int i = 0; i < runs && !log.Failed(); ++i) {
        std::vector<uint8_t> before = project.Read(kParamTmp);
        const std::vector<std::string> files = project.List();
        const bool endWithOk = random.Chance(50);
        host.contentChanged = random.Chance(30);
        const Outcome run = driver.Run(project, host, Mode::Random, endWithOk);
        if (run.aborted) return;
        CheckRun(log, project, run, before, files);
        if (log.Failed() || run.result != 1) continue;

        // Saved: opened again and confirmed everywhere without an edit, not a byte changes.
        before = project.Read(kParamTmp);
        // With no sub program open: the memory dialog rightly refuses a sub program being
        // edited that has no capacity, whatever the file holds.
        const Outcome walk = driver.Run(project, Host{}, Mode::Walk, true);
        if (walk.aborted) return;
        CheckRun(log, project, walk, before, files);
        if (walk.result != 1) log.Fail("opened again and confirmed with OK, the run did not save");
        const std::vector<uint8_t> after = project.Read(kParamTmp);
        AcceptErasedModelNames(before, after);
        if (after != before) {
            log.Fail("opened again and confirmed with OK without an edit, param.tmp changed: " +
                     Differences(before, after));
        }
    }
}

}  // namespace gantrix::monkey
