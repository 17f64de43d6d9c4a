#include "HeadlessCommands.h"

#include <sys/stat.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "ProjectFiles.h"
#include "headless/Headless.h"
#include "headless/Page.h"
#include "platform/rkcmnt/rkcmnt.h"
#include "store/ParameterFiles.h"
#include "store/Project.h"
#include "store/ProjectLock.h"
#include "store/RuntimeError.h"

namespace rkparam {
namespace {

namespace hl = gantrix::headless;

constexpr int kOk = 0;
constexpr int kFound = 1;  // check found something, diff a difference, set or import refused
constexpr int kFailed = 2;

// A refusal before anything was done: the text goes to the user, the exit status is 2.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Options {
    std::string cpu;
    std::string path;
    std::string other;  // diff: the second project; import: the text file
    std::vector<std::string> assignments;
    bool json = false;
    bool force = false;
};

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

// A project directory or a parameter file, with the CPU type it is for.
struct Loaded {
    std::string file;
    std::string projectDir;  // the directory of the file, with "/"
    std::string cpu;
    gantrix::ParameterImage image;
    std::string sizeProblem;  // set (and image empty) when the file is not 3072 bytes
};

std::string DirectoryOf(const std::string& file) {
    const auto slash = file.find_last_of('/');
    return slash == std::string::npos ? "./" : file.substr(0, slash + 1);
}

// The CPU type: --cpu, else the project's note, else fallback; refused when none names one.
std::string CpuFor(const std::string& option, const std::string& projectDir,
                   const std::string& fallback) {
    std::string cpu = option;
    if (cpu.empty()) cpu = ReadCpuNote(projectDir);
    if (cpu.empty()) cpu = fallback;
    if (cpu.empty()) {
        throw Failure("no CPU type: " + Quoted(projectDir + kCpuFile) +
                      " does not name one; give --cpu CODE");
    }
    cpu = gantrix::NormalizeCpuCode(cpu);
    if (!gantrix::IsKnownCpuType(cpu)) {
        throw Failure("unknown CPU type " + Quoted(cpu) +
                      ": expected one of A0J A0H A1S A1 A2C A2 A3 A3H A2A A3A A2U A3U A4U");
    }
    return cpu;
}

Loaded Load(const std::string& path, const std::string& cpuOption, bool sizeIsFinding = false,
            const std::string& cpuFallback = "") {
    Loaded l;
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) throw Failure(Quoted(path) + " does not exist");
    if (S_ISDIR(info.st_mode)) {
        l.projectDir = WithSeparator(path);
        // Looked up as a run looks it up: "PARAM.TMP" is the project's file too.
        const std::string name = gantrix::FindEntry(l.projectDir + gantrix::kParamTmp);
        if (name.empty()) {
            throw Failure(Quoted(l.projectDir + gantrix::kParamTmp) +
                          " is missing; make the project with: rkparam new --cpu CODE " + path);
        }
        l.file = l.projectDir + name;
    } else {
        l.file = path;
        l.projectDir = DirectoryOf(path);
    }
    l.cpu = CpuFor(cpuOption, l.projectDir, cpuFallback);
    const std::vector<uint8_t> bytes = gantrix::ReadWholeFile(l.file);
    if (bytes.size() != gantrix::kImageSize) {
        l.sizeProblem = Quoted(l.file) + " holds " + std::to_string(bytes.size()) +
                        " bytes; a parameter file holds exactly 3072";
        if (!sizeIsFinding) throw Failure(l.sizeProblem);
        return l;
    }
    std::copy(bytes.begin(), bytes.end(), l.image.bytes().begin());
    return l;
}

gantrix::DialogContext ContextOf(const Loaded& l) {
    return hl::HeadlessContext(l.cpu, l.projectDir);
}

// The END positions of the project's programs, as a run reads them when it loads.
hl::EndPositions EndPositionsOf(const Loaded& l) {
    gantrix::ParameterImage scratch;
    std::vector<char> path(l.file.begin(), l.file.end());
    path.push_back('\0');
    hl::EndPositions end{};
    if (RkLoadParameter(path.data(), scratch.data()) != kRkLoadOk) return end;
    std::string cpuText(10, ' ');
    int16_t value = 0;
    RkGetFileParameter(cpuText.data(), &value, end.data());
    return end;
}

void Write(const Loaded& l, const gantrix::ParameterImage& image) {
    gantrix::WriteFileAtomically(l.file, {image.bytes().begin(), image.bytes().end()});
}

// The project's lock, as a run takes it: set and import never write under a running dialog.
std::unique_ptr<gantrix::ProjectLock> Lock(const std::string& path) {
    struct stat info {};
    const bool dir = ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
    const std::string projectDir = dir ? WithSeparator(path) : DirectoryOf(path);
    auto lock = std::make_unique<gantrix::ProjectLock>(projectDir);
    if (!lock->Held()) {
        throw Failure(Quoted(projectDir) +
                      " is in use by a run of the parameter mode; nothing was changed");
    }
    return lock;
}

std::string ViolationLine(const hl::Violation& v) {
    std::string line = "[" + (v.dialog.empty() ? std::string("?") : v.dialog) + "] ";
    if (!v.key.empty()) line += v.key + (v.message >= 0 ? ": " : " ");
    return line + v.text;
}

std::string Shown(const std::optional<std::string>& value) {
    if (!value) return "(none)";
    return value->empty() ? "\"\"" : hl::QuoteValue(*value);
}

int Show(const Options& o) {
    const Loaded l = Load(o.path, o.cpu);
    const auto dialogs = hl::Show(l.image, ContextOf(l));
    if (o.json) {
        nlohmann::ordered_json j;
        j["file"] = l.file;
        j["cpu"] = l.cpu;
        j["dialogs"] = nlohmann::ordered_json::array();
        for (const hl::ShownDialog& d : dialogs) {
            nlohmann::ordered_json fields = nlohmann::ordered_json::object();
            for (const hl::ShownField& f : d.fields) fields[f.key] = f.value;
            j["dialogs"].push_back(
                {{"name", d.name}, {"form", d.form}, {"title", d.title}, {"fields", fields}});
        }
        std::cout << j.dump(2) << "\n";
        return kOk;
    }
    std::cout << "cpu = " << hl::QuoteValue(l.cpu) << "\n";
    for (const hl::ShownDialog& d : dialogs) {
        std::cout << "\n[" << d.name << "] " << d.title << "\n";
        for (const hl::ShownField& f : d.fields) {
            std::cout << f.key << " =" << (f.value.empty() ? "" : " " + hl::QuoteValue(f.value))
                      << "\n";
        }
    }
    return kOk;
}

int Check(const Options& o) {
    const Loaded l = Load(o.path, o.cpu, true);
    std::vector<hl::Violation> found;
    if (!l.sizeProblem.empty()) {
        found.push_back({"file", "", -1, l.sizeProblem});
    } else {
        found = hl::Check(l.image, ContextOf(l), EndPositionsOf(l));
    }
    for (const hl::Violation& v : found) std::cout << ViolationLine(v) << "\n";
    if (found.empty()) {
        std::cout << "rkparam: " << l.file << " passes every check\n";
        return kOk;
    }
    std::cout << "rkparam: " << found.size() << " problem(s) in " << l.file << "\n";
    return kFound;
}

int Set(const Options& o) {
    std::vector<hl::Assignment> assignments;
    for (const std::string& a : o.assignments) {
        const auto eq = a.find('=');
        if (eq == std::string::npos || eq == 0) {
            throw Failure("expected KEY=VALUE, not " + Quoted(a));
        }
        assignments.push_back({a.substr(0, eq), a.substr(eq + 1)});
    }
    const auto lock = Lock(o.path);
    const Loaded l = Load(o.path, o.cpu);
    const hl::SetOutcome outcome = hl::Set(l.image, ContextOf(l), assignments, EndPositionsOf(l));
    if (!outcome.refusals.empty()) {
        for (const hl::Violation& v : outcome.refusals) {
            std::cerr << "rkparam: refused: " << ViolationLine(v) << "\n";
        }
        std::cerr << "rkparam: nothing was changed\n";
        return kFound;
    }
    if (outcome.image == l.image) {
        std::cout << "rkparam: " << l.file << " already holds these values\n";
        return kOk;
    }
    Write(l, outcome.image);
    std::cout << "rkparam: saved " << l.file << "\n";
    return kOk;
}

int Diff(const Options& o) {
    const Loaded a = Load(o.path, o.cpu);
    const Loaded b = Load(o.other, o.cpu);
    const hl::Difference d = hl::Diff(a.image, ContextOf(a), b.image, ContextOf(b));
    std::cout << "--- " << a.file << " (" << a.cpu << ")\n+++ " << b.file << " (" << b.cpu << ")\n";
    std::string dialog;
    for (const hl::FieldDifference& f : d.fields) {
        if (f.dialog != dialog) std::cout << "[" << (dialog = f.dialog) << "]\n";
        std::cout << f.key << ": " << Shown(f.a) << " => " << Shown(f.b) << "\n";
    }
    if (!d.bytes.empty()) std::cout << "[bytes]\n";
    for (const hl::ByteDifference& r : d.bytes) {
        std::string left, right;
        for (size_t i = 0; i < r.a.size(); ++i) {
            char buffer[8];
            std::snprintf(buffer, sizeof buffer, i == 0 ? "%02X" : " %02X", r.a[i]);
            left += buffer;
            std::snprintf(buffer, sizeof buffer, i == 0 ? "%02X" : " %02X", r.b[i]);
            right += buffer;
        }
        std::cout << r.first << ".." << r.last << ": " << left << " => " << right << "\n";
    }
    return d.differ || !d.fields.empty() || a.cpu != b.cpu ? kFound : kOk;
}

int Export(const Options& o) {
    const Loaded l = Load(o.path, o.cpu);
    const std::string text = hl::ExportText(l.image, ContextOf(l));
    if (o.other.empty() || o.other == "-") {
        std::cout << text;
    } else {
        gantrix::WriteFileAtomically(o.other, {text.begin(), text.end()});
    }
    return kOk;
}

int Import(const Options& o) {
    std::string text;
    if (o.other == "-") {
        text.assign(std::istreambuf_iterator<char>(std::cin), {});
    } else {
        const std::vector<uint8_t> bytes = gantrix::ReadWholeFile(o.other);
        text.assign(bytes.begin(), bytes.end());
    }
    const auto lock = Lock(o.path);
    const Loaded l = Load(o.path, o.cpu, false, hl::CpuOfText(text));
    const gantrix::DialogContext context = ContextOf(l);
    const hl::ImportOutcome outcome = hl::ImportText(text, context);
    for (const std::string& error : outcome.errors) {
        std::cerr << "rkparam: " << o.other << ": " << error << "\n";
    }
    if (!outcome.image) {
        std::cerr << "rkparam: nothing was changed\n";
        return kFound;
    }
    for (const std::string& note : outcome.notes) {
        std::cerr << "rkparam: note: " << o.other << ": " << note << "\n";
    }
    if (*outcome.image == l.image) {
        std::cout << "rkparam: " << l.file << " already holds these parameters\n";
        return kOk;
    }
    const auto found = hl::Check(*outcome.image, context, EndPositionsOf(l));
    if (!found.empty() && !o.force) {
        for (const hl::Violation& v : found) {
            std::cerr << "rkparam: refused: " << ViolationLine(v) << "\n";
        }
        std::cerr << "rkparam: nothing was changed (--force writes it anyway)\n";
        return kFound;
    }
    Write(l, *outcome.image);
    std::cout << "rkparam: saved " << l.file << "\n";
    return kOk;
}

}  // namespace

std::function<int()> AddHeadlessCommands(CLI::App& app) {
    auto o = std::make_shared<Options>();
    const auto path = [&o](CLI::App* sub) {
        sub->add_option("PATH", o->path, "project directory or parameter file")->required();
        sub->add_option("--cpu", o->cpu, "CPU type, where rkparam.cpu does not name it");
    };
    struct Command {
        CLI::App* sub;
        int (*run)(const Options&);
    };
    auto commands = std::make_shared<std::vector<Command>>();

    CLI::App* show = app.add_subcommand(
        "show", "every field of every dialog, as the dialog shows it, grouped by dialog");
    path(show);
    show->add_flag("--json", o->json, "as JSON");
    commands->push_back({show, Show});

    CLI::App* check = app.add_subcommand(
        "check",
        "every dialog's check as if its OK were pressed, the menu's OK, the file's size and "
        "check bytes; exit status 1 when anything is found");
    path(check);
    commands->push_back({check, Check});

    CLI::App* set = app.add_subcommand(
        "set", "type values into fields as the dialogs take them; refuses all on any message");
    path(set);
    set->add_option("KEY=VALUE", o->assignments, "field and value, as typed")->required();
    commands->push_back({set, Set});

    CLI::App* diff = app.add_subcommand(
        "diff",
        "field by field, and the bytes no field accounts for; exit status 1 if they differ");
    diff->add_option("A", o->path, "project directory or parameter file")->required();
    diff->add_option("B", o->other, "project directory or parameter file")->required();
    diff->add_option("--cpu", o->cpu, "CPU type, where rkparam.cpu does not name it");
    commands->push_back({diff, Diff});

    CLI::App* exportCommand =
        app.add_subcommand("export", "the parameters as text: key = value lines, then bytes");
    path(exportCommand);
    exportCommand->add_option("-o,--output", o->other, "write the text to this file");
    commands->push_back({exportCommand, Export});

    CLI::App* importCommand = app.add_subcommand(
        "import", "the parameters from the text of export, byte for byte (- reads stdin)");
    path(importCommand);
    importCommand->add_option("FILE", o->other, "text made by export")->required();
    importCommand->add_flag("--force", o->force, "write even when the result fails the checks");
    commands->push_back({importCommand, Import});

    return [o, commands] {
        for (const Command& c : *commands) {
            if (!c.sub->parsed()) continue;
            try {
                return c.run(*o);
            } catch (const Failure& failure) {
                std::cerr << "rkparam: " << failure.what() << "\n";
            } catch (const gantrix::RuntimeError& error) {
                std::cerr << "rkparam: " << error.Description() << "\n";
            }
            return kFailed;
        }
        return -1;
    };
}

}  // namespace rkparam
