#include "HeadlessCommands.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "ProjectFiles.h"
#include "headless/Headless.h"
#include "headless/Page.h"
#include "headless/ProjectChange.h"
#include "store/Project.h"
#include "store/ProjectAccess.h"
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
};

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

// Text from a file or a command line, as a message shows it: control characters escaped.
std::string Printable(const std::string& text) {
    const std::string quoted = hl::QuoteValue(text);
    return quoted.starts_with('"') ? quoted : Quoted(quoted);
}

// A string for JSON: the library refuses text that is not UTF-8 (a path may be any bytes),
// so such a string has its bytes from 0x80 up written as \xHH.
std::string JsonText(const std::string& text) {
    try {
        (void)nlohmann::json(text).dump();
        return text;
    } catch (const nlohmann::json::exception&) {
        std::string escaped;
        for (const char c : text) {
            const auto u = static_cast<unsigned char>(c);
            if (u < 0x80) {
                escaped += c;
                continue;
            }
            char buffer[8];
            std::snprintf(buffer, sizeof buffer, "\\x%02X", u);
            escaped += buffer;
        }
        return escaped;
    }
}

// At most this many refusals or findings are printed, then how many more there are.
constexpr size_t kListed = 20;

void PrintList(std::ostream& out, const std::string& prefix, const std::vector<hl::Violation>& list,
               size_t unlisted = 0) {
    for (size_t i = 0; i < list.size() && i < kListed; ++i) {
        out << prefix << hl::Describe(list[i]) << "\n";
    }
    const size_t more = (list.size() > kListed ? list.size() - kListed : 0) + unlisted;
    if (more > 0) out << prefix << "and " << more << " more\n";
}

// A project directory or a parameter file, with the CPU type it is for.
struct Loaded {
    gantrix::ProjectPath path;
    std::string cpu;
    gantrix::ParameterImage image;
    std::string sizeProblem;  // set (and image empty) when the file is not 3072 bytes
};

gantrix::ProjectPath Locate(const std::string& path) {
    gantrix::ProjectPath located = gantrix::LocateProject(path);
    if (!located.exists) {
        throw Failure(Quoted(located.file) +
                      " is missing; make the project with: rkparam new --cpu CODE " + path);
    }
    return located;
}

// The CPU type: --cpu, else the project's note, else fallback; refused when none names one.
std::string CpuFor(const std::string& option, const std::string& projectDir,
                   const std::string& fallback) {
    std::string cpu = option;
    if (cpu.empty()) cpu = ReadCpuNote(projectDir);
    if (cpu.empty()) cpu = fallback;
    if (cpu.empty()) {
        throw Failure("no CPU type: " + Quoted(projectDir + kCpuFile) +
                      " is not there or names none; give --cpu CODE");
    }
    cpu = gantrix::NormalizeCpuCode(cpu);
    if (!gantrix::IsKnownCpuType(cpu)) {
        throw Failure("unknown CPU type " + Printable(cpu) +
                      ": expected one of A0J A0H A1S A1 A2C A2 A3 A3H A2A A3A A2U A3U A4U");
    }
    return cpu;
}

Loaded Load(const std::string& path, const std::string& cpuOption, bool sizeIsFinding = false) {
    Loaded l;
    l.path = Locate(path);
    l.cpu = CpuFor(cpuOption, l.path.projectDir, "");
    try {
        l.image = gantrix::LoadParameterImage(l.path.file);
    } catch (const gantrix::WrongParameterFileSize& wrong) {
        if (!sizeIsFinding) throw;
        l.sizeProblem = wrong.Description();
    }
    return l;
}

gantrix::DialogContext ContextOf(const Loaded& l) {
    return hl::HeadlessContext(l.cpu, l.path.projectDir);
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
        j["file"] = JsonText(l.path.file);
        j["cpu"] = JsonText(l.cpu);
        j["dialogs"] = nlohmann::ordered_json::array();
        for (const hl::ShownDialog& d : dialogs) {
            nlohmann::ordered_json fields = nlohmann::ordered_json::object();
            for (const hl::ShownField& f : d.fields) fields[JsonText(f.key)] = JsonText(f.value);
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
        found = hl::Check(l.image, ContextOf(l), gantrix::ReadEndPositions(l.path));
    }
    PrintList(std::cout, "", found);
    if (found.empty()) {
        std::cout << "rkparam: " << l.path.file << " passes every check\n";
        return kOk;
    }
    std::cout << "rkparam: " << found.size() << " problem(s) in " << l.path.file << "\n";
    return kFound;
}

// What set and import print of a change, and their exit status.
int Report(const hl::ProjectChange& change, const std::string& source, const std::string& same) {
    const hl::ChangeOutcome& o = change.outcome;
    const std::string from = source.empty() ? "" : source + ": ";
    if (!o.image) {
        PrintList(std::cerr, "rkparam: refused: " + from, o.refusals, o.unlisted);
        std::cerr << "rkparam: nothing was changed\n";
        return kFound;
    }
    PrintList(std::cerr, "rkparam: warning: the file had this before: ", o.warnings);
    for (const std::string& note : o.notes) std::cerr << "rkparam: note: " << from << note << "\n";
    for (const std::string& warning : change.saveWarnings) {
        std::cerr << "rkparam: warning: " << warning << "\n";
    }
    if (change.unchanged) {
        std::cout << "rkparam: " << change.file << " already holds " << same << "\n";
    } else {
        std::cout << "rkparam: saved " << change.file << "\n";
    }
    return kOk;
}

int Set(const Options& o) {
    std::vector<hl::Assignment> assignments;
    for (const std::string& a : o.assignments) {
        const auto eq = a.find('=');
        if (eq == std::string::npos || eq == 0) {
            throw Failure("expected KEY=VALUE, not " + Printable(a));
        }
        assignments.push_back({a.substr(0, eq), a.substr(eq + 1)});
    }
    const gantrix::ProjectPath path = Locate(o.path);
    const std::string cpu = CpuFor(o.cpu, path.projectDir, "");
    return Report(hl::SetInProject(path, cpu, assignments), "", "these values");
}

int Diff(const Options& o) {
    const Loaded a = Load(o.path, o.cpu);
    const Loaded b = Load(o.other, o.cpu);
    const hl::Difference d = hl::Diff(a.image, ContextOf(a), b.image, ContextOf(b));
    std::cout << "--- " << a.path.file << " (" << a.cpu << ")\n+++ " << b.path.file << " (" << b.cpu
              << ")\n";
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
        try {
            gantrix::WriteOutputFile(o.other, text);
        } catch (const gantrix::RuntimeError& error) {
            throw Failure(error.Description() + " (-o - writes to standard output)");
        }
    }
    return kOk;
}

// An export text is tens of kilobytes; this is room for any edit of one, and no more.
constexpr size_t kTextLimit = 4 << 20;

int Import(const Options& o) {
    std::string text;
    if (o.other == "-") {
        text.resize(kTextLimit + 1);
        std::cin.read(text.data(), static_cast<std::streamsize>(text.size()));
        text.resize(static_cast<size_t>(std::cin.gcount()));
        if (text.size() > kTextLimit) {
            throw Failure("the text on standard input is larger than " +
                          std::to_string(kTextLimit) + " bytes; nothing was changed");
        }
    } else {
        text = gantrix::ReadInputFile(o.other, kTextLimit);
    }
    const gantrix::ProjectPath path = Locate(o.path);
    const std::string cpu = CpuFor(o.cpu, path.projectDir, hl::CpuOfText(text));
    return Report(hl::ImportIntoProject(path, cpu, text), o.other, "these parameters");
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
    commands->push_back({importCommand, Import});

    return [o, commands] {
        for (const Command& c : *commands) {
            if (!c.sub->parsed()) continue;
            try {
                return c.run(*o);
            } catch (const Failure& failure) {
                std::cerr << "rkparam: " << failure.what() << "\n";
            } catch (const gantrix::ProjectInUse& error) {
                std::cerr << "rkparam: " << error.Description() << "; nothing was changed\n";
            } catch (const gantrix::RuntimeError& error) {
                std::cerr << "rkparam: " << error.Description() << "\n";
            } catch (const std::exception& error) {
                // No exception leaves the program: whatever it was, the user reads it.
                std::cerr << "rkparam: " << c.sub->get_name() << " failed: " << error.what()
                          << "\n";
            }
            return kFailed;
        }
        return -1;
    };
}

}  // namespace rkparam
