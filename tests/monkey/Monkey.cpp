// The monkey: seeded random sessions of the parameter mode through the C interface.
//
// A session makes a project for one CPU type (sometimes with END positions of its programs,
// sometimes with a sub program open in the host) and runs the parameter mode on it one to
// three times. In each run the monkey presses menu items, sends random keys and clicks to
// whatever modal window is active (nested dialogs included), answers every message box with
// a random button and leaves the menu with OK or Cancel. It knows no dialog by name. After
// every run it checks:
//   - a run that did not save, and any run left with Cancel, leaves "param.tmp" byte for
//     byte and the host's change flag as they were; a save sets the flag; no working file
//     stays behind;
//   - a saved file, opened again and taken through every dialog with OK and no edit, does
//     not change by a byte;
//   - a dialog's OK either closes it or shows a message;
//   - no window stops answering, no runtime error reaches the host or the user.
// Everything comes from a random stream seeded by (seed, session index): one seed and one
// index replay a session exactly.
//
//   GANTRIX_MONKEY_SEED=S          seed of the sessions (default 1)
//   GANTRIX_MONKEY_SESSIONS=N      number of sessions (default kDefaultSessions)
//   GANTRIX_MONKEY_MINUTES=M       stop starting sessions after M minutes (long runs)
//   GANTRIX_MONKEY_REPLAY=S:I      run only session I of seed S, printing every event

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
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <set>
#include <thread>

#include "entry/GantrixA0J.h"
#include "entry/RKParam.h"
#include "store/ParameterFiles.h"
#include "support/core/TestSupport.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif

namespace gantrix::monkey {
namespace {

const char* const kCpuTypes[] = {"A0J", "A0H", "A1S", "A1 ", "A2C", "A2 ", "A3 ",
                                 "A3H", "A2A", "A3A", "A2U", "A3U", "A4U"};
// About 20 s on one core in the release build.
constexpr int kDefaultSessions = 156;
// No step of the event loop for this long: product code is looping or blocked.
constexpr int kWatchdogSeconds = 120;
// A window that takes no step for this long has stopped answering.
constexpr qint64 kStallMs = 20000;
// Polls to wait for a new window to become the active window before acting on it.
constexpr int kActivationPolls = 50;
// Close attempts after which questions are answered Yes, so that Cancel gets through.
constexpr int kForcedAnswersAfter = 8;
// Close attempts after which a window that is still open counts as hung.
constexpr int kCloseAttempts = 40;
// Menu items the walk opens: the settings dialogs. 5 and 6 hand over to other programs, and
// 7 (Clear All) changes the image by design.
constexpr int kWalkedMenuItems = 5;

// splitmix64: small, fast, and the same on every platform and standard library.
class Random {
  public:
    Random(uint64_t seed, uint64_t session) : state_(seed * 0x9E3779B97F4A7C15ULL) {
        state_ ^= Next() + session;
        Next();
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

// What a session did, for the report and for a replay.
struct SessionLog {
    uint64_t seed = 0;
    int index = 0;
    std::string cpu;
    bool verbose = false;  // print every event as it happens (replay)
    std::vector<std::string> events;
    std::vector<std::string> failures;

    void Note(const std::string& text) {
        events.push_back(text);
        if (verbose) std::printf("%6zu %s\n", events.size(), text.c_str()), std::fflush(stdout);
    }
    void Fail(const std::string& text) {
        if (std::find(failures.begin(), failures.end(), text) != failures.end()) return;
        failures.push_back(text);
        Note("FAILED: " + text);
    }
};

std::atomic<long long> g_lastBeat{0};
// The running session and how to replay it, written as the process dies.
char g_dying[160] = "";

long long NowSeconds() {
    return QDateTime::currentSecsSinceEpoch();
}

void ReportDying(const char* why) {
    static std::atomic<bool> reported{false};
    if (reported.exchange(true)) return;
    const char* texts[] = {"\nmonkey: FAILED: ", why, g_dying};
    for (const char* text : texts) {
        [[maybe_unused]] const ssize_t n = ::write(2, text, std::strlen(text));
    }
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

std::string Quoted(const QString& text) {
    return "'" + text.toStdString() + "'";
}

bool WorkbookWindowOpen() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == "frmSpreadsheet" && window->isVisible()) return true;
    }
    return false;
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
    std::string path;  // how it was reached from the menu
    bool started = false;
    int activationPolls = 0;
    bool budgetSet = false;
    int eventsLeft = 0;
    int closeAttempts = 0;
    std::vector<int> messages;  // numbers of the boxes shown while this window acted
    bool childOpened = false;
    std::string lastClicked;
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

    Outcome Run(const test::TempProject& project, const Host& host, Mode mode, bool endWithOk) {
        mode_ = mode;
        endWithOk_ = endWithOk;
        frames_.clear();
        acting_.clear();
        probed_.clear();
        openers_.clear();
        newProbes_ = 0;
        scheduled_ = aborted_ = menuOk_ = false;
        context_ = std::make_unique<QObject>();
        log_.Note(mode == Mode::Walk ? "run: open again, every dialog with OK and no edit"
                  : endWithOk        ? "run: random, ends with OK"
                                     : "run: random, ends with Cancel");
        ::RKParam* object = RKParam_Create();
        RKParam_Let_szPcName(object, project.Cpu().c_str());
        const std::string dir = project.Path().substr(0, project.Path().size() - 1);
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

  private:
    void Poll() {
        g_lastBeat = NowSeconds();
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
        // Acting may open a nested modal loop: queued, so that this poll returns and the
        // timer goes on inside that loop.
        scheduled_ = true;
        QTimer::singleShot(0, context_.get(), [this, id = f.id] {
            scheduled_ = false;
            Frame& frame = frames_.at(id);
            if (aborted_ || !frame.window || !frame.window->isVisible()) return;
            acting_.push_back(id);
            lastStep_ = Now();
            if (frame.kind == Kind::Message) {
                Answer(frame);
            } else if (frame.kind == Kind::Menu) {
                mode_ == Mode::Walk ? MenuWalk(frame) : MenuRandom(frame);
            } else {
                mode_ == Mode::Walk ? DialogWalk(frame) : DialogRandom(frame);
            }
            lastStep_ = Now();
            acting_.pop_back();
        });
    }

    bool IsActing(const QWidget* modal) const {
        const QVariant id = modal->property("monkeyFrame");
        return id.isValid() &&
               std::find(acting_.begin(), acting_.end(), id.toInt()) != acting_.end();
    }

    Frame& FrameOf(QWidget* modal) {
        const QVariant known = modal->property("monkeyFrame");
        if (known.isValid()) return frames_.at(known.toInt());
        Frame f;
        f.id = nextId_++;
        f.window = modal;
        f.name = f.path = Name(modal);
        f.parent = acting_.empty() ? -1 : acting_.back();
        f.kind = qobject_cast<QMessageBox*>(modal) ? Kind::Message
                 : f.parent < 0                    ? Kind::Menu
                                                   : Kind::Dialog;
        if (f.parent >= 0) {
            Frame& parent = frames_.at(f.parent);
            if (f.kind == Kind::Dialog) parent.childOpened = true;
            f.path = parent.path + " / " + parent.lastClicked + " > " + f.name;
        }
        modal->setProperty("monkeyFrame", f.id);
        if (f.kind != Kind::Message) log_.Note("open " + f.path);
        return frames_.emplace(f.id, std::move(f)).first->second;
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

    QAbstractButton* Button(const Frame& f, const std::string& name) const {
        const auto found = Usable<QAbstractButton>(f, name);
        return found.empty() ? nullptr : found.front();
    }

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
        if (!aborted_ && f.window && f.window->isVisible() && f.messages.size() == shown &&
            !WorkbookWindowOpen()) {
            log_.Fail(f.path + ": " + name + " neither closed the window nor showed a message");
        }
    }

    void Key(Frame& f, int key, const QString& text, const std::string& name,
             Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWidget* target = f.window->focusWidget();
        if (target == nullptr || target->window() != f.window) target = f.window;
        log_.Note(f.name + ": key " + name + " -> " + Name(target));
        QPointer<QWidget> alive = target;
        QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
        QApplication::sendEvent(target, &press);
        QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
        if (alive) QApplication::sendEvent(target, &release);
    }
    void Escape(Frame& f) { Key(f, Qt::Key_Escape, "\x1b", "Escape"); }

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
        const QVariant numberProperty = box->property("messageNumber");
        const int number = numberProperty.isValid() ? numberProperty.toInt() : -1;
        Frame* parent = f.parent >= 0 ? &frames_.at(f.parent) : nullptr;
        if (parent) parent->messages.push_back(number);
        if (number == 0) {
            log_.Fail("a runtime error reached the user: " + box->text().toStdString() + " (in " +
                      (parent ? parent->path : "?") + ")");
        }
        std::vector<QAbstractButton*> buttons;
        for (QAbstractButton* button : box->buttons()) {
            if (button->isEnabled()) buttons.push_back(button);
        }
        if (buttons.empty()) return Hang("message " + std::to_string(number) + " has no button");
        QAbstractButton* choice = nullptr;
        if (mode_ == Mode::Walk || (parent && parent->closeAttempts > kForcedAnswersAfter)) {
            for (const char* preferred : {"Yes", "OK"}) {
                for (QAbstractButton* button : buttons) {
                    if (!choice && button->objectName() == preferred) choice = button;
                }
            }
        }
        if (choice == nullptr) choice = random_.Pick(buttons);
        log_.Note("message " + std::to_string(number) + " [" + (parent ? parent->name : "?") +
                  "]: " + Name(choice));
        choice->click();
    }

    // The spreadsheet application's windows stay open beside the menu, which waits for them:
    // they are closed now and then, and always before the menu is left.
    void CloseWorkbookWindows() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() != "frmSpreadsheet" || !window->isVisible()) continue;
            if (auto* close = window->findChild<QPushButton*>("Close")) {
                log_.Note("workbook window: click Close");
                close->click();
            }
        }
    }

    QAbstractButton* MenuItem(const Frame& f, int i) const {
        return Button(f, "MenuItem(" + std::to_string(i) + ")");
    }

    // Leaves the menu: OK when the run is to end with OK, else Cancel or Escape.
    void LeaveMenu(Frame& f, bool ok) {
        if (++f.closeAttempts > kCloseAttempts) return Hang("the menu did not close");
        if (f.closeAttempts == 1 && ok) {
            menuOk_ = true;
            if (QAbstractButton* button = Button(f, "OK")) return Confirm(f, button);
        }
        QAbstractButton* cancel = Button(f, "Cancel");
        if (cancel && (mode_ == Mode::Walk || random_.Chance(80))) return Click(f, cancel);
        Escape(f);
    }

    void MenuRandom(Frame& f) {
        if (f.eventsLeft == 0 || random_.Chance(20)) CloseWorkbookWindows();
        if (!f.budgetSet) {
            f.budgetSet = true;
            f.eventsLeft = 1 + random_.Below(8);
        }
        if (f.eventsLeft == 0) return LeaveMenu(f, endWithOk_);
        --f.eventsLeft;
        std::vector<QAbstractButton*> items;
        for (int i = 0; i < 8; ++i) {
            if (QAbstractButton* item = MenuItem(f, i)) items.push_back(item);
        }
        if (!items.empty() && random_.Chance(85)) {
            QAbstractButton* item = random_.Pick(items);
            // Clear All wipes every setting: rarer than the dialogs.
            if (item->objectName() == "MenuItem(7)" && !random_.Chance(40)) {
                item = random_.Pick(items);
            }
            f.lastClicked = Name(item);
            return Click(f, item);
        }
        static const std::pair<int, const char*> kMenuKeys[] = {
            {Qt::Key_Up, "Up"}, {Qt::Key_Down, "Down"}, {Qt::Key_Tab, "Tab"}};
        const auto& [key, name] = kMenuKeys[random_.Below(3)];
        Key(f, key, key == Qt::Key_Tab ? "\t" : "", name);
    }

    void MenuWalk(Frame& f) {
        for (; f.walkItem < kWalkedMenuItems; ++f.walkItem) {
            if (QAbstractButton* item = MenuItem(f, f.walkItem)) {
                // An item is opened again until an opening has no button left to try.
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
        if (!f.budgetSet) {
            f.budgetSet = true;
            f.eventsLeft = random_.Chance(25) ? random_.Below(4) : random_.Below(150);
        }
        if (f.eventsLeft > 0) {
            --f.eventsLeft;
            return RandomEvent(f);
        }
        if (++f.closeAttempts > kCloseAttempts) return Hang(f.path + " did not close");
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
            Escape(f);
        }
    }

    void RandomEvent(Frame& f) {
        struct KeyChoice {
            int key;
            const char* text;
            const char* name;
        };
        // From r 34 to 73: a key, and with the chance given the first of two, else the second.
        // End acts as OK: rarer than Home, so that a dialog lives through its budget.
        static const struct {
            int below, chance;
            KeyChoice first, second;
        } kKeys[] = {{42, 100, {Qt::Key_Return, "\r", "Enter"}, {}},
                     {47, 70, {Qt::Key_Tab, "\t", "Tab"}, {Qt::Key_Backtab, "", "Shift+Tab"}},
                     {57, -4, {}, {}},  // an arrow
                     {60, 50, {Qt::Key_PageUp, "", "PageUp"}, {Qt::Key_PageDown, "", "PageDown"}},
                     {63, 85, {Qt::Key_Home, "", "Home"}, {Qt::Key_End, "", "End"}},
                     {67, 100, {Qt::Key_Delete, "\x7f", "Delete"}, {}},
                     {72, 100, {Qt::Key_Backspace, "\b", "Backspace"}, {}},
                     {73, 50, {Qt::Key_Escape, "\x1b", "Escape"}, {0, "", ""}}};
        static const KeyChoice kArrows[] = {{Qt::Key_Left, "", "Left"},
                                            {Qt::Key_Right, "", "Right"},
                                            {Qt::Key_Up, "", "Up"},
                                            {Qt::Key_Down, "", "Down"}};
        const int r = random_.Below(100);
        if (r < 30) {
            // Mostly what the boxes take (digits, hexadecimal digits, slot code letters), then
            // any printable character.
            static const char kLikely[] = "ABCDEFXYIOSMLKHTUWZabcdefx  -";
            const int kind = random_.Below(100);
            const char c = kind < 45   ? static_cast<char>('0' + random_.Below(10))
                           : kind < 70 ? kLikely[random_.Below(sizeof(kLikely) - 1)]
                                       : static_cast<char>(0x20 + random_.Below(0x7f - 0x20));
            const QString text(QChar::fromLatin1(c));
            Key(f, c >= 'a' && c <= 'z' ? Qt::Key_A + (c - 'a') : c, text, Quoted(text));
        } else if (r < 34) {
            static const char* const kForeign[] = {"ä", "ß", "°", "é", "Ω", "あ", "€", "😀"};
            const QString text = QString::fromUtf8(kForeign[random_.Below(8)]);
            Key(f, Qt::Key_unknown, text, Quoted(text));
        } else if (r < 73) {
            const auto& row = *std::find_if(std::begin(kKeys), std::end(kKeys),
                                            [r](const auto& k) { return r < k.below; });
            const KeyChoice& k = row.chance < 0 ? kArrows[random_.Below(4)]
                                 : row.chance == 100 || random_.Chance(row.chance) ? row.first
                                                                                   : row.second;
            if (k.key == 0) return;
            Key(f, k.key, k.text, k.name,
                k.key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
        } else if (r < 89) {
            // Push buttons (the nested dialogs' among them), check boxes, option buttons and
            // spin arrows; those that close the dialog less often, so that it lives through
            // its budget.
            const auto buttons = Usable<QAbstractButton>(f);
            if (buttons.empty()) return;
            const auto closes = [](const QAbstractButton* b) {
                return b->objectName() == "OK" || b->objectName() == "Cancel" ||
                       b->objectName() == "Close";
            };
            QAbstractButton* button = random_.Pick(buttons);
            if (closes(button) && !random_.Chance(25)) button = random_.Pick(buttons);
            if (button->objectName() == "OK" || button->objectName() == "Close") {
                return Confirm(f, button);
            }
            f.lastClicked = Name(button);
            Click(f, button);
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
            std::vector<QComboBox*> combos;
            for (QComboBox* combo : Usable<QComboBox>(f)) {
                if (combo->count() > 0) combos.push_back(combo);
            }
            if (combos.empty()) return;
            QComboBox* combo = random_.Pick(combos);
            const int index = random_.Below(combo->count());
            log_.Note(f.name + ": choose " + Quoted(combo->itemText(index)) + " in " + Name(combo));
            combo->setFocus(Qt::MouseFocusReason);
            combo->setCurrentIndex(index);
            emit combo->activated(index);
            emit combo->textActivated(combo->itemText(index));
        }
    }

    // Each opening tries at most one button not tried before: one that opens a window is
    // then confirmed with OK; any other may have edited, so Cancel. With nothing left to try,
    // every window this one opens, then OK.
    void DialogWalk(Frame& f) {
        static const std::set<std::string> kStandard = {"OK", "Cancel", "Clear", "Close"};
        if (f.walkState == 0) {
            for (QPushButton* button : Usable<QPushButton>(f)) {
                const std::string name = Name(button);
                if (kStandard.count(name) || !probed_.insert(f.path + " | " + name).second) {
                    continue;
                }
                ++newProbes_;
                f.childOpened = false;
                f.lastClicked = name;
                Click(f, button);
                if (aborted_ || !f.window || !f.window->isVisible()) return;
                if (f.childOpened) openers_[f.path].push_back(name);
                f.walkState = f.childOpened ? 2 : 3;
                return;
            }
            f.openers = openers_[f.path];
            f.walkState = 1;
        }
        if (f.walkState == 1) {
            while (!f.openers.empty()) {
                const std::string name = f.openers.front();
                f.openers.erase(f.openers.begin());
                if (QAbstractButton* button = Button(f, name)) {
                    f.lastClicked = name;
                    return Click(f, button);
                }
            }
            f.walkState = 2;
        }
        if (f.walkState == 2) {
            f.walkState = 3;
            QAbstractButton* ok = Button(f, "OK");
            if (ok == nullptr) ok = Button(f, "Close");
            if (ok == nullptr) return Key(f, Qt::Key_End, "", "End");
            const size_t shown = f.messages.size();
            Confirm(f, ok);
            if (!aborted_ && f.window && f.window->isVisible() && f.messages.size() > shown) {
                log_.Fail(f.path + ": OK without an edit was refused with message " +
                          std::to_string(f.messages[shown]));
            }
            return;
        }
        if (++f.closeAttempts > kCloseAttempts) return Hang(f.path + " did not close");
        QAbstractButton* cancel = Button(f, "Cancel");
        if (cancel == nullptr) cancel = Button(f, "Close");
        cancel ? Click(f, cancel) : Escape(f);
    }

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

std::string Differences(const std::vector<uint8_t>& before, const std::vector<uint8_t>& after) {
    if (before.size() != after.size()) return "size " + std::to_string(after.size());
    std::string text;
    for (size_t i = 0, shown = 0; i < before.size() && shown < 12; ++i) {
        if (before[i] == after[i]) continue;
        text += (shown++ ? ", byte " : "byte ") + std::to_string(i) + " " +
                std::to_string(before[i]) + " -> " + std::to_string(after[i]);
    }
    return text;
}

// The model names are written once their dialog has been opened, and an erased record (six
// bytes 255, read as no name) is written back as the empty name C4 E6 C4 E6 C4 E6. That one
// change of an unedited file is by design; before takes it over from after.
void AcceptErasedModelNames(std::vector<uint8_t>& before, const std::vector<uint8_t>& after) {
    static constexpr uint8_t kErased[6] = {255, 255, 255, 255, 255, 255};
    static constexpr uint8_t kEmpty[6] = {0xC4, 0xE6, 0xC4, 0xE6, 0xC4, 0xE6};
    if (before.size() != after.size() || before.size() < 1024) return;
    for (auto record = before.begin() + 640; record < before.begin() + 1024; record += 6) {
        if (std::equal(kErased, kErased + 6, record) &&
            std::equal(kEmpty, kEmpty + 6, after.begin() + (record - before.begin()))) {
            std::copy(kEmpty, kEmpty + 6, record);
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
    std::vector<std::string> left = project.List(), expected = files;
    std::erase_if(left, workbook);
    std::erase_if(expected, workbook);
    std::string names;
    for (const std::string& name : left) names += " " + name;
    if (left != expected) log.Fail("the run left the project with the files" + names);
}

// Runs session index of seed on a fresh project; everything it did and found is in the log.
void RunSession(SessionLog& log) {
    Random random(log.seed, static_cast<uint64_t>(log.index));
    log.cpu = kCpuTypes[static_cast<size_t>(log.index) % std::size(kCpuTypes)];
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
    for (int i = 0; i < runs && log.failures.empty(); ++i) {
        std::vector<uint8_t> before = project.Read(kParamTmp);
        const std::vector<std::string> files = project.List();
        const bool endWithOk = random.Chance(50);
        host.contentChanged = random.Chance(30);
        const Outcome run = driver.Run(project, host, Mode::Random, endWithOk);
        if (run.aborted) return;
        CheckRun(log, project, run, before, files);
        if (!log.failures.empty() || run.result != 1) continue;

        // Saved: opened again and confirmed everywhere without an edit, not a byte changes.
        // With no sub program open: the memory dialog rightly refuses a sub program being
        // edited that has no capacity, whatever the file holds.
        before = project.Read(kParamTmp);
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

void OnSignal(int signal) {
    ReportDying(signal == SIGABRT ? "aborted (a sanitizer report or an assertion above)"
                                  : "crashed on a signal");
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

long long EnvNumber(const char* name, long long fallback) {
    const char* text = std::getenv(name);
    if (text == nullptr || *text == '\0') return fallback;
    char* end = nullptr;
    const long long value = std::strtoll(text, &end, 10);
    if (*end != '\0' || value < 0) {
        std::fprintf(stderr, "monkey: %s=%s is not a number\n", name, text);
        std::exit(2);
    }
    return value;
}

// The offscreen platform says these of every window it sizes or raises, thousands of times.
QtMessageHandler g_qtHandler = nullptr;
void FilterQtMessages(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (!text.contains("propagateSizeHints") && !text.contains("support raise()")) {
        g_qtHandler(type, context, text);
    }
}

}  // namespace
}  // namespace gantrix::monkey

int main(int argc, char** argv) {
    using namespace gantrix::monkey;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    g_qtHandler = qInstallMessageHandler(FilterQtMessages);
    QApplication app(argc, argv);
    gantrix::EnsureApplication();
    std::signal(SIGABRT, OnSignal);
#if defined(__SANITIZE_ADDRESS__)
    // The sanitizers catch the faults themselves and report before they die.
    __sanitizer_set_death_callback([] { ReportDying("a sanitizer report (above)"); });
#else
    for (int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) std::signal(signal, OnSignal);
#endif
    g_lastBeat = NowSeconds();
    std::thread([] {
        for (;;) {
            std::this_thread::sleep_for(std::chrono::seconds(1));
            if (NowSeconds() - g_lastBeat.load() > kWatchdogSeconds) {
                ReportDying("hang: the event loop took no step for a long time");
                std::_Exit(3);
            }
        }
    }).detach();

    unsigned long long seed = static_cast<unsigned long long>(EnvNumber("GANTRIX_MONKEY_SEED", 1));
    long long first = 0;
    long long sessions = EnvNumber("GANTRIX_MONKEY_SESSIONS", kDefaultSessions);
    const long long minutes = EnvNumber("GANTRIX_MONKEY_MINUTES", 0);
    const char* replay = std::getenv("GANTRIX_MONKEY_REPLAY");
    if (replay && *replay) {
        if (std::sscanf(replay, "%llu:%lld", &seed, &first) != 2) {
            std::fprintf(stderr, "monkey: GANTRIX_MONKEY_REPLAY=%s is not SEED:SESSION\n", replay);
            return 2;
        }
        sessions = 1;
    } else if (minutes > 0 && std::getenv("GANTRIX_MONKEY_SESSIONS") == nullptr) {
        sessions = 1LL << 40;  // the time is the budget
    }

    const long long start = NowSeconds();
    long long done = 0, events = 0, failed = 0;
    for (long long i = first; i < first + sessions; ++i) {
        if (minutes > 0 && NowSeconds() - start >= minutes * 60) break;
        SessionLog log;
        log.seed = seed;
        log.index = static_cast<int>(i);
        log.verbose = replay && *replay;
        log.cpu = kCpuTypes[static_cast<size_t>(i) % std::size(kCpuTypes)];
        char replayLine[96];
        std::snprintf(replayLine, sizeof replayLine,
                      "  replay: GANTRIX_MONKEY_REPLAY=%llu:%lld monkey_tests\n", seed, i);
        std::snprintf(g_dying, sizeof g_dying, "\n  in session %lld of seed %llu (CPU \"%s\")\n%s",
                      i, seed, log.cpu.c_str(), replayLine);
        g_lastBeat = NowSeconds();
        RunSession(log);
        ++done;
        events += static_cast<long long>(log.events.size());
        if (log.failures.empty()) continue;
        ++failed;
        for (const std::string& failure : log.failures) {
            std::fprintf(stderr, "\nmonkey: FAILED session %lld of seed %llu (CPU \"%s\"): %s\n", i,
                         seed, log.cpu.c_str(), failure.c_str());
        }
        const size_t from = log.events.size() > 60 ? log.events.size() - 60 : 0;
        std::fprintf(stderr, "  last events:\n");
        for (size_t e = from; e < log.events.size(); ++e) {
            std::fprintf(stderr, "  %zu %s\n", e + 1, log.events[e].c_str());
        }
        std::fprintf(stderr, "%s", replayLine);
    }
    g_dying[0] = '\0';
    std::printf("monkey: seed %llu, %lld sessions, %lld events, %lld failed, %lld s\n", seed, done,
                events, failed, NowSeconds() - start);
    return failed == 0 ? 0 : 1;
}
