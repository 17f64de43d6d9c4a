// rkparam: the host program of the parameter mode. It plays the part of the ladder tool:
// makes projects, and runs the parameter mode on one through the component's C interface.
//
//   rkparam new --cpu CODE [--force] DIR
//   rkparam [--cpu CODE] [--sub-editing N]... [--content-changed] [-v] DIR
//
// Exit status: 0 the parameters were saved; 1 the run ended without saving; 2 a usage
// error, a missing or damaged project, a project in use by another run, or a runtime error.

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "entry/GantrixA0J.h"
#include "store/ParameterFiles.h"
#include "store/Project.h"
#include "store/RuntimeError.h"

namespace {

constexpr int kSaved = 0;
constexpr int kNotSaved = 1;
constexpr int kFailed = 2;

// The CPU type a project was made for, kept beside its parameter file by "rkparam new":
// the parameter file itself does not say which CPU it belongs to.
constexpr const char* kCpuFile = "rkparam.cpu";

constexpr intptr_t kHostWindow = 0x4E57;

const char* const kUsage =
    "usage: rkparam new --cpu CODE [--force] DIR\n"
    "       rkparam [--cpu CODE] [--sub-editing N]... [--content-changed] [-v] DIR\n"
    "CODE is one of A0J A0H A1S A1 A2C A2 A3 A3H A2A A3A A2U A3U A4U.\n";

int Usage(const std::string& problem) {
    std::cerr << "rkparam: " << problem << "\n" << kUsage;
    return kFailed;
}

std::string WithSeparator(std::string dir) {
    if (!dir.empty() && dir.back() != '/') dir += '/';
    return dir;
}

int New(const std::vector<std::string>& args) {
    std::string cpu;
    std::string dir;
    bool force = false;
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--cpu" && i + 1 < args.size()) {
            cpu = args[++i];
        } else if (args[i] == "--force") {
            force = true;
        } else if (!args[i].empty() && args[i][0] == '-') {
            return Usage("unknown option " + args[i]);
        } else if (dir.empty()) {
            dir = args[i];
        } else {
            return Usage("more than one directory given");
        }
    }
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
    } catch (const gantrix::RuntimeError& error) {
        std::cerr << "rkparam: " << error.Description() << "\n";
        return kFailed;
    }
    std::cout << "rkparam: made " << WithSeparator(dir) << "param.tmp for CPU type \"" << cpu
              << "\"\n";
    return kSaved;
}

// The CPU type noted by "rkparam new"; "" when there is no note. Anything but a regular file
// is refused (a FIFO would block the run).
std::string ReadCpuNote(const std::string& dir) {
    const std::string path = WithSeparator(dir) + kCpuFile;
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) return "";
    const std::vector<uint8_t> bytes = gantrix::ReadWholeFile(path);
    std::string text(bytes.begin(), bytes.end());
    return text.substr(0, text.find('\n'));
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

int Run(const std::vector<std::string>& args) {
    std::string cpu;
    std::string dir;
    bool verbose = false;
    bool contentChanged = false;
    bool subEditing[3] = {false, false, false};
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--cpu" && i + 1 < args.size()) {
            cpu = args[++i];
        } else if (a == "--sub-editing" && i + 1 < args.size()) {
            const std::string n = args[++i];
            if (n != "1" && n != "2" && n != "3") return Usage("--sub-editing takes 1, 2 or 3");
            subEditing[n[0] - '1'] = true;
        } else if (a == "--content-changed") {
            contentChanged = true;
        } else if (a == "-v") {
            verbose = true;
        } else if (!a.empty() && a[0] == '-') {
            return Usage("unknown option " + a);
        } else if (dir.empty()) {
            dir = a;
        } else {
            return Usage("more than one directory given");
        }
    }
    if (dir.empty()) return Usage("no project directory given");

    // Refuse a project that is not there before anything is touched.
    struct stat info {};
    if (::stat(dir.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
        std::cerr << "rkparam: project directory \"" << dir << "\" does not exist\n";
        return kFailed;
    }
    // Looked up as the component looks it up: "PARAM.TMP" is the project's file too.
    std::string param = WithSeparator(dir) + "param.tmp";
    try {
        const std::string name = gantrix::FindEntry(param);
        if (name.empty()) {
            std::cerr << "rkparam: \"" << param
                      << "\" is missing; make the project with: rkparam new --cpu CODE " << dir
                      << "\n";
            return kFailed;
        }
        param = WithSeparator(dir) + name;
        if (::stat(param.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) {
            std::cerr << "rkparam: \"" << param << "\" is not a regular file\n";
            return kFailed;
        }
        if (info.st_size != 3072) {
            std::cerr << "rkparam: \"" << param << "\" holds " << info.st_size
                      << " bytes; a parameter file holds exactly 3072\n";
            return kFailed;
        }
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

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    if (args.empty()) return Usage("no project directory given");
    if (args[0] == "-h" || args[0] == "--help") {
        std::cout << kUsage;
        return kSaved;
    }
    if (args[0] == "new") return New({args.begin() + 1, args.end()});
    return Run(args);
}
