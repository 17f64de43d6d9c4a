// SPDX-License-Identifier: Apache-2.0
#include "store/ProjectAccess.h"

#include <dirent.h>
#include <strings.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cerrno>

#include "platform/rkcmnt/rkcmnt.h"
#include "store/ParameterFiles.h"
#include "store/ProjectLock.h"

namespace gantrix {
namespace {

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string WithSeparator(std::string dir) {
    if (!dir.empty() && dir.back() != '/') dir += '/';
    return dir;
}

std::string NameOf(const std::string& path) {
    return path.substr(path.find_last_of('/') + 1);
}

bool SameDirectory(const std::string& a, const std::string& b) {
    if (a == b) return true;
    struct stat infoA {};
    struct stat infoB {};
    return ::stat(a.c_str(), &infoA) == 0 && ::stat(b.c_str(), &infoB) == 0 &&
           infoA.st_dev == infoB.st_dev && infoA.st_ino == infoB.st_ino;
}

void Walk(const std::string& dir, FoundProjects& found, bool root) {
    DIR* listing = ::opendir(dir.c_str());
    if (listing == nullptr) {
        const RuntimeError error = FileError("Cannot read the directory", dir, errno);
        if (root) throw error;
        found.unreadable.push_back({dir, error.Description()});
        return;
    }
    std::string param;
    std::vector<std::string> subdirectories;
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(listing);
        if (entry == nullptr) {
            if (errno != 0) {
                found.unreadable.push_back(
                    {dir, FileError("Cannot read the directory", dir, errno).Description()});
            }
            break;
        }
        const std::string name = entry->d_name;
        // The exact spelling first, as a lookup of the file takes it.
        if (::strcasecmp(name.c_str(), kParamTmp) == 0 && (param.empty() || name == kParamTmp)) {
            param = name;
        }
        if (name.front() == '.') continue;
        bool directory = entry->d_type == DT_DIR;
        struct stat info {};
        if (entry->d_type == DT_UNKNOWN && ::lstat((dir + name).c_str(), &info) == 0) {
            directory = S_ISDIR(info.st_mode);
        }
        if (directory) subdirectories.push_back(name);
    }
    ::closedir(listing);
    if (!param.empty()) {
        ProjectPath p{dir, dir + param, dir + param, true};
        try {
            p.target = ResolveLinks(p.file);
        } catch (const RuntimeError&) {
            // A link chain that cannot be followed: the load names why.
        }
        found.projects.push_back(std::move(p));
    }
    std::sort(subdirectories.begin(), subdirectories.end());
    for (const std::string& name : subdirectories) Walk(dir + name + "/", found, false);
}

}  // namespace

FoundProjects FindProjects(const std::string& root) {
    if (root.empty()) throw RuntimeError(kErrPathNotFound, "No directory given");
    FoundProjects found;
    Walk(WithSeparator(root), found, true);
    return found;
}

ProjectPath LocateProject(const std::string& path) {
    if (path.empty()) throw RuntimeError(kErrPathNotFound, "No project directory given");
    ProjectPath p;
    struct stat info {};
    if (::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
        p.projectDir = WithSeparator(path);
        // Looked up as a run looks it up: "PARAM.TMP" is the project's file too.
        const std::string name = FindEntry(p.projectDir + kParamTmp);
        p.file = p.projectDir + (name.empty() ? std::string(kParamTmp) : name);
        p.exists = !name.empty();
    } else {
        struct stat entry {};
        if (::lstat(path.c_str(), &entry) != 0) {
            if (errno == ENOENT || errno == ENOTDIR) {
                throw RuntimeError(kErrPathNotFound, Quoted(path) + " does not exist");
            }
            throw FileError("Cannot read", path, errno);
        }
        p.projectDir = DirectoryOf(path);
        p.file = path;
        p.exists = true;
    }
    p.target = ResolveLinks(p.file);
    return p;
}

ProjectHold::ProjectHold(ProjectPath path) : path_(std::move(path)) {
    locks_.push_back(std::make_unique<ProjectLock>(path_.projectDir));
    if (!locks_.back()->Held()) {
        throw ProjectInUse("The project " + Quoted(path_.projectDir) +
                           " is in use by another run of the parameter mode");
    }
    // The save replaces the file where the links lead: that directory is held as well, so
    // that a run there and this writer never save over each other.
    const std::string targetDir = DirectoryOf(path_.target);
    std::vector<std::string> held{path_.projectDir};
    if (!SameDirectory(targetDir, path_.projectDir)) {
        locks_.push_back(std::make_unique<ProjectLock>(targetDir));
        if (!locks_.back()->Held()) {
            throw ProjectInUse("The directory " + Quoted(targetDir) + ", where " +
                               Quoted(path_.file) +
                               " leads, is in use by another run of the parameter mode");
        }
        held.push_back(targetDir);
    }
    for (const std::string& directory : held) RemoveStaleParts(directory);
}

ProjectHold::~ProjectHold() = default;

ParameterImage ProjectHold::Load() const {
    return LoadParameterImage(path_.file);
}

std::vector<std::string> ProjectHold::Save(const ParameterImage& image) const {
    StagedFile staged(path_.file, {image.bytes().begin(), image.bytes().end()});
    if (staged.Target() != path_.target) {
        throw RuntimeError(kErrPathFileAccess, "Cannot write " + Quoted(path_.file) +
                                                   ": it now leads to " + Quoted(staged.Target()) +
                                                   ", not to " + Quoted(path_.target) +
                                                   "; nothing was saved");
    }
    staged.Commit();
    return SyncAfterSave(staged.Target(), path_.projectDir);
}

ParameterImage LoadParameterImage(const std::string& file) {
    struct stat info {};
    if (::stat(file.c_str(), &info) != 0) throw FileError("Cannot load", file, errno);
    if (!S_ISREG(info.st_mode)) {
        throw RuntimeError(kErrPathFileAccess, "Cannot load " + Quoted(file) + ": it is " +
                                                   KindOf(info.st_mode) + ", not a regular file");
    }
    const auto wrongSize = [&file](uint64_t size) {
        return WrongParameterFileSize(Quoted(file) + " holds " + std::to_string(size) +
                                      " bytes; a parameter file holds exactly " +
                                      std::to_string(kImageSize));
    };
    if (info.st_size != kImageSize) throw wrongSize(static_cast<uint64_t>(info.st_size));
    // Read no more than a parameter file holds, should it grow meanwhile.
    const std::vector<uint8_t> bytes = ReadWholeFile(file, kImageSize);
    if (bytes.size() != kImageSize) throw wrongSize(bytes.size());
    ParameterImage image;
    std::copy(bytes.begin(), bytes.end(), image.bytes().begin());
    return image;
}

void SaveParameterImage(const std::string& file, const ParameterImage& image) {
    WriteFileAtomically(file, {image.bytes().begin(), image.bytes().end()});
}

void CheckProgramEnd(const std::string& projectDir) {
    ReadFileIfAny(projectDir + "program.end", kSmallFileLimit);
}

std::array<int16_t, 4> ReadEndPositions(const ProjectPath& path) {
    std::array<int16_t, 4> end{};
    // Without the file there are no programs: the host library would read nothing either.
    if (!ReadFileIfAny(path.projectDir + "program.end", kSmallFileLimit)) return end;
    ParameterImage scratch;
    std::vector<char> file(path.file.begin(), path.file.end());
    file.push_back('\0');
    if (RkLoadParameter(file.data(), scratch.data()) != kRkLoadOk) return end;
    std::string cpuText(10, ' ');
    int16_t value = 0;
    RkGetFileParameter(cpuText.data(), &value, end.data());
    return end;
}

std::optional<std::string> ReadProjectNote(const std::string& projectDir, const std::string& name) {
    const auto bytes = ReadFileIfAny(WithSeparator(projectDir) + name, kSmallFileLimit);
    if (!bytes) return std::nullopt;
    return std::string(bytes->begin(), bytes->end());
}

std::string ReadInputFile(const std::string& path, size_t limit) {
    const std::vector<uint8_t> bytes = ReadWholeFile(path, limit);
    return {bytes.begin(), bytes.end()};
}

void WriteOutputFile(const std::string& path, const std::string& text) {
    std::string name = NameOf(ResolveLinks(path));
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    for (const char* project :
         {kParamTmp, kParamWork, kNetparaTmp, kNetparaWork, "param.$$p", kProjectLockFile}) {
        if (name == project) {
            throw RuntimeError(kErrPathFileAccess,
                               "Cannot write " + Quoted(path) + ": " + Quoted(name) +
                                   " is a file of a project, not an output; nothing was written");
        }
    }
    WriteFileAtomically(path, {text.begin(), text.end()});
}

}  // namespace gantrix
