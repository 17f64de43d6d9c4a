// SPDX-License-Identifier: Apache-2.0
// rkparam: the host program of the parameter mode. It plays the part of the ladder tool:
// makes projects, and runs the parameter mode on one through the component's C interface.
// Without a display, its subcommands show, check, set, diff, export and import work on the
// parameters through the dialogs' pure halves (HeadlessCommands.h).
//
//   rkparam                                        (the start window)
//   rkparam new --cpu CODE [--force] DIR
//   rkparam [--cpu CODE] [--sub-editing N]... [--content-changed] [-v] DIR
//   rkparam show|check|set|diff|export|import ...   (rkparam SUBCOMMAND --help)
//
// Exit status of a run: 0 the parameters were saved; 1 the run ended without saving; 2 a
// usage error, a missing or damaged project, a project in use by another run, or a runtime
// error.

#include <sys/stat.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "HeadlessCommands.h"
#include "ProjectFiles.h"
#include "entry/GantrixA0J.h"
#include "start/frmStart.h"
#include "store/ParameterFiles.h"
#include "store/Project.h"
#include "store/ProjectAccess.h"
#include "store/RuntimeError.h"

namespace {

constexpr int kSaved = 0;
constexpr int kNotSaved = 1;
constexpr int kFailed = 2;

using rkparam::kCpuFile;
using rkparam::ReadCpuNote;
using rkparam::WithSeparator;

constexpr intptr_t kHostWindow = 0x4E57;

const char* const kUsage =
    "usage: rkparam                  (the start window: recent projects, open, new)\n"
    "       rkparam new --cpu CODE [--force] DIR\n"
    "       rkparam [--cpu CODE] [--sub-editing N]... [--content-changed] [-v] DIR\n"
    "       rkparam show|check|set|diff|export|import ... (see rkparam --help)\n"
    "CODE is one of A0J A0H A1S A1 A2C A2 A3 A3H A2A A3A A2U A3U A4U.\n";

int Usage(const std::string& problem) {
    std::cerr << "rkparam: " << problem << "\n" << kUsage;
    return kFailed;
}

int New(std::string cpu, const std::string& dir, bool force) {
    if (cpu.empty()) return Usage("new needs --cpu CODE");
    if (dir.empty()) return Usage("new needs a project directory");
    cpu = gantrix::NormalizeCpuCode(cpu);
    try {
        // The CPU note is written with the parameter file, all or none.
        const std::string note = cpu + "\n";
        const auto warnings = gantrix::CreateProject(
            cpu, dir, force, {{kCpuFile, std::vector<uint8_t>(note.begin(), note.end())}});
        for (const std::string& warning : warnings)
            std::cerr << "rkparam: warning: " << warning << "\n";
    } catch (const std::exception& error) {
        std::cerr << "rkparam: " << error.what() << "\n";
        return kFailed;
    }
    std::cout << "rkparam: made " << WithSeparator(dir) << "param.tmp for CPU type \"" << cpu
              << "\"\n";
    return kSaved;
}

void PrintNotification(intptr_t hwnd, uint32_t msg, uintptr_t wParam, intptr_t lParam,
                       void* /*context*/) {
    std::cout << "notification: hwnd=" << hwnd << " msg=0x" << std::hex << msg << std::dec
              << " wParam=" << wParam;
    if (lParam == 0) {
        std::cout << " lParam=0 (posted)\n";
    } else {
        std::cout << " lParam=&" << *reinterpret_cast<const int32_t*>(lParam) << " (sent)\n";
    }
    std::cout.flush();
}

void IgnoreNotification(intptr_t, uint32_t, uintptr_t, intptr_t, void*) {}

struct RunOptions {
    std::string cpu;
    std::string dir;
    bool verbose = false;
    bool contentChanged = false;
    std::vector<int> subEditing;
};

int Run(const RunOptions& options) {
    std::string cpu = options.cpu;
    const std::string& dir = options.dir;
    const bool verbose = options.verbose;
    const bool contentChanged = options.contentChanged;
    bool subEditing[3] = {false, false, false};
    for (int n : options.subEditing) subEditing[n - 1] = true;
    if (dir.empty()) return Usage("no project directory given");

    // Refuse a project that is not there before anything is touched.
    struct stat info {};
    if (::stat(dir.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
        std::cerr << "rkparam: project directory \"" << dir << "\" does not exist\n";
        return kFailed;
    }
    // Looked up and loaded as the component does ("PARAM.TMP" is the project's file too),
    // so that a project it would refuse is refused before anything is touched.
    try {
        const gantrix::ProjectPath project = gantrix::LocateProject(dir);
        if (!project.exists) {
            std::cerr << "rkparam: \"" << project.file
                      << "\" is missing; make the project with: rkparam new --cpu CODE " << dir
                      << "\n";
            return kFailed;
        }
        gantrix::LoadParameterImage(project.file);
        if (cpu.empty()) {
            cpu = ReadCpuNote(dir);
            if (cpu.empty()) return Usage("no CPU type: give --cpu CODE");
        }
    } catch (const gantrix::RuntimeError& error) {
        std::cerr << "rkparam: " << error.Description() << "\n";
        return kFailed;
    }
    cpu = gantrix::NormalizeCpuCode(cpu);
    if (!gantrix::IsKnownCpuType(cpu)) {
        std::cerr << "rkparam: unknown CPU type \"" << cpu << "\"\n";
        return kFailed;
    }

    RKParam* object = RKParam_Create();
    RKParam_Let_szPcName(object, cpu.c_str());
    RKParam_Let_ProjectName(object, dir.c_str());
    RKParam_Let_ContentChangeFlag(object, contentChanged ? 1 : 0);
    RKParam_Let_LanguageMode(object, "English");
    RKParam_Let_blnSubEditing1(object, subEditing[0] ? 1 : 0);
    RKParam_Let_blnSubEditing2(object, subEditing[1] ? 1 : 0);
    RKParam_Let_blnSubEditing3(object, subEditing[2] ? 1 : 0);
    RKParam_Let_hParentWnd(object, kHostWindow);
    RKParam_RegisterHostWindow(kHostWindow, verbose ? PrintNotification : IgnoreNotification,
                               nullptr);

    int16_t saved = 0;
    const int error = RKParam_Param_main(object, &saved);
    const std::string notice = RKParam_ErrorDescription(object);
    int status = kFailed;
    if (error != 0) {
        std::cerr << "rkparam: " << notice << "\n";
    } else if (saved != 1 && !notice.empty()) {
        // Refused before the menu opened (the project is in use or cannot be loaded), or
        // not saved and not cleaned up: either way the user has to look.
        std::cerr << "rkparam: " << notice << "\n";
    } else {
        status = saved == 1 ? kSaved : kNotSaved;
        if (!notice.empty()) std::cerr << "rkparam: warning: " << notice << "\n";
        std::cout << (saved == 1 ? "rkparam: parameters saved\n"
                                 : "rkparam: parameters not saved\n");
        if (verbose) {
            std::cout << "ContentChangeFlag=" << RKParam_Get_ContentChangeFlag(object) << "\n";
        }
    }
    RKParam_RegisterHostWindow(kHostWindow, nullptr, nullptr);
    RKParam_Release(object);
    return status;
}

// Runs a command for the start window: what it prints still reaches the terminal, and its
// errors, without the program's name, are the window's message.
gantrix::HostOutcome Captured(const std::function<int()>& command) {
    std::ostringstream errors;
    std::streambuf* const terminal = std::cerr.rdbuf(errors.rdbuf());
    gantrix::HostOutcome outcome;
    try {
        outcome.status = command();
    } catch (...) {
        std::cerr.rdbuf(terminal);
        throw;
    }
    std::cerr.rdbuf(terminal);
    std::cerr << errors.str();
    std::istringstream lines(errors.str());
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("rkparam: ")) line.erase(0, 9);
        outcome.message += (outcome.message.empty() ? "" : "\n") + line;
    }
    return outcome;
}

bool IsSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

// Without a project: the start window, whose new and open are the commands above.
int StartWindow() {
    // Without a display the toolkit would abort; say what to do instead.
    if (!IsSet("DISPLAY") && !IsSet("WAYLAND_DISPLAY") && !IsSet("QT_QPA_PLATFORM")) {
        return Usage("no project directory given, and no display for the start window");
    }
    gantrix::StartHost host;
    host.create = [](const std::string& cpu, const std::string& dir) {
        return Captured([&] { return New(cpu, dir, false); });
    };
    host.cpuNote = [](const std::string& dir) {
        try {
            return ReadCpuNote(dir);
        } catch (const gantrix::RuntimeError&) {
            return std::string();  // the run names the note it cannot read
        }
    };
    host.run = [](const std::string& dir, const std::string& cpu) {
        RunOptions options;
        options.cpu = cpu;
        options.dir = dir;
        return Captured([&] { return Run(options); });
    };
    return gantrix::RunStartWindow(host);
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app(
        "The parameter mode of a PLC project: a run on a project directory, or a\n"
        "subcommand. CODE is one of A0J A0H A1S A1 A2C A2 A3 A3H A2A A3A A2U A3U A4U.",
        "rkparam");
    app.set_version_flag("--version", std::string("rkparam ") + GANTRIX_VERSION);

    RunOptions run;
    app.add_option("--cpu", run.cpu, "CPU type; rkparam.cpu of the project by default");
    app.add_option("--sub-editing", run.subEditing, "sub program N (1..3) is open in an editor")
        ->check(CLI::Range(1, 3))
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.add_flag("--content-changed", run.contentChanged, "the host's change flag is set");
    app.add_flag("-v", run.verbose, "print the notifications the host window receives");
    app.add_option("DIR", run.dir, "project directory of the run; none: the start window");

    std::string newCpu;
    std::string newDir;
    bool force = false;
    CLI::App* make = app.add_subcommand("new", "make a project directory with default parameters");
    make->add_option("--cpu", newCpu, "CPU type")->required();
    make->add_flag("--force", force, "replace an existing param.tmp with the defaults");
    make->add_option("DIR", newDir, "project directory")->required();

    const auto headless = rkparam::AddHeadlessCommands(app);
    app.require_subcommand(0, 1);

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& help) {
        return app.exit(help);
    } catch (const CLI::CallForAllHelp& help) {
        return app.exit(help);
    } catch (const CLI::CallForVersion& version) {
        return app.exit(version);
    } catch (const CLI::ParseError& error) {
        return Usage(error.what());
    }
    if (make->parsed()) return New(newCpu, newDir, force);
    const int status = headless();
    if (status >= 0) return status;
    if (run.dir.empty()) return argc == 1 ? StartWindow() : Usage("no project directory given");
    return Run(run);
}
