// A run of the parameter mode under failing file calls and kills: each file call of a whole
// OK run fails in turn (EIO, then ENOSPC), or the process is killed with SIGKILL at it. After
// each, "param.tmp" is whole, old or new as the run reported, nothing temporary is left, and
// the next run works. Also: two runs on one project at once, and read errors while loading.
//
// The program is its own child: "--fault-child MODE DIR CPU OUTCOME [READY GO]" runs one OK
// run (MODE "ok"), or one that waits at the open menu until GO exists (MODE "hold"), and
// writes "<status> <result>" to OUTCOME. Its fault plan comes from the environment.

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QApplication>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <thread>

#include "entry/RKParam.h"
#include "fault/FileFaults.h"
#include "fault/RunDriver.h"
#include "support/core/TestSupport.h"

extern char** environ;

namespace gantrix {
namespace {

using faults::Call;
using test::RunOutcome;
using test::RunWithOk;
using test::TempDir;
using test::TempProject;

constexpr const char* kCpu = "A3 ";

// A project whose OK run rewrites "param.tmp" (its check bytes are stale), carries
// "netpara.tmp" over, and removes a working file left from before.
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
    // The directory as the fault plan takes it, without its "/".
    std::string Dir() const { return project.Path().substr(0, project.Path().size() - 1); }
};

// The calls on dir's files numbered, the at-th of those of op on a path containing name
// failing with error (with at 0, none).
faults::Plan Failing(const std::string& dir, long at = 0, int error = 0, const std::string& op = "",
                     const std::string& name = "") {
    faults::Plan plan;
    plan.dir = dir;
    plan.at = at;
    plan.error = error;
    plan.op = op;
    plan.name = name;
    return plan;
}

// What a fault-free OK run of the scenario does.
struct Reference {
    std::vector<Call> calls;
    std::vector<uint8_t> intended;     // "param.tmp" after the save
    std::vector<std::string> listing;  // the project's files after the run
};

const Reference& TheReference() {
    static const Reference reference = [] {
        Reference r;
        Scenario scenario;
        faults::Arm(Failing(scenario.Dir()));
        const RunOutcome outcome = RunWithOk(scenario.project.Path(), kCpu);
        r.calls = faults::Disarm();
        EXPECT_TRUE(outcome.Saved()) << outcome.Messages();
        EXPECT_EQ(outcome.Messages(), "");
        r.intended = scenario.project.Read("param.tmp");
        EXPECT_NE(r.intended, scenario.before);
        r.listing = scenario.project.List();
        return r;
    }();
    return reference;
}

std::map<std::string, std::vector<uint8_t>> Snapshot(const TempDir& dir) {
    std::map<std::string, std::vector<uint8_t>> files;
    for (const std::string& name : dir.List()) files[name] = dir.Read(name);
    return files;
}

std::string Describe(const Call& call) {
    return call.op + " " + call.path;
}

// The file a call was about, as a report names it: a temporary ".<name>.<pid>.<n>.part"
// after the file it was to replace, a directory without its final "/".
std::string NamedFile(const Call& call) {
    std::string path = call.path;
    if (!path.empty() && path.back() == '/') path.pop_back();
    const size_t slash = path.rfind('/');
    std::string name = path.substr(slash + 1);
    if (name.size() > 6 && name.front() == '.' && name.ends_with(".part")) {
        name = name.substr(1);
        for (int field = 0; field < 3; ++field) name = name.substr(0, name.rfind('.'));
    }
    return path.substr(0, slash + 1) + name;
}

bool IsKeptFile(const std::string& name) {
    return name == "param.tmp" || name == "netpara.tmp";
}

// After a run whose call failed: "param.tmp" old or new as reported, nothing temporary left
// but a file whose own removal failed, and any difference reported naming the file.
void ExpectSafeAfter(const Scenario& scenario, const RunOutcome& outcome, const Call& failed) {
    const Reference& reference = TheReference();
    const auto after = scenario.project.Read("param.tmp");
    EXPECT_FALSE(outcome.timedOut);
    EXPECT_TRUE(after == scenario.before || after == reference.intended) << "param.tmp changed";
    EXPECT_EQ(outcome.Saved(), after == reference.intended) << outcome.Messages();
    EXPECT_EQ(scenario.project.Read("netpara.tmp"), (std::vector<uint8_t>{1, 2, 3}));

    // A file may stay when its own removal failed; the lock file, when any call on it did
    // (a run cannot tell whether a lock file it failed to lock is another run's).
    const std::string failedName = failed.path.substr(failed.path.rfind('/') + 1);
    const std::string leftOver =
        failed.op == "unlink" || failedName == ".param.lock" ? failedName : "";
    std::vector<std::string> listing;
    bool leftOverPresent = false;
    for (const std::string& name : scenario.project.List()) {
        if (name == leftOver) {
            leftOverPresent = true;
            continue;
        }
        // A run that ends before its menu (refused, or failing to start) leaves the files
        // that were there before it as they were.
        const bool before = name == "temp.dat" && !outcome.menuShown;
        if (!IsKeptFile(name) && !before) ADD_FAILURE() << "left behind: " << name;
        listing.push_back(name);
    }
    // A lock file left after its removal failed needs no word: the next run takes it over.
    const bool reportable =
        leftOverPresent && !(failed.op == "unlink" && leftOver == ".param.lock");
    const bool unchanged = outcome.Saved() && outcome.Messages().empty() && !reportable &&
                           listing == reference.listing;
    if (!unchanged) {
        EXPECT_NE(outcome.Messages().find(NamedFile(failed)), std::string::npos)
            << "the report does not name " << NamedFile(failed) << ":\n"
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
            faults::Arm(Failing(scenario.Dir(), at, error));
            const RunOutcome outcome = RunWithOk(scenario.project.Path(), kCpu);
            const std::vector<Call> calls = faults::Disarm();
            ASSERT_GE(calls.size(), static_cast<size_t>(at));
            const Call& failed = calls[at - 1];
            ASSERT_TRUE(failed.failed);
            SCOPED_TRACE("call " + std::to_string(at) + " failing with " + std::strerror(error) +
                         ": " + Describe(failed));
            ExpectSafeAfter(scenario, outcome, failed);
            (outcome.Saved() ? saved : notSaved)++;
            if (HasFailure()) return;  // one account is enough
        }
    }
    // The failures fell before and after the save's commit.
    EXPECT_GT(saved, 0);
    EXPECT_GT(notSaved, 0);
}

TEST(FailingFileCalls, AReadErrorWhileLoadingRefusesTheRunAndTouchesNothing) {
    for (const char* op : {"stat", "open", "read"}) {
        SCOPED_TRACE(op);
        Scenario scenario;
        const auto files = Snapshot(scenario.project);
        faults::Arm(Failing(scenario.Dir(), 1, EIO, op, "/param.tmp"));
        const RunOutcome outcome = RunWithOk(scenario.project.Path(), kCpu);
        const std::vector<Call> calls = faults::Disarm();
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.result, 0);
        EXPECT_FALSE(outcome.menuShown);
        ASSERT_EQ(outcome.boxes.size(), 1u);
        EXPECT_NE(outcome.boxes[0].find(scenario.project.File("param.tmp")), std::string::npos)
            << outcome.boxes[0];
        EXPECT_EQ(outcome.error, outcome.boxes[0]);
        EXPECT_EQ(Snapshot(scenario.project), files);
    }
}

// A child run of this program; its fault plan as environment entries.
struct Child {
    pid_t pid = -1;
    std::string outcomeFile;

    Child(const std::string& mode, const Scenario& scenario, const std::string& outcome,
          const std::vector<std::string>& plan, const std::vector<std::string>& extra = {})
        : outcomeFile(outcome) {
        std::vector<std::string> args{"fault_tests", "--fault-child", mode, scenario.project.Path(),
                                      kCpu,          outcome};
        args.insert(args.end(), extra.begin(), extra.end());
        std::vector<std::string> env;
        for (char** e = environ; *e != nullptr; ++e) {
            if (std::string(*e).rfind("GANTRIX_FAULT_", 0) != 0) env.emplace_back(*e);
        }
        env.insert(env.end(), plan.begin(), plan.end());
        std::vector<char*> argv, envp;
        for (auto& a : args) argv.push_back(a.data());
        for (auto& e : env) envp.push_back(e.data());
        argv.push_back(nullptr);
        envp.push_back(nullptr);
        if (::posix_spawn(&pid, "/proc/self/exe", nullptr, nullptr, argv.data(), envp.data()) !=
            0) {
            pid = -1;
        }
    }

    // The wait status, or -1 when the child did not end within a minute (it is killed).
    int Wait() {
        if (pid < 0) return -1;
        for (int i = 0; i < 6000; ++i) {
            int status = 0;
            if (::waitpid(pid, &status, WNOHANG) == pid) return status;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        ::kill(pid, SIGKILL);
        ::waitpid(pid, nullptr, 0);
        return -1;
    }

    std::string Outcome() const {
        std::ifstream in(outcomeFile);
        std::string line;
        std::getline(in, line);
        return line;
    }
};

TEST(KilledRuns, AKillAtEachFileCallLeavesParamTmpWholeAndTheNextRunWorks) {
    const Reference& reference = TheReference();
    TempDir work;
    long calls = 0;
    {
        Scenario counting;
        Child child(
            "ok", counting, work.File("outcome"),
            {"GANTRIX_FAULT_DIR=" + counting.Dir(), "GANTRIX_FAULT_LOG=" + work.File("log")});
        const int status = child.Wait();
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        ASSERT_EQ(child.Outcome(), "0 1");
        std::ifstream log(work.File("log"));
        for (std::string line; std::getline(log, line);) ++calls;
    }
    ASSERT_EQ(calls, static_cast<long>(reference.calls.size()));

    int oldKept = 0, newKept = 0;
    for (long at = 1; at <= calls; ++at) {
        SCOPED_TRACE("killed at call " + std::to_string(at) + ": " +
                     Describe(reference.calls[at - 1]));
        Scenario scenario;
        Child child("ok", scenario, work.File("outcome"),
                    {"GANTRIX_FAULT_DIR=" + scenario.Dir(),
                     "GANTRIX_FAULT_AT=" + std::to_string(at), "GANTRIX_FAULT_KILL=1"});
        const int status = child.Wait();
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
        const auto after = scenario.project.Read("param.tmp");
        EXPECT_TRUE(after == scenario.before || after == reference.intended);
        (after == scenario.before ? oldKept : newKept)++;

        const RunOutcome next = RunWithOk(scenario.project.Path(), kCpu);
        EXPECT_TRUE(next.Saved()) << next.Messages();
        EXPECT_EQ(next.Messages(), "");
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
    Child first("hold", scenario, work.File("outcome"), {}, {work.File("ready"), work.File("go")});
    for (int i = 0; i < 3000 && !work.Exists("ready"); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ASSERT_TRUE(work.Exists("ready"));
    const auto files = Snapshot(scenario.project);  // the first run's working files among them

    const RunOutcome second = RunWithOk(scenario.project.Path(), kCpu);
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.result, 0);
    EXPECT_FALSE(second.menuShown);
    ASSERT_EQ(second.boxes.size(), 1u);
    EXPECT_NE(second.boxes[0].find("in use by another run"), std::string::npos) << second.boxes[0];
    EXPECT_EQ(second.error, second.boxes[0]);
    EXPECT_EQ(Snapshot(scenario.project), files);

    work.Write("go", {});
    const int status = first.Wait();
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(first.Outcome(), "0 1");
    EXPECT_EQ(scenario.project.Read("param.tmp"), reference.intended);
    EXPECT_EQ(scenario.project.List(), reference.listing);
}

// The child's side: one run, its outcome written to a file.
int ChildMain(int argc, char** argv) {
    if (argc < 6) return 2;
    const std::string mode = argv[2], dir = argv[3], cpu = argv[4], outcomeFile = argv[5];
    QApplication app(argc, argv);
    EnsureApplication();
    std::function<void()> hold;
    if (mode == "hold" && argc >= 8) {
        const std::string ready = argv[6], go = argv[7];
        hold = [ready, go] {
            std::ofstream{ready};
            for (int i = 0; i < 6000 && !std::filesystem::exists(go); ++i) {
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
        };
    }
    const RunOutcome outcome = RunWithOk(dir, cpu, hold);
    std::ofstream(outcomeFile) << outcome.status << " " << outcome.result << "\n"
                               << outcome.Messages() << "\n";
    return 0;
}

}  // namespace
}  // namespace gantrix

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (argc > 1 && std::string(argv[1]) == "--fault-child") return gantrix::ChildMain(argc, argv);
    // Every run syncs its files several times; on a disk the thousands of runs here would
    // take minutes, in memory a few seconds.
    struct stat shm {};
    if (std::getenv("TMPDIR") == nullptr && ::stat("/dev/shm", &shm) == 0 && S_ISDIR(shm.st_mode) &&
        ::access("/dev/shm", W_OK) == 0) {
        ::setenv("TMPDIR", "/dev/shm", 1);
    }
    QApplication app(argc, argv);
    gantrix::EnsureApplication();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
