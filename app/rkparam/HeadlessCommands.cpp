// SPDX-License-Identifier: Apache-2.0
#include "HeadlessCommands.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "CommandSupport.h"
#include "PipelineCommands.h"
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

// A project directory or a parameter file, with the CPU type it is for.
struct Loaded {
    gantrix::ProjectPath path;
    std::string cpu;
    gantrix::ParameterImage image;
    std::string sizeProblem;  // set (and image empty) when the file is not 3072 bytes
};

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

int Show(const Options& o) {
    const Loaded l = Load(o.path, o.cpu);
    const auto dialogs = hl::Show(l.image, ContextOf(l));
    if (o.json) {
        nlohmann::ordered_json j;
        j["file"] = Utf8Text(l.path.file);
        j["cpu"] = Utf8Text(l.cpu);
        j["dialogs"] = nlohmann::ordered_json::array();
        for (const hl::ShownDialog& d : dialogs) {
            nlohmann::ordered_json fields = nlohmann::ordered_json::object();
            for (const hl::ShownField& f : d.fields) fields[Utf8Text(f.key)] = Utf8Text(f.value);
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
    PrintDifference(std::cout, d);
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
        "check bytes, of one project or many; exit status 1 when anything is found");
    check->add_option("PATH", o->paths, "project directories or parameter files");
    check->add_option("--cpu", o->cpu, "CPU type, where rkparam.cpu does not name it");
    check->add_option("--recursive", o->recursive, "check every project under DIR")
        ->type_name("DIR")
        ->allow_extra_args(false);
    check->add_option("--format", o->format, "text (the default), json, or junit (JUnit XML)")
        ->check(CLI::IsMember({"text", "json", "junit"}));
    commands->push_back({check, CheckCommand});

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

    CLI::App* merge = app.add_subcommand(
        "merge",
        "three-way merge field by field, written to OURS (git's merge driver); exit status 1 "
        "on a conflict, OURS then as it was");
    merge->add_option("BASE OURS THEIRS", o->paths, "parameter files or project directories")
        ->expected(3)
        ->required();
    merge->add_option("-o,--output", o->output, "write the result here rather than to OURS");
    merge->add_option("--path", o->gitPath,
                      "where the file is kept (git's %P): its rkparam.cpu gives the CPU type");
    merge->add_option("--cpu", o->cpu, "CPU type, where rkparam.cpu does not name it");
    commands->push_back({merge, MergeCommand});

    CLI::App* setup = app.add_subcommand(
        "git-setup", "make git merge and diff param.tmp field by field in the repository REPO");
    setup->add_option("REPO", o->path, "a directory of the repository's work tree (default .)");
    commands->push_back({setup, GitSetupCommand});

    CLI::App* gitDiff = app.add_subcommand(
        "git-diff", "git's diff command for param.tmp: the fields that differ (see git-setup)");
    gitDiff->add_option("ARGS", o->gitArgs, "what git hands a diff command")->required();
    gitDiff->add_option("--cpu", o->cpu, "CPU type, where rkparam.cpu does not name it");
    commands->push_back({gitDiff, GitDiffCommand});

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
