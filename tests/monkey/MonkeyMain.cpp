// The monkey test's program: runs a budget of seeded sessions (or replays one) and reports
// every failure with what replays it.
//
//   GANTRIX_MONKEY_SEED=S          seed of the sessions (default 1)
//   GANTRIX_MONKEY_SESSIONS=N      number of sessions (default kDefaultSessions)
//   GANTRIX_MONKEY_MINUTES=M       stop starting sessions after M minutes (long runs)
//   GANTRIX_MONKEY_REPLAY=S:I      run only session I of seed S, printing every event

#include <unistd.h>
#include <QApplication>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <thread>

#include "entry/RKParam.h"
#include "monkey/Monkey.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#define GANTRIX_MONKEY_SANITIZED 1
#endif

namespace {

using gantrix::monkey::SessionLog;

// About a minute on two cores in the sanitizer build, while the other test programs run.
constexpr int kDefaultSessions = 156;
// No step of the event loop for this long: product code is looping or blocked.
constexpr int kWatchdogSeconds = 120;
constexpr size_t kEventsShown = 60;

std::atomic<const SessionLog*> g_session{nullptr};
std::atomic<bool> g_reported{false};
std::atomic<long long> g_lastBeat{0};

long long NowSeconds() {
    return std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// Plain write(2) calls: this also runs from signal handlers and the sanitizers' last words.
void Write(const char* text) {
    size_t length = 0;
    while (text[length] != '\0') ++length;
    ssize_t ignored = ::write(2, text, length);
    (void)ignored;
}

void WriteNumber(unsigned long long value) {
    char digits[24];
    int n = 0;
    do {
        digits[n++] = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0);
    char text[24];
    for (int i = 0; i < n; ++i) text[i] = digits[n - 1 - i];
    text[n] = '\0';
    Write(text);
}

void WriteReplay(const SessionLog& log) {
    Write("  replay: GANTRIX_MONKEY_REPLAY=");
    WriteNumber(log.seed);
    Write(":");
    WriteNumber(static_cast<unsigned long long>(log.index));
    Write(" monkey_tests\n");
}

void WriteLastEvents(const SessionLog& log) {
    const size_t count = log.events.size();
    const size_t first = count > kEventsShown ? count - kEventsShown : 0;
    Write("  last events (");
    WriteNumber(count - first);
    Write(" of ");
    WriteNumber(count);
    Write("):\n");
    for (size_t i = first; i < count; ++i) {
        Write("  ");
        WriteNumber(i + 1);
        Write(" ");
        Write(log.events[i].c_str());
        Write("\n");
    }
}

// The session that was running when the process is dying.
void ReportDying(const char* why) {
    if (g_reported.exchange(true)) return;
    const SessionLog* log = g_session.load();
    Write("\nmonkey: FAILED: ");
    Write(why);
    Write("\n");
    if (log == nullptr) return;
    Write("  in session ");
    WriteNumber(static_cast<unsigned long long>(log->index));
    Write(" of seed ");
    WriteNumber(log->seed);
    Write(" (CPU \"");
    Write(log->cpu.c_str());
    Write("\")\n");
    WriteLastEvents(*log);
    WriteReplay(*log);
}

void OnSignal(int signal) {
    ReportDying(signal == SIGABRT ? "aborted (a sanitizer report or an assertion above)"
                                  : "crashed on a signal");
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

#ifdef GANTRIX_MONKEY_SANITIZED
void OnSanitizerDeath() {
    ReportDying("a sanitizer report (above)");
}
#endif

void InstallCrashReports() {
    std::signal(SIGABRT, OnSignal);
#ifdef GANTRIX_MONKEY_SANITIZED
    // The sanitizers catch the faults themselves and report before they die.
    __sanitizer_set_death_callback(OnSanitizerDeath);
#else
    for (int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) std::signal(signal, OnSignal);
#endif
}

void StartWatchdog() {
    g_lastBeat = NowSeconds();
    gantrix::monkey::SetHeartbeat([] { g_lastBeat.store(NowSeconds()); });
    std::thread([] {
        for (;;) {
            std::this_thread::sleep_for(std::chrono::seconds(1));
            if (NowSeconds() - g_lastBeat.load() > kWatchdogSeconds) {
                const std::string why = "hang: the event loop took no step for " +
                                        std::to_string(kWatchdogSeconds) + " s";
                ReportDying(why.c_str());
                std::_Exit(3);
            }
        }
    }).detach();
}

// The offscreen platform says these of every window it sizes or raises: noise, thousands of
// times.
QtMessageHandler g_qtHandler = nullptr;
void FilterQtMessages(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (text.contains("propagateSizeHints") || text.contains("support raise()")) return;
    g_qtHandler(type, context, text);
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

void Report(const SessionLog& log) {
    for (const std::string& failure : log.failures) {
        std::fprintf(stderr, "\nmonkey: FAILED session %d of seed %llu (CPU \"%s\"): %s\n",
                     log.index, static_cast<unsigned long long>(log.seed), log.cpu.c_str(),
                     failure.c_str());
    }
    std::fflush(stderr);
    WriteLastEvents(log);
    WriteReplay(log);
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    g_qtHandler = qInstallMessageHandler(FilterQtMessages);
    QApplication app(argc, argv);
    gantrix::EnsureApplication();
    InstallCrashReports();
    StartWatchdog();

    unsigned long long seed = static_cast<unsigned long long>(EnvNumber("GANTRIX_MONKEY_SEED", 1));
    long long first = 0;
    long long sessions = EnvNumber("GANTRIX_MONKEY_SESSIONS", kDefaultSessions);
    const long long minutes = EnvNumber("GANTRIX_MONKEY_MINUTES", 0);
    bool replay = false;
    if (const char* text = std::getenv("GANTRIX_MONKEY_REPLAY"); text && *text) {
        if (std::sscanf(text, "%llu:%lld", &seed, &first) != 2) {
            std::fprintf(stderr, "monkey: GANTRIX_MONKEY_REPLAY=%s is not SEED:SESSION\n", text);
            return 2;
        }
        sessions = 1;
        replay = true;
    }
    if (minutes > 0 && !replay && std::getenv("GANTRIX_MONKEY_SESSIONS") == nullptr) {
        sessions = 1LL << 40;  // the time is the budget
    }

    const long long start = NowSeconds();
    long long done = 0, actions = 0, messages = 0, failed = 0;
    std::map<std::string, int> windows;
    for (long long i = first; i < first + sessions; ++i) {
        if (minutes > 0 && NowSeconds() - start >= minutes * 60) break;
        SessionLog log;
        log.seed = seed;
        log.index = static_cast<int>(i);
        log.verbose = replay;
        g_session = &log;
        g_lastBeat = NowSeconds();
        gantrix::monkey::RunSession(log);
        g_session = nullptr;
        ++done;
        actions += log.actions;
        messages += log.messages;
        for (const auto& [name, count] : log.windows) windows[name] += count;
        if (log.Failed()) {
            ++failed;
            Report(log);
        }
    }

    std::printf(
        "monkey: seed %llu, %lld sessions, %lld events (%lld message boxes answered), "
        "%lld failed, %lld s\n",
        seed, done, actions, messages, failed, NowSeconds() - start);
    std::printf("monkey: windows shown:");
    for (const auto& [name, count] : windows) std::printf(" %s %d,", name.c_str(), count);
    std::printf("\n");
    return failed == 0 ? 0 : 1;
}
