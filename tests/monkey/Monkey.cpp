// SPDX-License-Identifier: Apache-2.0
// Seeded random sessions of the parameter mode through the C interface, each run checked:
// nothing saved leaves "param.tmp" and the change flag alone, a save sets the flag, no working
// file stays, a saved file walked through every dialog with OK and no edit keeps every byte, a
// dialog's OK closes it or shows a message, nothing hangs, no runtime error reaches anyone.
//   GANTRIX_MONKEY_SEED=S  GANTRIX_MONKEY_SESSIONS=N  GANTRIX_MONKEY_MINUTES=M (a time budget)
//   GANTRIX_MONKEY_REPLAY=S:I (only session I of seed S, printing every event)
//   GANTRIX_MONKEY_SHARD=K/N (only the sessions I with I % N == K: N processes side by side
//   run the same sessions as one)

#include <unistd.h>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDateTime>
#include <QDialog>
#include <QKeySequence>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <csignal>
#include <cstring>
#include <deque>
#include <random>
#include <set>

#include "entry/GantrixA0J.h"
#include "entry/RKParam.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "support/core/TestSupport.h"

namespace gantrix::monkey {
namespace {

constexpr int kDefaultSessions = 156;       // about 20 s on one core in the release build
constexpr unsigned kWatchdogSeconds = 120;  // no action for this long is a hang
// Close attempts after which questions are answered Yes, and after which a window is hung.
constexpr int kForcedAnswersAfter = 8, kCloseAttempts = 40;
constexpr int kWalkedMenuItems = 5;  // the settings dialogs; 5 to 7 hand over or clear

struct Random {
    std::mt19937_64 engine;
    int Below(int n) { return n <= 1 ? 0 : static_cast<int>(engine() % static_cast<uint64_t>(n)); }
    bool Chance(int percent) { return Below(100) < percent; }
    template <typename T>
    T* Pick(const std::vector<T*>& v) {
        return v[static_cast<size_t>(Below(static_cast<int>(v.size())))];
    }
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
    const char* why = signal == SIGALRM ? "hang: no action for a long time" : "crashed or aborted";
    for (const char* text : {"\nmonkey: FAILED: ", why, static_cast<const char*>(g_dying)})
        [[maybe_unused]] const ssize_t n = ::write(2, text, std::strlen(text));
    if (signal == SIGALRM) ::_exit(3);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

std::string Name(const QWidget* widget) {
    if (widget == nullptr) return "(none)";
    if (!widget->objectName().isEmpty()) return widget->objectName().toStdString();
    return Name(widget->parentWidget());
}

struct Frame {
    QPointer<QWidget> window;
    Frame* parent = nullptr;              // the window whose action showed this one
    std::string name, path, lastClicked;  // path: how it was reached from the menu
    std::vector<int> messages;            // numbers of the boxes shown while this window acted
    int activationPolls = 0, eventsLeft = -1, closeAttempts = 0, walkItem = 0;
    bool childOpened = false, walked = false;
};

class Driver {
  public:
    Driver(Random& random, SessionLog& log) : random_(random), log_(log) {
        QObject::connect(&timer_, &QTimer::timeout, [this] { Poll(); });
    }

    // A run with sub program subEditing (1 to 3, 0 for none) open in the host; true when saved.
    bool Run(const test::TempProject& project, int subEditing, bool changed, bool walk,
             bool endWithOk) {
        walk_ = walk;
        endWithOk_ = endWithOk;
        frames_.clear();
        scheduled_ = aborted_ = menuOk_ = false;
        context_ = std::make_unique<QObject>();
        log_.Note(walk ? "run: walk" : endWithOk ? "run: random, OK" : "run: random, Cancel");
        const ParameterImage before = project.ParamTmp();
        std::vector<std::string> files = project.List();
        // The latch dialog and the supplementary functions share the latch end (first step
        // relay - 1) but check only their own boxes: an inverted range refuses OK (message 8).
        const int latchEnd = before.GetParamWord(18);
        mayRefuse_.clear();
        if (!before.IsErased(16) && before.GetParamWord(16) > latchEnd)
            mayRefuse_.insert("frmLatch");
        if (latchEnd + 2 > (before.IsErased(14) ? 2048 : before.GetParamWord(14)))
            mayRefuse_.insert("frmAssistance");
        ::RKParam* object = RKParam_Create();
        RKParam_Let_szPcName(object, project.Cpu().c_str());
        RKParam_Let_ProjectName(object,
                                project.Path().substr(0, project.Path().size() - 1).c_str());
        RKParam_Let_ContentChangeFlag(object, changed);
        RKParam_Let_blnSubEditing1(object, subEditing == 1);
        RKParam_Let_blnSubEditing2(object, subEditing == 2);
        RKParam_Let_blnSubEditing3(object, subEditing == 3);
        int16_t result = -1;
        timer_.start(0);
        if (RKParam_Param_main(object, &result) != 0)
            log_.Fail(std::string("runtime error to the host: ") +
                      RKParam_ErrorDescription(object));
        timer_.stop();
        const bool changedAfter = RKParam_Get_ContentChangeFlag(object) != 0;
        RKParam_Release(object);
        context_.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (aborted_) return false;
        if (!menuOk_ && result != 0) log_.Fail("a run left with Cancel saved");
        if (result == 1 && !changedAfter) log_.Fail("a save left the host's change flag False");
        if (!menuOk_ && changedAfter != changed)
            log_.Fail("a run left with Cancel changed the host's change flag");
        if (walk && result != 1) log_.Fail("opened again and left with OK, the run did not save");
        ParameterImage after = project.ParamTmp();
        // An erased model name record (six bytes 255) comes back as the empty name once opened.
        static constexpr uint8_t kEmptyName[6] = {0xC4, 0xE6, 0xC4, 0xE6, 0xC4, 0xE6};
        for (int record = 640; walk && record < 1024; record += 6)
            if (std::equal(kEmptyName, kEmptyName + 6, after.data() + record) &&
                std::all_of(before.data() + record, before.data() + record + 6,
                            [](uint8_t b) { return b == 255; }))
                std::fill_n(after.data() + record, 6, 255);
        if ((walk || !menuOk_ || result == 0) && after != before)
            log_.Fail(walk ? "OK without an edit changed param.tmp" : "param.tmp changed unsaved");
        // The workbooks the spreadsheet hand-over copies into the project stay there.
        std::vector<std::string> left = project.List();
        for (auto* list : {&left, &files})
            std::erase_if(*list, [](const std::string& name) { return name.ends_with(".xls"); });
        if (left != files) log_.Fail("the run left files behind or removed one");
        return result == 1;
    }

  private:
    void Poll() {
        QWidget* modal = QApplication::activeModalWidget();  // not while busy in its handler
        if (scheduled_ || aborted_ || modal == nullptr || !modal->isVisible() ||
            std::ranges::count(acting_, &FrameOf(modal)))
            return;
        Frame& f = FrameOf(modal);
        if (QApplication::activeWindow() != modal && ++f.activationPolls < 50) return;
        f.activationPolls = 50;
        scheduled_ = true;  // queued: a nested modal loop the action opens runs outside this poll
        QTimer::singleShot(0, context_.get(), [this, &f] {
            scheduled_ = false;
            if (Gone(f)) return;
            ::alarm(kWatchdogSeconds);
            acting_.push_back(&f);
            if (qobject_cast<QMessageBox*>(f.window)) {
                Answer(f);
            } else if (f.parent == nullptr) {
                walk_ ? MenuWalk(f) : MenuRandom(f);
            } else {
                walk_ ? DialogWalk(f) : DialogRandom(f);
            }
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

    template <typename T>
    std::vector<T*> Usable(const Frame& f, const std::string& name = "") const {
        std::vector<T*> found;
        for (T* widget : f.window->findChildren<T*>()) {
            if (widget->window() == f.window && widget->isEnabled() &&
                widget->isVisibleTo(f.window) && (name.empty() || Name(widget) == name))
                found.push_back(widget);
        }
        return found;
    }

    QAbstractButton* Button(const Frame& f, const std::string& name, std::string alt = "") const {
        auto found = Usable<QAbstractButton>(f, name);
        if (found.empty() && !alt.empty()) found = Usable<QAbstractButton>(f, alt);
        return found.empty() ? nullptr : found.front();
    }
    bool Gone(const Frame& f) const { return aborted_ || !f.window || !f.window->isVisible(); }

    void Click(Frame& f, QAbstractButton* button) {
        log_.Note(f.name + ": click " + (f.lastClicked = Name(button)));
        // A mouse click moves the focus to a button that takes it, before the click itself.
        if (button->focusPolicy() & Qt::ClickFocus) button->setFocus(Qt::MouseFocusReason);
        button->click();
    }
    // Presses a window's OK (or Close): it must close the window or show a message. The
    // network menu's OK stays open by design once it has opened its workbook beside it.
    void Confirm(Frame& f, QAbstractButton* ok) {
        const size_t shown = f.messages.size();
        Click(f, ok);
        if (!Gone(f) && f.messages.size() == shown && !WorkbookWindows(false))
            log_.Fail(f.path + ": " + f.lastClicked + " neither closed nor showed a message");
    }
    void Key(Frame& f, int key, const QString& text = {}) {
        QWidget* target = f.window->focusWidget();
        if (target == nullptr || target->window() != f.window) target = f.window;
        log_.Note(f.name + ": key " + QKeySequence(key).toString().toStdString() + " '" +
                  text.toStdString() + "' -> " + Name(target));
        const auto shift = key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier;
        if (text.isEmpty()) return QTest::keyClick(target, Qt::Key(key), shift);
        QTest::sendKeyEvent(QTest::Click, target, Qt::Key(key), text, shift);
    }
    void Cancel(Frame& f) {
        if (++f.closeAttempts > kCloseAttempts) return Hang(f.path + " did not close");
        QAbstractButton* cancel = Button(f, "Cancel", "Close");
        cancel ? Click(f, cancel) : Key(f, Qt::Key_Escape);
    }
    void Hang(const std::string& why) {
        log_.Fail("hang: " + why);
        aborted_ = true;
        for (int i = 0; i < 100 && qobject_cast<QDialog*>(QApplication::activeModalWidget()); ++i) {
            qobject_cast<QDialog*>(QApplication::activeModalWidget())->done(QDialog::Rejected);
            QApplication::processEvents();
        }
    }
    void Answer(Frame& f) {
        auto* box = static_cast<QMessageBox*>(f.window.data());
        const QVariant numbered = box->property("messageNumber");
        const int number = numbered.isValid() ? numbered.toInt() : -1;
        if (f.parent) f.parent->messages.push_back(number);
        if (number == 0) log_.Fail("runtime error to the user: " + box->text().toStdString());
        const auto all = box->buttons();
        std::vector<QAbstractButton*> buttons(all.begin(), all.end());
        std::erase_if(buttons, [](QAbstractButton* button) { return !button->isEnabled(); });
        if (buttons.empty()) return Hang("message " + std::to_string(number) + " has no button");
        QAbstractButton* choice = random_.Pick(buttons);
        const bool forced = walk_ || (f.parent && f.parent->closeAttempts > kForcedAnswersAfter);
        for (const char* name : {"OK", "Yes"})  // Yes, else OK, when forced
            for (QAbstractButton* button : buttons)
                if (forced && Name(button) == name) choice = button;
        log_.Note("message " + std::to_string(number) + ": " + Name(choice));
        choice->click();
    }

    // Whether a spreadsheet window (which the menu waits for) is open; closes them when close.
    bool WorkbookWindows(bool close) {
        bool open = false;
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() != "frmSpreadsheet" || !window->isVisible()) continue;
            open = true;
            if (auto* button = window->findChild<QPushButton*>("Close"); button && close)
                button->click();
        }
        return open;
    }

    void LeaveMenu(Frame& f, bool ok) {
        WorkbookWindows(true);
        if (f.closeAttempts++ == 0 && ok) {
            menuOk_ = true;
            if (QAbstractButton* button = Button(f, "OK")) return Confirm(f, button);
        }
        walk_ || random_.Chance(80) ? Cancel(f) : Key(f, Qt::Key_Escape);
    }
    std::vector<QAbstractButton*> MenuItems(const Frame& f, int count) const {
        std::vector<QAbstractButton*> items;
        for (int i = 0; i < count; ++i)
            if (QAbstractButton* item = Button(f, "MenuItem(" + std::to_string(i) + ")"))
                items.push_back(item);
        return items;
    }
    void MenuRandom(Frame& f) {
        if (f.eventsLeft < 0) f.eventsLeft = 1 + random_.Below(8);
        if (f.eventsLeft-- == 0) return LeaveMenu(f, endWithOk_);
        if (random_.Chance(20)) WorkbookWindows(true);
        const auto items = MenuItems(f, 8);
        if (items.empty() || !random_.Chance(85))
            return Key(f, std::array{Qt::Key_Up, Qt::Key_Down, Qt::Key_Tab}[random_.Below(3)]);
        QAbstractButton* item = random_.Pick(items);
        if (Name(item) == "MenuItem(7)" && !random_.Chance(40)) item = random_.Pick(items);
        Click(f, item);
    }
    // Opens every settings dialog, each again until an opening tries no new button, then OK.
    void MenuWalk(Frame& f) {
        const auto items = MenuItems(f, kWalkedMenuItems);
        if (static_cast<size_t>(f.walkItem) >= items.size()) return LeaveMenu(f, true);
        const int probes = newProbes_;
        Click(f, items[static_cast<size_t>(f.walkItem)]);
        if (newProbes_ == probes) ++f.walkItem;
    }

    void DialogRandom(Frame& f) {
        if (f.eventsLeft < 0)
            f.eventsLeft = random_.Chance(25) ? random_.Below(4) : random_.Below(150);
        if (f.eventsLeft-- > 0) return RandomEvent(f);
        // OK, Cancel or End at random; after many attempts, Cancel with every question Yes.
        const int choice = f.closeAttempts > kForcedAnswersAfter ? 5 : random_.Below(10);
        QAbstractButton* ok = Button(f, "OK", "Close");
        if (choice < 5 && ok) return ++f.closeAttempts, Confirm(f, ok);
        if (choice < 9) return Cancel(f);
        ++f.closeAttempts;
        Key(f, Qt::Key_End);
    }
    void RandomEvent(Frame& f) {
        // End acts as OK, Escape as Cancel: rare, so that a dialog lives on.
        static const int kKeys[] = {
            Qt::Key_Return, Qt::Key_Tab,       Qt::Key_Backtab, Qt::Key_Left,     Qt::Key_Right,
            Qt::Key_Up,     Qt::Key_Down,      Qt::Key_PageUp,  Qt::Key_PageDown, Qt::Key_Home,
            Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_End,     Qt::Key_Escape};
        // Mostly what the boxes take, then any printable character, a few outside ASCII.
        static const QString kLikely = QString::fromUtf8("ABCDEFXYIOSMLKHTUWZabcdefx  -äß°éΩあ€");
        const int r = random_.Below(100);
        if (r < 34) {
            const int kind = random_.Below(100);
            const QChar c = kind < 40   ? QChar('0' + random_.Below(10))
                            : kind < 70 ? kLikely[random_.Below(static_cast<int>(kLikely.size()))]
                                        : QChar(0x20 + random_.Below(0x5f));
            Key(f, c.unicode() < 128 ? c.toUpper().unicode() : int{Qt::Key_unknown}, QString(c));
        } else if (r < 73) {
            Key(f, kKeys[random_.Below(random_.Chance(95) ? 12 : 14)]);
        } else if (r < 89) {
            // Any button; those that close the dialog less often, so that it lives on.
            const auto buttons = Usable<QAbstractButton>(f);
            if (buttons.empty()) return;
            const auto closes = [](QAbstractButton* b) {
                return Name(b) == "OK" || Name(b) == "Cancel" || Name(b) == "Close";
            };
            QAbstractButton* button = random_.Pick(buttons);
            if (closes(button) && !random_.Chance(25)) button = random_.Pick(buttons);
            closes(button) && Name(button) != "Cancel" ? Confirm(f, button) : Click(f, button);
        } else {
            std::vector<QWidget*> fields;  // a click into a text box or a combo box
            for (QLineEdit* edit : Usable<QLineEdit>(f))
                if (!qobject_cast<QComboBox*>(edit->parentWidget())) fields.push_back(edit);
            for (QComboBox* combo : Usable<QComboBox>(f)) fields.push_back(combo);
            if (fields.empty()) return;
            QWidget* field = random_.Pick(fields);
            log_.Note(f.name + ": click into " + Name(field));
            field->setFocus(Qt::MouseFocusReason);
        }
    }

    // Presses the buttons not tried before and again those that opened a window (walked in
    // turn); after a new one that opened none, Cancel (it may have edited). Else OK, no message.
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
            Click(f, button);
            if (Gone(f)) return;
            if (f.childOpened) openers_.insert(key);
            if (fresh && !f.childOpened) return;  // the next poll cancels
        }
        QAbstractButton* ok = Button(f, "OK", "Close");
        if (ok == nullptr) return Key(f, Qt::Key_End);
        const size_t shown = f.messages.size();
        Confirm(f, ok);
        if (Gone(f) || f.messages.size() == shown) return;
        if (f.messages[shown] != 8 || !mayRefuse_.contains(f.name))
            log_.Fail(f.path + ": OK without an edit refused, message " +
                      std::to_string(f.messages[shown]));
    }

    Random& random_;
    SessionLog& log_;
    bool walk_ = false, endWithOk_ = false, scheduled_ = false, aborted_ = false, menuOk_ = false;
    QTimer timer_;
    std::unique_ptr<QObject> context_;  // owns the queued actions of one run
    std::deque<Frame> frames_;
    std::vector<Frame*> acting_;  // windows whose action is running, innermost last
    // The walk: buttons tried, and those that open a window, as "window path | button".
    std::set<std::string> probed_, openers_, mayRefuse_;
    int newProbes_ = 0;
};

void RunSession(SessionLog& log, uint64_t seed, long long index, const std::string& cpu) {
    Random random{std::mt19937_64(seed * 0x9E3779B97F4A7C15ULL + static_cast<uint64_t>(index))};
    test::TempProject project(cpu);
    const int subEditing = random.Chance(25) ? 1 + random.Below(3) : 0;
    if (random.Chance(30)) {
        std::string steps =
            std::to_string(random.Chance(25) ? random.Below(65536) : random.Below(8192));
        for (int sub = 0; sub < 3; ++sub)
            steps += " " + std::to_string(random.Chance(30) ? random.Below(32768) : 0);
        project.WriteText("program.end", steps + "\n");  // may exceed the capacities
        log.Note("program.end: " + steps);
    }
    Driver driver(random, log);
    const int runs = 1 + random.Below(3);
    for (int i = 0; i < runs && log.failures.empty(); ++i) {
        const bool endWithOk = random.Chance(50), changed = random.Chance(30);
        // Saved: walked with no sub program open (one edited without capacity is refused).
        if (driver.Run(project, subEditing, changed, false, endWithOk) && log.failures.empty())
            driver.Run(project, 0, false, true, true);
    }
}

long long EnvNumber(const char* name, long long fallback) {
    const char* text = std::getenv(name);
    return text != nullptr && *text != '\0' ? std::atoll(text) : fallback;
}

QtMessageHandler g_qtHandler = nullptr;
}  // namespace
}  // namespace gantrix::monkey

int main(int argc, char** argv) {
    using namespace gantrix::monkey;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The offscreen platform says these of every window it sizes or raises, thousands of times.
    g_qtHandler = qInstallMessageHandler(
        [](QtMsgType type, const QMessageLogContext& context, const QString& text) {
            if (!text.contains("propagateSizeHints") && !text.contains("support raise()"))
                g_qtHandler(type, context, text);
        });
    QApplication app(argc, argv);
    gantrix::EnsureApplication();
    for (int signal : {SIGABRT, SIGALRM}) std::signal(signal, OnSignal);
#if !defined(__SANITIZE_ADDRESS__)  // the sanitizers report these themselves
    for (int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) std::signal(signal, OnSignal);
#endif
    unsigned long long seed = static_cast<unsigned long long>(EnvNumber("GANTRIX_MONKEY_SEED", 1));
    long long first = 0, sessions = EnvNumber("GANTRIX_MONKEY_SESSIONS", kDefaultSessions);
    const long long minutes = EnvNumber("GANTRIX_MONKEY_MINUTES", 0);
    const char* replay = std::getenv("GANTRIX_MONKEY_REPLAY");
    const bool replaying = replay != nullptr && *replay != '\0';
    if (replaying && std::sscanf(replay, "%llu:%lld", &seed, &first) != 2)
        return std::fprintf(stderr, "monkey: GANTRIX_MONKEY_REPLAY is not SEED:SESSION\n"), 2;
    if (replaying || (minutes > 0 && !std::getenv("GANTRIX_MONKEY_SESSIONS")))
        sessions = replaying ? 1 : 1LL << 40;
    long long shard = 0, shards = 1;
    const char* slice = std::getenv("GANTRIX_MONKEY_SHARD");
    if (!replaying && slice != nullptr && *slice != '\0' &&
        (std::sscanf(slice, "%lld/%lld", &shard, &shards) != 2 || shards < 1 || shard < 0 ||
         shard >= shards))
        return std::fprintf(stderr, "monkey: GANTRIX_MONKEY_SHARD is not K/N with K < N\n"), 2;
    const qint64 start = QDateTime::currentSecsSinceEpoch();
    long long done = 0, events = 0, failed = 0;
    for (long long i = first + shard; i < first + sessions; i += shards, ++done) {
        if (minutes > 0 && QDateTime::currentSecsSinceEpoch() - start >= minutes * 60) break;
        const std::string cpu(
            gantrix::platform::kCpuTypes[i % std::size(gantrix::platform::kCpuTypes)]);
        std::snprintf(g_dying, sizeof g_dying,
                      "\n  replay: GANTRIX_MONKEY_REPLAY=%llu:%lld (CPU \"%s\")\n", seed, i,
                      cpu.c_str());
        SessionLog log{.verbose = replaying};
        RunSession(log, seed, i, cpu);
        events += static_cast<long long>(log.events.size());
        if (log.failures.empty()) continue;
        ++failed;
        for (const std::string& failure : log.failures)
            std::fprintf(stderr, "\nmonkey: FAILED: %s%s", failure.c_str(), g_dying);
    }
    ::alarm(0);
    g_dying[0] = '\0';
    std::printf(
        "monkey: seed %llu, shard %lld/%lld, %lld sessions, %lld events, %lld failed, %lld s\n",
        seed, shard, shards, done, events, failed, QDateTime::currentSecsSinceEpoch() - start);
    return failed == 0 ? 0 : 1;
}
