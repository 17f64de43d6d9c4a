// The monkey: seeded random sessions of the parameter mode through the C interface. A
// session makes a project for one CPU type (sometimes with END positions of its programs or
// a sub program open in the host) and runs the parameter mode on it one to three times,
// sending random keys and clicks to whatever modal window is active (it knows no dialog by
// name) and leaving the menu with OK or Cancel. After every run: a run that did not save
// leaves "param.tmp" and the host's change flag as they were, a save sets the flag, no
// working file stays behind, a saved file taken again through every dialog with OK and no
// edit does not change by a byte, a dialog's OK closes it or shows a message, no window
// stops answering and no runtime error reaches the host or the user.
//
//   GANTRIX_MONKEY_SEED=S  GANTRIX_MONKEY_SESSIONS=N (default kDefaultSessions)
//   GANTRIX_MONKEY_MINUTES=M (stop starting sessions after M minutes)
//   GANTRIX_MONKEY_REPLAY=S:I (only session I of seed S, printing every event)

#include <unistd.h>

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
#include <csignal>
#include <cstdio>
#include <cstring>
#include <deque>
#include <memory>
#include <set>

#include "entry/GantrixA0J.h"
#include "entry/RKParam.h"
#include "support/core/TestSupport.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif

namespace gantrix::monkey {
namespace {

const char* const kCpuTypes[] = {"A0J", "A0H", "A1S", "A1 ", "A2C", "A2 ", "A3 ",
                                 "A3H", "A2A", "A3A", "A2U", "A3U", "A4U"};
constexpr int kDefaultSessions = 156;       // about 20 s on one core in the release build
constexpr unsigned kWatchdogSeconds = 120;  // no step of the event loop: looping or blocked
constexpr qint64 kStallMs = 20000;          // no window to act on: a window stopped answering
// Close attempts after which questions are answered Yes so that Cancel gets through, and
// after which a window still open counts as hung.
constexpr int kForcedAnswersAfter = 8, kCloseAttempts = 40;
// The walk opens the settings dialogs: 5 and 6 hand over to other programs, and 7 (Clear
// All) changes the image by design.
constexpr int kWalkedMenuItems = 5;

// splitmix64: the same on every platform and standard library.
class Random {
  public:
    Random(uint64_t seed, uint64_t session) : state_(seed * 0x9E3779B97F4A7C15ULL) {
        state_ ^= Next() + session;
    }
    uint64_t Next() {
        uint64_t z = (state_ += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }
    int Below(int n) { return n <= 1 ? 0 : static_cast<int>(Next() % static_cast<uint64_t>(n)); }
    bool Chance(int percent) { return Below(100) < percent; }
    template <typename T>
    T* Pick(const std::vector<T*>& items) {
        return items[static_cast<size_t>(Below(static_cast<int>(items.size())))];
    }

  private:
    uint64_t state_;
};

struct SessionLog {
    bool verbose = false;  // print every event as it happens (replay)
    std::vector<std::string> events = {}, failures = {};

    void Note(const std::string& text) {
        events.push_back(text);
        if (verbose) std::printf("%6zu %s\n", events.size(), text.c_str()), std::fflush(stdout);
    }
    void Fail(const std::string& text) {
        if (std::ranges::count(failures, text) == 0)
            failures.push_back(text), Note("FAILED: " + text);
    }
};

char g_dying[160] = "";  // the running session and how to replay it, written as the process dies

void OnSignal(int signal) {
    const char* why = signal == SIGALRM   ? "hang: the event loop took no step for a long time"
                      : signal == SIGABRT ? "aborted (a sanitizer report or an assertion above)"
                                          : "crashed on a signal";
    for (const char* text : {"\nmonkey: FAILED: ", why, static_cast<const char*>(g_dying)}) {
        [[maybe_unused]] const ssize_t n = ::write(2, text, std::strlen(text));
    }
    if (signal == SIGALRM) ::_exit(3);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

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

std::vector<QWidget*> WorkbookWindows() {
    std::vector<QWidget*> windows;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == "frmSpreadsheet" && window->isVisible())
            windows.push_back(window);
    }
    return windows;
}

// One window as the monkey met it.
struct Frame {
    QPointer<QWidget> window;
    Frame* parent = nullptr;              // the window whose action showed this one
    std::string name, path, lastClicked;  // path: how it was reached from the menu
    std::vector<int> messages;            // numbers of the boxes shown while this window acted
    int activationPolls = 0, eventsLeft = -1, closeAttempts = 0, walkItem = 0;
    bool childOpened = false, walked = false;
};

struct Outcome {
    int status = 0;
    int16_t result = -1;
    std::string error;
    bool changedIn = false, changed = false;  // the host's change flag before and after
    bool menuOk = false;                      // the menu's OK was pressed
    bool aborted = false;
};

class Driver {
  public:
    // A step relay start equal to the first latch relay, which the supplementary functions
    // accept, ends latch row L before it starts: the latch dialog then refuses OK with
    // "Invalid range." (message 8).
    bool latchRowInverted = false;

    Driver(Random& random, SessionLog& log) : random_(random), log_(log) {
        timer_.setInterval(0);
        QObject::connect(&timer_, &QTimer::timeout, [this] { Poll(); });
    }

    // A run with a sub program open in the host's editor (0 for none) and the change flag.
    Outcome Run(const test::TempProject& project, int subEditing, bool changed, bool walk,
                bool endWithOk) {
        walk_ = walk;
        endWithOk_ = endWithOk;
        frames_.clear();
        scheduled_ = aborted_ = menuOk_ = false;
        context_ = std::make_unique<QObject>();
        log_.Note(walk ? "run: open again, every dialog with OK and no edit"
                       : std::string("run: random, ends with ") + (endWithOk ? "OK" : "Cancel"));
        ::RKParam* object = RKParam_Create();
        RKParam_Let_szPcName(object, project.Cpu().c_str());
        RKParam_Let_ProjectName(object,
                                project.Path().substr(0, project.Path().size() - 1).c_str());
        RKParam_Let_ContentChangeFlag(object, changed);
        RKParam_Let_blnSubEditing1(object, subEditing == 1);
        RKParam_Let_blnSubEditing2(object, subEditing == 2);
        RKParam_Let_blnSubEditing3(object, subEditing == 3);
        Outcome outcome;
        outcome.changedIn = changed;
        lastStep_ = Now();
        timer_.start();
        outcome.status = RKParam_Param_main(object, &outcome.result);
        timer_.stop();
        if (outcome.status != 0) outcome.error = RKParam_ErrorDescription(object);
        outcome.changed = RKParam_Get_ContentChangeFlag(object) != 0;
        RKParam_Release(object);
        context_.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        outcome.menuOk = menuOk_;
        outcome.aborted = aborted_;
        return outcome;
    }

  private:
    void Poll() {
        ::alarm(kWatchdogSeconds);
        if (scheduled_ || aborted_) return;
        QWidget* modal = QApplication::activeModalWidget();
        // Nothing to act on when the window on top is busy in its own handler.
        if (modal == nullptr || !modal->isVisible() ||
            std::ranges::count(acting_, &FrameOf(modal))) {
            if (Now() - lastStep_ > kStallMs) Hang("no window to act on; on top: " + Name(modal));
            return;
        }
        Frame& f = FrameOf(modal);
        // A new window is left a few polls to become the active window.
        if (QApplication::activeWindow() != modal && ++f.activationPolls < 50) return;
        f.activationPolls = 50;
        // Queued, so that a nested modal loop the action opens runs outside this poll.
        scheduled_ = true;
        QTimer::singleShot(0, context_.get(), [this, &f] {
            scheduled_ = false;
            if (Gone(f)) return;
            acting_.push_back(&f);
            lastStep_ = Now();
            if (qobject_cast<QMessageBox*>(f.window)) {
                Answer(f);
            } else if (f.parent == nullptr) {
                walk_ ? MenuWalk(f) : MenuRandom(f);
            } else {
                walk_ ? DialogWalk(f) : DialogRandom(f);
            }
            lastStep_ = Now();
            acting_.pop_back();
        });
    }

    Frame& FrameOf(QWidget* modal) {
        const QVariant index = modal->property("monkeyFrame");
        if (index.isValid()) return frames_[index.toUInt()];
        modal->setProperty("monkeyFrame", static_cast<uint>(frames_.size()));
        Frame& f = frames_.emplace_back();  // a deque: the frames stay where they are
        f.window = modal;
        f.name = f.path = Name(modal);
        f.parent = acting_.empty() ? nullptr : acting_.back();
        if (qobject_cast<QMessageBox*>(modal)) return f;
        if (f.parent != nullptr) {
            f.parent->childOpened = true;
            f.path = f.parent->path + " / " + f.parent->lastClicked + " > " + f.name;
        }
        log_.Note("open " + f.path);
        return f;
    }

    // The enabled and visible controls of type T of the window (named name, if given), in
    // the order they were made.
    template <typename T>
    std::vector<T*> Usable(const Frame& f, const std::string& name = "") const {
        std::vector<T*> found;
        for (T* widget : f.window->findChildren<T*>()) {
            if (widget->window() == f.window && widget->isEnabled() &&
                widget->isVisibleTo(f.window) && (name.empty() || Name(widget) == name)) {
                found.push_back(widget);
            }
        }
        return found;
    }

    QAbstractButton* Button(const Frame& f, const std::string& name,
                            const std::string& or_ = "") const {
        auto found = Usable<QAbstractButton>(f, name);
        if (found.empty() && !or_.empty()) found = Usable<QAbstractButton>(f, or_);
        return found.empty() ? nullptr : found.front();
    }

    bool Gone(const Frame& f) const { return aborted_ || !f.window || !f.window->isVisible(); }

    void Click(Frame& f, QAbstractButton* button) {
        log_.Note(f.name + ": click " + Name(button));
        // A mouse click moves the focus to a button that takes it, before the click itself.
        if (button->focusPolicy() & Qt::ClickFocus) button->setFocus(Qt::MouseFocusReason);
        button->click();
    }

    // Presses a window's OK (or Close): it must close the window or show a message. The
    // network menu's OK stays open by design once it has opened its workbook beside it.
    void Confirm(Frame& f, QAbstractButton* ok) {
        const std::string name = Name(ok);
        const size_t shown = f.messages.size();
        Click(f, ok);
        if (!Gone(f) && f.messages.size() == shown && WorkbookWindows().empty()) {
            log_.Fail(f.path + ": " + name + " neither closed the window nor showed a message");
        }
    }

    void Key(Frame& f, int key, const QString& text, const std::string& name) {
        QWidget* target = f.window->focusWidget();
        if (target == nullptr || target->window() != f.window) target = f.window;
        log_.Note(f.name + ": key " + name + " -> " + Name(target));
        const auto modifiers = key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier;
        QPointer<QWidget> alive = target;
        QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
        QApplication::sendEvent(target, &press);
        QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
        if (alive) QApplication::sendEvent(target, &release);
    }

    // Cancel, Close or Escape, and a window that does not close after many is hung.
    void Cancel(Frame& f) {
        if (++f.closeAttempts > kCloseAttempts) return Hang(f.path + " did not close");
        QAbstractButton* cancel = Button(f, "Cancel", "Close");
        cancel ? Click(f, cancel) : Key(f, Qt::Key_Escape, "\x1b", "Escape");
    }

    void Hang(const std::string& why) {
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

    void Answer(Frame& f) {
        auto* box = static_cast<QMessageBox*>(f.window.data());
        const int number =
            box->property("messageNumber").isValid() ? box->property("messageNumber").toInt() : -1;
        const std::string in = f.parent ? f.parent->path : "?";
        if (f.parent) f.parent->messages.push_back(number);
        if (number == 0)
            log_.Fail("a runtime error reached the user: " + box->text().toStdString() + " (in " +
                      in + ")");
        std::vector<QAbstractButton*> buttons;
        for (QAbstractButton* button : box->buttons()) {
            if (button->isEnabled()) buttons.push_back(button);
        }
        if (buttons.empty()) return Hang("message " + std::to_string(number) + " has no button");
        QAbstractButton* choice = random_.Pick(buttons);
        if (walk_ || (f.parent && f.parent->closeAttempts > kForcedAnswersAfter)) {
            for (QAbstractButton* button : buttons) {  // Yes, else OK
                if (Name(button) == "Yes" || (Name(button) == "OK" && Name(choice) != "Yes"))
                    choice = button;
            }
        }
        log_.Note("message " + std::to_string(number) + " [" + in + "]: " + Name(choice));
        choice->click();
    }

    // The spreadsheet application's windows, which the menu waits for, are closed now and
    // then, and before the menu is left with OK, or else Cancel or Escape.
    void LeaveMenu(Frame& f, bool ok) {
        CloseWorkbookWindows();
        if (f.closeAttempts == 0 && ok) {
            menuOk_ = true;
            ++f.closeAttempts;
            if (QAbstractButton* button = Button(f, "OK")) return Confirm(f, button);
        }
        if (walk_ || random_.Chance(80)) return Cancel(f);
        ++f.closeAttempts;
        Key(f, Qt::Key_Escape, "\x1b", "Escape");
    }

    void CloseWorkbookWindows() {
        for (QWidget* window : WorkbookWindows()) {
            if (auto* close = window->findChild<QPushButton*>("Close")) {
                log_.Note("workbook window: click Close");
                close->click();
            }
        }
    }

    QAbstractButton* MenuItem(const Frame& f, int i) const {
        return Button(f, "MenuItem(" + std::to_string(i) + ")");
    }

    void MenuRandom(Frame& f) {
        if (f.eventsLeft < 0) f.eventsLeft = 1 + random_.Below(8);
        if (f.eventsLeft-- == 0) return LeaveMenu(f, endWithOk_);
        if (random_.Chance(20)) CloseWorkbookWindows();
        std::vector<QAbstractButton*> items;
        for (int i = 0; i < 8; ++i) {
            if (QAbstractButton* item = MenuItem(f, i)) items.push_back(item);
        }
        if (items.empty() || !random_.Chance(85)) {
            const int key = random_.Below(3);
            return Key(f,
                       key == 0   ? Qt::Key_Up
                       : key == 1 ? Qt::Key_Down
                                  : Qt::Key_Tab,
                       key == 2 ? "\t" : "",
                       key == 0   ? "Up"
                       : key == 1 ? "Down"
                                  : "Tab");
        }
        QAbstractButton* item = random_.Pick(items);
        // Clear All wipes every setting: rarer than the dialogs.
        if (Name(item) == "MenuItem(7)" && !random_.Chance(40)) item = random_.Pick(items);
        f.lastClicked = Name(item);
        Click(f, item);
    }

    // Opens every settings dialog, each again until an opening tries no new button, then OK.
    void MenuWalk(Frame& f) {
        for (; f.walkItem < kWalkedMenuItems; ++f.walkItem) {
            if (QAbstractButton* item = MenuItem(f, f.walkItem)) {
                const int probes = newProbes_;
                f.lastClicked = Name(item);
                Click(f, item);
                if (newProbes_ == probes) ++f.walkItem;
                return;
            }
        }
        LeaveMenu(f, true);
    }

    void DialogRandom(Frame& f) {
        if (f.eventsLeft < 0)
            f.eventsLeft = random_.Chance(25) ? random_.Below(4) : random_.Below(150);
        if (f.eventsLeft-- > 0) return RandomEvent(f);
        // OK, Cancel, Escape and End at random; once that has not closed the window for a
        // while, Cancel with every question answered Yes.
        const int choice = f.closeAttempts > kForcedAnswersAfter ? 5 : random_.Below(10);
        QAbstractButton* ok = Button(f, "OK", "Close");
        if (choice < 5 && ok) return ++f.closeAttempts, Confirm(f, ok);
        if (choice < 9) return Cancel(f);
        ++f.closeAttempts;
        Key(f, Qt::Key_End, "", "End");
    }

    void RandomEvent(Frame& f) {
        static const struct {
            int key;
            const char* text;
            const char* name;
        } kKeys[] = {{Qt::Key_Return, "\r", "Enter"},
                     {Qt::Key_Tab, "\t", "Tab"},
                     {Qt::Key_Backtab, "", "Shift+Tab"},
                     {Qt::Key_Left, "", "Left"},
                     {Qt::Key_Right, "", "Right"},
                     {Qt::Key_Up, "", "Up"},
                     {Qt::Key_Down, "", "Down"},
                     {Qt::Key_PageUp, "", "PageUp"},
                     {Qt::Key_PageDown, "", "PageDown"},
                     {Qt::Key_Home, "", "Home"},
                     {Qt::Key_Delete, "\x7f", "Delete"},
                     {Qt::Key_Backspace, "\b", "Backspace"},
                     // End acts as OK, Escape as Cancel: rare, so that a dialog lives on.
                     {Qt::Key_End, "", "End"},
                     {Qt::Key_Escape, "\x1b", "Escape"}};
        // Mostly what the boxes take (digits, hexadecimal digits, slot code letters), then any
        // printable character, and a few from outside ASCII.
        static const QString kLikely = QString::fromUtf8("ABCDEFXYIOSMLKHTUWZabcdefx  -äß°éΩあ€");
        const int r = random_.Below(100);
        if (r < 34) {
            const int kind = random_.Below(100);
            const QChar c = kind < 40   ? QChar('0' + random_.Below(10))
                            : kind < 70 ? kLikely[random_.Below(static_cast<int>(kLikely.size()))]
                                        : QChar(0x20 + random_.Below(0x5f));
            const int key = c.unicode() < 128 ? c.toUpper().unicode() : int{Qt::Key_unknown};
            Key(f, key, QString(c), "'" + QString(c).toStdString() + "'");
        } else if (r < 73) {
            const auto& k = kKeys[random_.Below(random_.Chance(95) ? 12 : 14)];
            Key(f, k.key, k.text, k.name);
        } else if (r < 89) {
            // Push buttons (the nested dialogs' among them), check boxes, option buttons and
            // spin arrows; those that close the dialog less often, so that it lives on.
            const auto buttons = Usable<QAbstractButton>(f);
            if (buttons.empty()) return;
            QAbstractButton* button = random_.Pick(buttons);
            const auto closes = [](QAbstractButton* b) {
                return Name(b) == "OK" || Name(b) == "Cancel" || Name(b) == "Close";
            };
            if (closes(button) && !random_.Chance(25)) button = random_.Pick(buttons);
            f.lastClicked = Name(button);
            closes(button) && f.lastClicked != "Cancel" ? Confirm(f, button) : Click(f, button);
        } else if (r < 96) {
            // A click into a text box or a combo box.
            std::vector<QWidget*> fields;
            for (QLineEdit* edit : Usable<QLineEdit>(f)) {
                if (!qobject_cast<QComboBox*>(edit->parentWidget())) fields.push_back(edit);
            }
            for (QComboBox* combo : Usable<QComboBox>(f)) fields.push_back(combo);
            if (fields.empty()) return;
            QWidget* field = random_.Pick(fields);
            log_.Note(f.name + ": click into " + Name(field));
            field->setFocus(Qt::MouseFocusReason);
        } else {
            // An item chosen from a combo box's list.
            std::vector<QComboBox*> combos = Usable<QComboBox>(f);
            std::erase_if(combos, [](QComboBox* combo) { return combo->count() == 0; });
            if (combos.empty()) return;
            QComboBox* combo = random_.Pick(combos);
            const int index = random_.Below(combo->count());
            log_.Note(f.name + ": choose '" + combo->itemText(index).toStdString() + "' in " +
                      Name(combo));
            combo->setFocus(Qt::MouseFocusReason);
            combo->setCurrentIndex(index);
            emit combo->activated(index);
            emit combo->textActivated(combo->itemText(index));
        }
    }

    // An opening presses the buttons not tried before, and again those that opened a window
    // (which is then walked in turn); a new one that opens no window may have edited, so
    // Cancel. Else OK, which must close the window without a message.
    void DialogWalk(Frame& f) {
        if (f.walked) return Cancel(f);
        f.walked = true;
        std::vector<std::string> names;
        for (QPushButton* button : Usable<QPushButton>(f)) names.push_back(Name(button));
        for (const std::string& name : names) {
            const std::string key = f.path + " | " + name;
            const bool fresh = name != "OK" && name != "Cancel" && name != "Clear" &&
                               name != "Close" && probed_.insert(key).second;
            QAbstractButton* button = Button(f, name);
            if ((!fresh && !openers_.count(key)) || button == nullptr) continue;
            newProbes_ += fresh;
            f.childOpened = false;
            f.lastClicked = name;
            Click(f, button);
            if (Gone(f)) return;
            if (f.childOpened) openers_.insert(key);
            if (fresh && !f.childOpened) return;  // the next poll cancels
        }
        QAbstractButton* ok = Button(f, "OK", "Close");
        if (ok == nullptr) return Key(f, Qt::Key_End, "", "End");
        const size_t shown = f.messages.size();
        Confirm(f, ok);
        if (Gone(f) || f.messages.size() == shown) return;
        if (!(latchRowInverted && f.name == "frmLatch" && f.messages[shown] == 8)) {
            log_.Fail(f.path + ": OK without an edit was refused with message " +
                      std::to_string(f.messages[shown]));
        }
    }

    Random& random_;
    SessionLog& log_;
    bool walk_ = false, endWithOk_ = false, scheduled_ = false, aborted_ = false, menuOk_ = false;
    QTimer timer_;
    std::unique_ptr<QObject> context_;  // owns the queued actions of one run
    std::deque<Frame> frames_;
    std::vector<Frame*> acting_;  // windows whose action is running, innermost last
    qint64 lastStep_ = 0;
    // The walk: buttons tried, and those that open a window, as "window path | button".
    std::set<std::string> probed_, openers_;
    int newProbes_ = 0;
};

std::string Differences(const ParameterImage& before, const ParameterImage& after) {
    std::string text;
    for (const int i : test::DifferingBytes(before, after)) {
        if (text.size() < 200)
            text += " byte " + std::to_string(i) + ": " + std::to_string(before[i]) + " -> " +
                    std::to_string(after[i]);
    }
    return text;
}

// What holds after every run, whatever happened in it.
void CheckRun(SessionLog& log, const test::TempProject& project, const Outcome& run,
              const ParameterImage& before, std::vector<std::string> files) {
    if (run.status != 0) log.Fail("a runtime error reached the host: " + run.error);
    const ParameterImage after = project.ParamTmp();
    if (!run.menuOk && run.result != 0) log.Fail("a run left with Cancel saved");
    if ((!run.menuOk || run.result == 0) && after != before) {
        log.Fail("a run that did not save changed param.tmp:" + Differences(before, after));
    }
    if (run.result == 1 && !run.changed)
        log.Fail("the run saved, yet the host's change flag came back False");
    if (!run.menuOk && run.changed != run.changedIn)
        log.Fail("a run left with Cancel changed the host's change flag");
    // The workbooks the spreadsheet hand-over copies into the project stay there.
    const auto workbook = [](const std::string& name) { return name.ends_with(".xls"); };
    std::vector<std::string> left = project.List();
    std::erase_if(left, workbook);
    std::erase_if(files, workbook);
    std::string names;
    for (const std::string& name : left) names += " " + name;
    if (left != files) log.Fail("the run left the project with the files" + names);
}

void RunSession(SessionLog& log, uint64_t seed, long long index, const std::string& cpu) {
    Random random(seed, static_cast<uint64_t>(index));
    test::TempProject project(cpu);
    const int subEditing = random.Chance(25) ? 1 + random.Below(3) : 0;
    if (random.Chance(30)) {
        // END positions of the programs, which may exceed the memory capacities.
        std::string steps =
            std::to_string(random.Chance(25) ? random.Below(65536) : random.Below(8192));
        for (int sub = 0; sub < 3; ++sub)
            steps += " " + std::to_string(random.Chance(30) ? random.Below(32768) : 0);
        project.WriteText("program.end", steps + "\n");
        log.Note("program.end: " + steps);
    }
    Driver driver(random, log);
    const int runs = 1 + random.Below(3);
    for (int i = 0; i < runs && log.failures.empty(); ++i) {
        ParameterImage before = project.ParamTmp();
        const std::vector<std::string> files = project.List();
        const bool endWithOk = random.Chance(50);
        const Outcome run = driver.Run(project, subEditing, random.Chance(30), false, endWithOk);
        if (run.aborted) return;
        CheckRun(log, project, run, before, files);
        if (!log.failures.empty() || run.result != 1) continue;

        // Saved: opened again and confirmed everywhere without an edit, not a byte changes.
        // With no sub program open: the memory dialog rightly refuses a sub program being
        // edited that has no capacity, whatever the file holds.
        before = project.ParamTmp();
        driver.latchRowInverted =
            !before.IsErased(16) && before.GetParamWord(16) > before.GetParamWord(18);
        const Outcome walk = driver.Run(project, 0, false, true, true);
        if (walk.aborted) return;
        CheckRun(log, project, walk, before, files);
        if (walk.result != 1) log.Fail("opened again and confirmed with OK, the run did not save");
        // The model names are written once their dialog has been opened, and an erased
        // record (six bytes 255, read as no name) is written back as the empty name.
        const ParameterImage after = project.ParamTmp();
        static constexpr uint8_t kEmptyName[6] = {0xC4, 0xE6, 0xC4, 0xE6, 0xC4, 0xE6};
        for (int record = 640; record < 1024; record += 6) {
            if (std::all_of(before.data() + record, before.data() + record + 6,
                            [](uint8_t b) { return b == 255; }) &&
                std::equal(kEmptyName, kEmptyName + 6, after.data() + record)) {
                std::copy(kEmptyName, kEmptyName + 6, before.data() + record);
            }
        }
        if (after != before)
            log.Fail("opened again and confirmed with OK without an edit, param.tmp changed:" +
                     Differences(before, after));
    }
}

long long EnvNumber(const char* name, long long fallback) {
    const char* text = std::getenv(name);
    if (text == nullptr || *text == '\0') return fallback;
    char* end = nullptr;
    const long long value = std::strtoll(text, &end, 10);
    if (*end == '\0' && value >= 0) return value;
    std::fprintf(stderr, "monkey: %s=%s is not a number\n", name, text);
    std::exit(2);
}

// The offscreen platform says these of every window it sizes or raises, thousands of times.
QtMessageHandler g_qtHandler = nullptr;
void FilterQtMessages(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (!text.contains("propagateSizeHints") && !text.contains("support raise()"))
        g_qtHandler(type, context, text);
}

}  // namespace
}  // namespace gantrix::monkey

int main(int argc, char** argv) {
    using namespace gantrix::monkey;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    g_qtHandler = qInstallMessageHandler(FilterQtMessages);
    QApplication app(argc, argv);
    gantrix::EnsureApplication();
    for (int signal : {SIGABRT, SIGALRM}) std::signal(signal, OnSignal);
#if defined(__SANITIZE_ADDRESS__)
    // The sanitizers catch the faults themselves and report before they die.
    __sanitizer_set_death_callback([] { OnSignal(SIGABRT); });
#else
    for (int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) std::signal(signal, OnSignal);
#endif
    unsigned long long seed = static_cast<unsigned long long>(EnvNumber("GANTRIX_MONKEY_SEED", 1));
    long long first = 0, sessions = EnvNumber("GANTRIX_MONKEY_SESSIONS", kDefaultSessions);
    const long long minutes = EnvNumber("GANTRIX_MONKEY_MINUTES", 0);
    const char* replay = std::getenv("GANTRIX_MONKEY_REPLAY");
    const bool replaying = replay != nullptr && *replay != '\0';
    if (replaying && std::sscanf(replay, "%llu:%lld", &seed, &first) != 2) {
        std::fprintf(stderr, "monkey: GANTRIX_MONKEY_REPLAY=%s is not SEED:SESSION\n", replay);
        return 2;
    }
    if (replaying)
        sessions = 1;
    else if (minutes > 0 && std::getenv("GANTRIX_MONKEY_SESSIONS") == nullptr)
        sessions = 1LL << 40;

    const qint64 start = Now();
    long long done = 0, events = 0, failed = 0;
    for (long long i = first;
         i < first + sessions && (minutes == 0 || Now() - start < minutes * 60000); ++i) {
        const char* cpu = kCpuTypes[static_cast<size_t>(i) % std::size(kCpuTypes)];
        char replayLine[96];
        std::snprintf(replayLine, sizeof replayLine,
                      "  replay: GANTRIX_MONKEY_REPLAY=%llu:%lld monkey_tests\n", seed, i);
        std::snprintf(g_dying, sizeof g_dying, "\n  in session %lld of seed %llu (CPU \"%s\")\n%s",
                      i, seed, cpu, replayLine);
        SessionLog log{.verbose = replaying};
        RunSession(log, seed, i, cpu);
        ++done;
        events += static_cast<long long>(log.events.size());
        if (log.failures.empty()) continue;
        ++failed;
        for (const std::string& failure : log.failures) {
            std::fprintf(stderr, "\nmonkey: FAILED session %lld of seed %llu (CPU \"%s\"): %s\n", i,
                         seed, cpu, failure.c_str());
        }
        std::fprintf(stderr, "  last events:\n");
        for (size_t e = log.events.size() > 60 ? log.events.size() - 60 : 0; e < log.events.size();
             ++e) {
            std::fprintf(stderr, "  %zu %s\n", e + 1, log.events[e].c_str());
        }
        std::fprintf(stderr, "%s", replayLine);
    }
    ::alarm(0);
    g_dying[0] = '\0';
    std::printf("monkey: seed %llu, %lld sessions, %lld events, %lld failed, %lld s\n", seed, done,
                events, failed, (Now() - start) / 1000);
    return failed == 0 ? 0 : 1;
}
