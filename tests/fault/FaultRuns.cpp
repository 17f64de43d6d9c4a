// SPDX-License-Identifier: Apache-2.0
// OK runs of the parameter mode with each file call failing in turn, or SIGKILLed at it, and
// two runs at once. The program is its own child: "--fault-child DIR [READY GO]" makes one OK
// run (waiting at the menu for GO when given), exiting 0 when saved; its plan is in its env.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <thread>

#include "entry/GantrixA0J.h"
#include "entry/RKParam.h"
#include "fault/FileFaults.h"
#include "headless/Page.h"
#include "headless/ProjectChange.h"
#include "support/core/TestSupport.h"

extern char** environ;

namespace gantrix {
namespace {

using faults::Call;
using test::TempDir;
using test::TempProject;

constexpr const char* kCpu = "A3 ";

struct RunOutcome {
    int status = -1;
    int16_t result = -1;
    std::string error;               // RKParam_ErrorDescription
    std::vector<std::string> boxes;  // the texts of the message boxes, in order
    bool menuShown = false, timedOut = false;
    bool Saved() const { return status == 0 && result == 1; }
    std::string Messages() const {
        std::string text = error;
        for (const std::string& box : boxes) text += "\n" + box;
        return text;
    }
};

// Param_main on dir, driven as a person who presses End on the menu and OK (or Yes) on every
// message box; whileMenuOpen runs when the menu first shows.
RunOutcome RunWithOk(const std::string& dir, const std::function<void()>& whileMenuOpen = {}) {
    RunOutcome outcome;
    ::RKParam* object = RKParam_Create();
    RKParam_Let_szPcName(object, kCpu);
    RKParam_Let_ProjectName(object, dir.c_str());
    QPointer<QWidget> handled;  // the modal window last acted on
    int menuActions = 0, polls = 0;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        QWidget* modal = QApplication::activeModalWidget();
        if (++polls > 10000 && qobject_cast<QDialog*>(modal)) {  // 20 s at the least
            outcome.timedOut = true;
            return qobject_cast<QDialog*>(modal)->done(QDialog::Rejected);
        }
        if (modal == nullptr || !modal->isVisible() || modal == handled) return;
        handled = modal;
        QTimer::singleShot(0, [&, target = QPointer<QWidget>(modal)] {  // outside this poll
            if (auto* box = qobject_cast<QMessageBox*>(target.data())) {
                outcome.boxes.push_back(box->text().toStdString());
                auto* button = box->findChild<QPushButton*>("OK");
                if (button == nullptr) button = box->findChild<QPushButton*>("Yes");
                button ? button->click() : box->done(QDialog::Rejected);
            } else if (target && target->objectName() == "frmMenu") {
                outcome.menuShown = true;
                if (menuActions++ == 0 && whileMenuOpen) whileMenuOpen();
                QTest::keyClick(target, menuActions == 1 ? Qt::Key_End : Qt::Key_Escape);
                if (target && target->isVisible()) handled = nullptr;
            }
        });
    });
    poll.start(2);
    outcome.status = RKParam_Param_main(object, &outcome.result);
    poll.stop();
    outcome.error = RKParam_ErrorDescription(object);
    RKParam_Release(object);
    return outcome;
}

// A project whose OK run rewrites "param.tmp" (stale check bytes), carries "netpara.tmp" over
// and removes a working file left from before.
struct Scenario {
    TempProject project{kCpu};
    std::vector<uint8_t> before;
    Scenario() {
        ParameterImage image = project.ParamTmp();
        image[300] = 7;
        image[525] ^= 0xFF;
        project.SetParamTmp(image);
        project.Write("netpara.tmp", {1, 2, 3});
        project.Write("temp.dat", {9});
        before = project.Read("param.tmp");
    }
    std::string Dir() const { return project.Path().substr(0, project.Path().size() - 1); }
};

// What a fault-free OK run of the scenario does: its calls, "param.tmp" and files after it.
struct Reference {
    std::vector<Call> calls;
    std::vector<uint8_t> intended;
    std::vector<std::string> listing;
};

const Reference& TheReference() {
    static const Reference reference = [] {
        Reference r;
        Scenario scenario;
        faults::Arm({.dir = scenario.Dir()});
        const RunOutcome outcome = RunWithOk(scenario.project.Path());
        r.calls = faults::Disarm();
        EXPECT_TRUE(outcome.Saved() && outcome.Messages().empty()) << outcome.Messages();
        r.intended = scenario.project.Read("param.tmp");
        EXPECT_NE(r.intended, scenario.before);
        r.listing = scenario.project.List();
        return r;
    }();
    return reference;
}

// The file a call was about as a report names it: for a ".<name>.<pid>.<n>.part" its target.
std::string NamedFile(const Call& call) {
    std::string path = call.path;
    if (path.ends_with('/')) path.pop_back();
    const size_t slash = path.rfind('/');
    std::string name = path.substr(slash + 1);
    if (name.size() > 6 && name.front() == '.' && name.ends_with(".part")) {
        name = name.substr(1);
        for (int field = 0; field < 3; ++field) name = name.substr(0, name.rfind('.'));
    }
    return path.substr(0, slash + 1) + name;
}

// After a failed call: "param.tmp" old or new as reported, nothing temporary left but a file
// whose own removal failed, and any difference from a clean run reported naming the file.
void ExpectSafeAfter(const Scenario& scenario, const RunOutcome& outcome, const Call& failed) {
    const Reference& reference = TheReference();
    const auto after = scenario.project.Read("param.tmp");
    EXPECT_FALSE(outcome.timedOut);
    EXPECT_TRUE(after == scenario.before || after == reference.intended) << "param.tmp changed";
    EXPECT_EQ(outcome.Saved(), after == reference.intended) << outcome.Messages();
    EXPECT_EQ(scenario.project.Read("netpara.tmp"), (std::vector<uint8_t>{1, 2, 3}));

    // Ended before the menu: reported once, a runtime error or one box also the description.
    const bool oneBox = outcome.boxes.size() == 1 && outcome.error == outcome.boxes[0];
    EXPECT_TRUE(outcome.menuShown || (outcome.status == 0 ? oneBox : outcome.boxes.empty()))
        << outcome.Messages();
    // A file may stay when its removal failed; the lock file when any call on it did (it may be
    // another run's), silently when its removal failed: the next run takes it over.
    const std::string failedName = failed.path.substr(failed.path.rfind('/') + 1);
    const bool mayStay = failed.op == "unlink" || failedName == ".param.lock";
    std::vector<std::string> listing = scenario.project.List();
    const bool leftOver = mayStay && std::erase(listing, failedName) > 0;
    for (const std::string& name : listing)
        EXPECT_TRUE(name == "param.tmp" || name == "netpara.tmp" ||
                    (name == "temp.dat" && !outcome.menuShown))
            << "left behind: " << name;
    const bool reportable = leftOver && !(failed.op == "unlink" && failedName == ".param.lock");
    if (!outcome.Saved() || !outcome.Messages().empty() || reportable ||
        listing != reference.listing) {
        EXPECT_NE(outcome.Messages().find(NamedFile(failed)), std::string::npos)
            << NamedFile(failed) << " unnamed in:\n"
            << outcome.Messages();
    }
}

TEST(FailingFileCalls, EachCallOfAnOkRunFailingKeepsParamTmpWholeAndTheReportTrue) {
    const Reference& reference = TheReference();
    ASSERT_GT(reference.calls.size(), 20u);
    int saved = 0, notSaved = 0;
    for (const int error : {EIO, ENOSPC}) {
        for (long at = 1; at <= static_cast<long>(reference.calls.size()); ++at) {
            Scenario scenario;
            faults::Arm({.dir = scenario.Dir(), .at = at, .error = error});
            const RunOutcome outcome = RunWithOk(scenario.project.Path());
            const std::vector<Call> calls = faults::Disarm();
            ASSERT_GE(calls.size(), static_cast<size_t>(at));
            const Call& failed = calls[at - 1];
            ASSERT_TRUE(failed.failed);
            SCOPED_TRACE("call " + std::to_string(at) + " failing with " + std::strerror(error) +
                         ": " + failed.op + " " + failed.path);
            ExpectSafeAfter(scenario, outcome, failed);
            (outcome.Saved() ? saved : notSaved)++;
            if (HasFailure()) return;  // one account is enough
        }
    }
    EXPECT_GT(saved, 0);
    EXPECT_GT(notSaved, 0);
}

int RunChild(const Scenario& scenario, const std::vector<std::string>& plan,
             const std::vector<std::string>& hold = {}) {
    std::vector<std::string> args{"fault_tests", "--fault-child", scenario.project.Path()};
    args.insert(args.end(), hold.begin(), hold.end());
    std::vector<std::string> env = plan;  // ahead of the inherited entries, so they win
    for (char** e = environ; *e != nullptr; ++e) env.emplace_back(*e);
    std::vector<char*> argv, envp;
    for (auto [from, to] : {std::pair{&args, &argv}, {&env, &envp}}) {
        for (auto& text : *from) to->push_back(text.data());
        to->push_back(nullptr);
    }
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::alarm(60);
        ::execve("/proc/self/exe", argv.data(), envp.data());
        ::_exit(127);
    }
    int status = -1;
    ::waitpid(pid, &status, 0);
    return status;
}

// The calls in two halves, odd and even, that ctest runs side by side: each kill is a process.
class KilledRuns : public ::testing::TestWithParam<size_t> {};
INSTANTIATE_TEST_SUITE_P(OddAndEvenCalls, KilledRuns, ::testing::Values(1, 2));

TEST_P(KilledRuns, AKillAtEachFileCallLeavesParamTmpWholeAndTheNextRunWorks) {
    const Reference& reference = TheReference();
    int oldKept = 0, newKept = 0;
    for (size_t at = GetParam(); at <= reference.calls.size(); at += 2) {
        const Call& call = reference.calls[at - 1];
        SCOPED_TRACE("killed at call " + std::to_string(at) + ": " + call.op + " " + call.path);
        Scenario scenario;
        const int status =
            RunChild(scenario, {"GANTRIX_FAULT_DIR=" + scenario.Dir(),
                                "GANTRIX_FAULT_AT=" + std::to_string(at), "GANTRIX_FAULT_KILL=1"});
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
        const auto after = scenario.project.Read("param.tmp");
        EXPECT_TRUE(after == scenario.before || after == reference.intended);
        (after == scenario.before ? oldKept : newKept)++;
        const RunOutcome next = RunWithOk(scenario.project.Path());
        EXPECT_TRUE(next.Saved() && next.Messages().empty()) << next.Messages();
        EXPECT_EQ(scenario.project.Read("param.tmp"), reference.intended);
        EXPECT_EQ(scenario.project.List(), reference.listing);
        if (HasFailure()) return;
    }
    EXPECT_GT(oldKept, 0);
    EXPECT_GT(newKept, 0);
}

TEST(TwoRuns, TheSecondIsRefusedWithoutTouchingAFileAndTheFirstSaves) {
    const Reference& reference = TheReference();
    Scenario scenario;
    TempDir work;
    int status = -1;
    std::thread first([&] {
        status = RunChild(scenario, {}, {work.File("ready"), work.File("go")});
    });
    for (int i = 0; i < 3000 && !work.Exists("ready"); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(work.Exists("ready"));
    const auto snapshot = [&] {  // the first run's working files among them
        std::map<std::string, std::vector<uint8_t>> files;
        for (const std::string& name : scenario.project.List())
            files[name] = scenario.project.Read(name);
        return files;
    };
    const auto files = snapshot();
    const RunOutcome second = RunWithOk(scenario.project.Path());
    EXPECT_TRUE(second.status == 0 && second.result == 0 && !second.menuShown);
    ASSERT_EQ(second.boxes.size(), 1u);
    EXPECT_NE(second.boxes[0].find("in use by another run"), std::string::npos) << second.boxes[0];
    EXPECT_EQ(second.error, second.boxes[0]);
    EXPECT_EQ(snapshot(), files);
    work.Write("go", {});
    first.join();
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;  // saved
    EXPECT_EQ(scenario.project.Read("param.tmp"), reference.intended);
    EXPECT_EQ(scenario.project.List(), reference.listing);
}

// set and import as the command line makes them: each file call failing in turn, or the
// process killed at it. "param.tmp" is the old or the new one, whole; the rename is followed
// by a sync of the directory; the next change sweeps what a killed one left and saves.
TEST(HeadlessChanges, EachFileCallFailingOrKilledKeepsParamTmpWholeAndTheNextChangeWorks) {
    using Change = std::function<headless::ProjectChange(const ProjectPath&)>;
    const std::string text = [] {
        TempProject p(kCpu);
        const auto context = headless::HeadlessContext(kCpu);
        return headless::ExportText(
            headless::Set(p.ParamTmp(), context, {{"assist.watchdog", "30"}}).image, context);
    }();
    const std::pair<const char*, Change> changes[] = {
        {"set",
         [](const ProjectPath& p) {
             return headless::SetInProject(p, kCpu, {{"assist.watchdog", "30"}});
         }},
        {"import",
         [&text](const ProjectPath& p) { return headless::ImportIntoProject(p, kCpu, text); }},
    };
    for (const auto& [name, change] : changes) {
        SCOPED_TRACE(name);
        const auto run = [&change = change](const TempProject& p, faults::Plan plan) {
            plan.dir = p.Path().substr(0, p.Path().size() - 1);
            faults::Arm(plan);
            std::string error;
            try {
                change(LocateProject(p.Path()));
            } catch (const RuntimeError& e) {
                error = e.Description();
            }
            return std::pair{faults::Disarm(), error};
        };
        TempProject reference(kCpu);
        const auto before = reference.Read("param.tmp");
        const auto [calls, error] = run(reference, {});
        ASSERT_EQ(error, "");
        const auto intended = reference.Read("param.tmp");
        ASSERT_NE(intended, before);
        const auto renamed = std::ranges::find(calls, "rename", &Call::op);
        ASSERT_NE(renamed, calls.end());
        EXPECT_TRUE(std::any_of(renamed, calls.end(), [&](const Call& c) {
            return c.op == "fsync" &&
                   c.path.starts_with(reference.Path().substr(0, reference.Path().size() - 1));
        })) << "the directory is synced after the rename";
        for (size_t at = 1; at <= calls.size(); ++at) {
            for (const bool kill : {false, true}) {
                SCOPED_TRACE("call " + std::to_string(at) + (kill ? " killed: " : " failing: ") +
                             calls[at - 1].op + " " + calls[at - 1].path);
                TempProject p(kCpu);
                p.Write(".param.tmp.99999.0.part", {1});  // left by a killed writer
                if (kill) {
                    const pid_t pid = ::fork();
                    if (pid == 0) {
                        run(p, {.at = static_cast<long>(at), .kill = true});
                        ::_exit(0);
                    }
                    int status = 0;
                    ::waitpid(pid, &status, 0);
                    ASSERT_TRUE(WIFSIGNALED(status)) << status;
                } else {
                    const auto [failed, message] =
                        run(p, {.at = static_cast<long>(at), .error = EIO});
                    const auto after = p.Read("param.tmp");
                    EXPECT_TRUE(after == intended || (after == before && !message.empty()))
                        << message;
                    const std::string named = NamedFile(failed[at - 1]);
                    EXPECT_TRUE(message.empty() || message.find(named) != std::string::npos)
                        << named << " unnamed in: " << message;
                }
                const auto after = p.Read("param.tmp");
                EXPECT_TRUE(after == before || after == intended);
                EXPECT_EQ(run(p, {}).second, "");
                EXPECT_EQ(p.Read("param.tmp"), intended);
                EXPECT_EQ(p.List(), reference.List());
                if (HasFailure()) return;
            }
        }
    }
}

int ChildMain(int argc, char** argv) {
    QApplication app(argc, argv);
    EnsureApplication();
    const auto hold = [&] {
        if (argc < 5) return;
        std::ofstream{argv[3]};
        for (int i = 0; i < 6000 && !std::filesystem::exists(argv[4]); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
    };
    return RunWithOk(argv[2], hold).Saved() ? 0 : 1;
}

}  // namespace
}  // namespace gantrix

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (argc >= 3 && std::strcmp(argv[1], "--fault-child") == 0)
        return gantrix::ChildMain(argc, argv);
    // The thousands of runs sync often: seconds in memory, minutes on a disk.
    if (std::getenv("TMPDIR") == nullptr && ::access("/dev/shm", W_OK) == 0)
        ::setenv("TMPDIR", "/dev/shm", 1);
    QApplication app(argc, argv);
    gantrix::EnsureApplication();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
