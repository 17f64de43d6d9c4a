// SPDX-License-Identifier: Apache-2.0
// Parameter files under version control: the three-way merge, git's merge driver and diff
// command, and the set-up that names them in a repository.
//
// Git runs both drivers in the top directory of the work tree and hands them temporary files
// beside it, so the CPU type comes from "rkparam.cpu" beside the path git names (%P for the
// merge, the first argument of a diff command), relative to that directory.

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <optional>

#include "PipelineCommands.h"
#include "ProjectFiles.h"
#include "headless/Merge.h"
#include "headless/Page.h"
#include "platform/rkcmnt/DefaultImage.h"
#include "store/ParameterFiles.h"
#include "store/Project.h"
#include "store/RuntimeError.h"

extern char** environ;

namespace rkparam {
namespace {

namespace fs = std::filesystem;
namespace hl = gantrix::headless;

constexpr const char* kAttributes = "param.tmp merge=rkparam diff=rkparam";

std::string Lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

bool IsDirectory(const std::string& path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

gantrix::ParameterImage DefaultImage(const std::string& cpu) {
    gantrix::ParameterImage image;
    gantrix::platform::BuildDefaultImage(cpu, image.data());
    return image;
}

// One side of a merge, checked as every load is. Git hands an empty file for the common
// ancestor of a file both branches added: the merge then starts from a new project's image.
gantrix::ParameterImage LoadSide(const std::string& path, const std::string& cpu, bool base) {
    const gantrix::ProjectPath located = Locate(path);
    try {
        return gantrix::LoadParameterImage(located.file);
    } catch (const gantrix::WrongParameterFileSize&) {
        std::error_code ignored;
        if (base && fs::file_size(located.target, ignored) == 0) return DefaultImage(cpu);
        throw;
    }
}

// The project a merge writes into, held from before OURS is read until the result is saved:
// a directory, or a file named as a project's parameter file. Any other file (the temporary
// files git hands a driver) is replaced whole, as a parameter file is, without a hold.
std::optional<gantrix::ProjectPath> ProjectOf(const std::string& out) {
    if (IsDirectory(out)) return gantrix::LocateProject(out);
    if (Lower(out.substr(out.find_last_of('/') + 1)) != gantrix::kParamTmp) return std::nullopt;
    std::error_code ignored;
    if (fs::exists(fs::symlink_status(out, ignored))) return gantrix::LocateProject(out);
    return gantrix::LocateProject(gantrix::DirectoryOf(out));
}

// The program's own path, so that git finds the same rkparam whatever its PATH is.
std::string OwnPath() {
    std::error_code error;
    const fs::path self = fs::read_symlink("/proc/self/exe", error);
    if (error) throw Failure("cannot find the path of rkparam itself: " + error.message());
    return self.string();
}

// The first rkparam the search path gives, as a shell finds it; "" for none.
std::string OnSearchPath() {
    const char* path = std::getenv("PATH");
    for (std::string dirs = path ? path : ""; !dirs.empty();) {
        const size_t colon = dirs.find(':');
        const std::string dir = dirs.substr(0, colon);
        dirs = colon == std::string::npos ? "" : dirs.substr(colon + 1);
        const std::string candidate = (dir.empty() ? "." : dir) + "/rkparam";
        if (::access(candidate.c_str(), X_OK) == 0 && !IsDirectory(candidate)) return candidate;
    }
    return "";
}

// A word for the shell git runs a driver with.
std::string ShellWord(const std::string& text) {
    std::string word = "'";
    for (const char c : text) word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return word + "'";
}

struct Run {
    int status = -1;
    std::string output;  // standard output and error together
};

Run RunGit(const std::vector<std::string>& args) {
    std::vector<char*> argv;
    std::vector<std::string> words = {"git"};
    words.insert(words.end(), args.begin(), args.end());
    for (std::string& w : words) argv.push_back(w.data());
    argv.push_back(nullptr);
    int pipe[2];
    if (::pipe(pipe) != 0) throw Failure("cannot run git: " + std::string(std::strerror(errno)));
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipe[1], 1);
    posix_spawn_file_actions_adddup2(&actions, pipe[1], 2);
    posix_spawn_file_actions_addclose(&actions, pipe[0]);
    pid_t pid = 0;
    const int spawned = posix_spawnp(&pid, "git", &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(pipe[1]);
    Run run;
    if (spawned != 0) {
        ::close(pipe[0]);
        throw Failure("cannot run git: " + std::string(std::strerror(spawned)));
    }
    char buffer[4096];
    for (ssize_t n; (n = ::read(pipe[0], buffer, sizeof buffer)) != 0;) {
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) break;
        run.output.append(buffer, static_cast<size_t>(n));
    }
    ::close(pipe[0]);
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

std::string TrimmedLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

const char* SideName(hl::MergeSide side) {
    switch (side) {
        case hl::MergeSide::Base:
            return "BASE";
        case hl::MergeSide::Ours:
            return "OURS";
        case hl::MergeSide::Theirs:
            return "THEIRS";
    }
    return "";
}

}  // namespace

int MergeCommand(const Options& o) {
    const std::vector<std::string>& sides = o.paths;  // BASE OURS THEIRS
    const std::string out = o.output.empty() ? sides[1] : o.output;
    const std::string noteDir =
        o.gitPath.empty() ? Locate(sides[1]).projectDir : gantrix::DirectoryOf(o.gitPath);
    const std::string cpu = CpuFor(o.cpu, noteDir, "");
    // A side named as a project directory says its CPU type itself.
    for (const std::string& side : sides) {
        if (!IsDirectory(side)) continue;
        const std::string note = ReadCpuNote(side);
        if (!note.empty() && gantrix::NormalizeCpuCode(note) != cpu) {
            throw Failure(Quoted(side) + " is a project of CPU type " + Printable(note) +
                          ", the merge is for \"" + cpu + "\"; nothing was merged");
        }
    }
    std::optional<gantrix::ProjectHold> hold;
    if (const auto project = ProjectOf(out)) hold.emplace(*project);

    const gantrix::ParameterImage base = LoadSide(sides[0], cpu, true);
    const gantrix::ParameterImage ours = LoadSide(sides[1], cpu, false);
    const gantrix::ParameterImage theirs = LoadSide(sides[2], cpu, false);
    gantrix::ProjectPath programs;
    programs.projectDir = noteDir;
    programs.file = o.gitPath.empty() ? Locate(sides[1]).file : o.gitPath;
    const hl::EndPositions end =
        IsDirectory(noteDir) ? gantrix::ReadEndPositions(programs) : hl::EndPositions{};
    const hl::MergeOutcome merged =
        hl::Merge(base, ours, theirs, hl::HeadlessContext(cpu, noteDir), end);

    const std::string name = o.gitPath.empty() ? out : o.gitPath;
    for (const hl::MergeUnfit& unfit : merged.unfit) {
        const std::string& side = sides[static_cast<size_t>(unfit.side)];
        std::cerr << "rkparam: " << SideName(unfit.side) << " " << Quoted(side) << ": " << unfit.why
                  << "\n";
    }
    if (!merged.unfit.empty()) {
        std::cerr << "rkparam: nothing was merged\n";
        return kFailed;
    }
    if (!merged.image) {
        const auto& conflicts = merged.conflicts;
        for (size_t i = 0; i < conflicts.size() && i < kListed; ++i) {
            std::cerr << "rkparam: conflict: " << hl::Describe(conflicts[i]) << "\n";
        }
        if (conflicts.size() > kListed) {
            std::cerr << "rkparam: conflict: and " << conflicts.size() - kListed << " more\n";
        }
        std::cerr << "rkparam: " << name << ": " << conflicts.size()
                  << " conflict(s); nothing was merged\n";
        return kFound;
    }
    if (hold) {
        for (const std::string& warning : hold->Save(*merged.image)) {
            std::cerr << "rkparam: warning: " << warning << "\n";
        }
    } else {
        gantrix::SaveParameterImage(out, *merged.image);
    }
    std::cout << "rkparam: merged " << name << " field by field\n";
    return kOk;
}

int GitSetupCommand(const Options& o) {
    const std::string repo = o.path.empty() ? "." : o.path;
    const Run top = RunGit({"-C", repo, "rev-parse", "--show-toplevel"});
    if (top.status != 0) {
        throw Failure(Quoted(repo) + " is not in a git work tree: " + TrimmedLine(top.output));
    }
    const std::string dir = TrimmedLine(top.output);
    // The attributes are read first: one that cannot be read leaves the config as it was.
    const std::string attributes = dir + "/.gitattributes";
    std::string text;
    std::error_code ignored;
    if (fs::exists(fs::symlink_status(attributes, ignored))) {
        text = gantrix::ReadInputFile(attributes, 1 << 20);
    }
    bool listed = false;
    for (size_t at = 0; at < text.size() && !listed;) {
        size_t end = text.find('\n', at);
        if (end == std::string::npos) end = text.size();
        std::string line = text.substr(at, end - at);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        listed = line == kAttributes;
        at = end + 1;
    }
    // Plain "rkparam" where the search path leads to this program (an installed one), so the
    // set-up reads as the documented lines; this program's own path otherwise (a build tree).
    const std::string own = OwnPath(), found = OnSearchPath();
    std::error_code differs;
    const std::string self =
        !found.empty() && fs::equivalent(found, own, differs) ? "rkparam" : ShellWord(own);
    const std::pair<const char*, std::string> settings[] = {
        {"merge.rkparam.name", "PLC parameters, field by field (rkparam merge)"},
        {"merge.rkparam.driver", self + " merge %O %A %B --path %P"},
        {"diff.rkparam.command", self + " git-diff"},
    };
    for (const auto& [key, value] : settings) {
        const Run now = RunGit({"-C", dir, "config", "--local", "--get", key});
        if (now.status == 0 && TrimmedLine(now.output) == value) {
            std::cout << "rkparam: " << key << " is set already\n";
            continue;
        }
        const Run set = RunGit({"-C", dir, "config", "--local", key, value});
        if (set.status != 0) {
            throw Failure("git config " + std::string(key) + " failed: " + TrimmedLine(set.output));
        }
        std::cout << "rkparam: set " << key << " = " << value << "\n";
    }
    if (listed) {
        std::cout << "rkparam: " << attributes << " holds \"" << kAttributes << "\" already\n";
        return kOk;
    }
    if (!text.empty() && text.back() != '\n') text += '\n';
    gantrix::WriteOutputFile(attributes, text + kAttributes + "\n");
    std::cout << "rkparam: added \"" << kAttributes << "\" to " << attributes << "\n";
    return kOk;
}

int GitDiffCommand(const Options& o) {
    const std::vector<std::string>& a = o.gitArgs;
    if (a.size() != 7 && a.size() != 9) {
        throw Failure(
            "git-diff takes what git hands a diff command: PATH OLD-FILE OLD-HEX "
            "OLD-MODE NEW-FILE NEW-HEX NEW-MODE [NEW-PATH INFO]");
    }
    const std::string& path = a[0];
    const std::string& newPath = a.size() == 9 ? a[7] : path;
    std::cout << "diff --git a/" << path << " b/" << newPath << "\n";
    // Git stops at a diff command that fails: whatever cannot be compared is said here, and
    // the other files' differences still come.
    try {
        const std::string cpu = CpuFor(o.cpu, gantrix::DirectoryOf(newPath), "");
        const auto load = [&cpu](const std::string& file) {
            return file == "/dev/null" ? DefaultImage(cpu) : gantrix::LoadParameterImage(file);
        };
        const gantrix::ParameterImage before = load(a[1]), after = load(a[4]);
        const gantrix::DialogContext context = hl::HeadlessContext(cpu);
        std::cout << "--- " << (a[1] == "/dev/null" ? "/dev/null" : "a/" + path) << " (" << cpu
                  << ")\n+++ " << (a[4] == "/dev/null" ? "/dev/null" : "b/" + newPath) << " ("
                  << cpu << ")\n";
        if (a[1] == "/dev/null" || a[4] == "/dev/null") {
            std::cout << "(against the parameters of a new project of CPU type \"" << cpu
                      << "\")\n";
        }
        PrintDifference(std::cout, hl::Diff(before, context, after, context));
    } catch (const Failure& failure) {
        std::cout << "rkparam: the fields cannot be shown: " << failure.what() << "\n";
    } catch (const gantrix::RuntimeError& error) {
        std::cout << "rkparam: the fields cannot be shown: " << error.Description() << "\n";
    }
    return kOk;
}

}  // namespace rkparam
