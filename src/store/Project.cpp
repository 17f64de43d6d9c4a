// SPDX-License-Identifier: Apache-2.0
#include "store/Project.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <optional>
#include <vector>

#include "platform/rkcmnt/DeviceTable.h"
#include "store/CheckSum.h"
#include "store/ParameterFiles.h"
#include "store/ProjectAccess.h"
#include "store/RuntimeError.h"

namespace gantrix {
namespace {

// Creates the missing directories of path, outermost first, and returns them so that a
// failure later on can take them away again.
std::vector<std::string> MakeDirectories(const std::string& path) {
    std::vector<std::string> created;
    std::string prefix;
    size_t position = 0;
    while (position <= path.size()) {
        const size_t slash = path.find('/', position);
        const size_t end = slash == std::string::npos ? path.size() : slash;
        prefix = path.substr(0, end);
        position = end + 1;
        if (prefix.empty() || prefix == "." || prefix == "..") continue;
        struct stat info {};
        if (::stat(prefix.c_str(), &info) == 0) {
            if (!S_ISDIR(info.st_mode)) {
                for (auto it = created.rbegin(); it != created.rend(); ++it) ::rmdir(it->c_str());
                throw RuntimeError(kErrPathNotFound, "Cannot make the project directory \"" + path +
                                                         "\": \"" + prefix +
                                                         "\" is a file, not a directory");
            }
            continue;
        }
        if (::mkdir(prefix.c_str(), 0777) != 0) {
            const int error = errno;
            for (auto it = created.rbegin(); it != created.rend(); ++it) ::rmdir(it->c_str());
            throw FileError("Cannot make the project directory", prefix, error);
        }
        created.push_back(prefix);
    }
    return created;
}

}  // namespace

std::string NormalizeCpuCode(const std::string& code) {
    if (code.size() == 2) {
        const std::string padded = code + " ";
        if (IsKnownCpuType(padded)) return padded;
    }
    return code;
}

bool IsKnownCpuType(const std::string& code) {
    return platform::FindDeviceSizes(code) != nullptr;
}

std::vector<std::string> CreateProject(const std::string& cpuType, const std::string& directory,
                                       bool force, const std::vector<ProjectFile>& alongside) {
    if (!IsKnownCpuType(cpuType)) {
        throw RuntimeError(kErrPathFileAccess, "Unknown CPU type \"" + cpuType +
                                                   "\": expected one of A0J A0H A1S A1 A2C A2 "
                                                   "A3 A3H A2A A3A A2U A3U A4U");
    }
    if (directory.empty()) throw RuntimeError(kErrPathNotFound, "No project directory given");
    std::string dir = directory;
    if (dir.back() != '/') dir += '/';
    const std::string existing = FindEntry(dir + kParamTmp);
    if (!force && !existing.empty()) {
        throw RuntimeError(kErrFileAlreadyOpen, "\"" + dir + existing +
                                                    "\" exists already; use --force to "
                                                    "replace it with the defaults");
    }
    // What each file alongside held before, to put back when "param.tmp" cannot be written.
    std::vector<std::optional<std::vector<uint8_t>>> previous;
    for (const ProjectFile& file : alongside) {
        const std::string path = dir + file.name;
        struct stat info {};
        if (::lstat(path.c_str(), &info) != 0) {
            if (errno != ENOENT && errno != ENOTDIR) throw FileError("Cannot read", path, errno);
            previous.emplace_back();
            continue;
        }
        // Refuses a FIFO, a directory, ...; these notes are small.
        previous.emplace_back(ReadWholeFile(path, kSmallFileLimit));
    }

    const std::vector<std::string> created = MakeDirectories(directory);
    try {
        const ProjectHold hold(LocateProject(dir));
        StoreState state;
        state.CpuType = cpuType;
        state.CpuCode = CpuCodeOf(cpuType);
        state.ProjectDir = dir;
        if (SetParameterDefault(cpuType + std::string(16, '\0'), state.CpuCode, state.image) != 0) {
            throw RuntimeError(kErrPathFileAccess, "No default parameters for \"" + cpuType + "\"");
        }
        SetCheckSum(state.image, state.CpuType, false);
        StagedFile param(hold.Path().file,
                         {state.image.bytes().begin(), state.image.bytes().end()});
        std::vector<std::unique_ptr<StagedFile>> staged;
        for (const ProjectFile& file : alongside) {
            staged.push_back(std::make_unique<StagedFile>(dir + file.name, file.bytes));
        }
        size_t committed = 0;
        try {
            for (; committed < staged.size(); ++committed) staged[committed]->Commit();
            param.Commit();
        } catch (...) {
            for (size_t i = 0; i < committed; ++i) {
                const std::string path = dir + alongside[i].name;
                try {
                    if (previous[i]) {
                        WriteFileAtomically(path, *previous[i]);
                    } else {
                        RemoveFile(path);
                    }
                } catch (const RuntimeError&) {
                    // The failure of "param.tmp" is the one to report.
                }
            }
            throw;
        }
        return SyncAfterSave(param.Target(), dir);
    } catch (...) {
        for (auto it = created.rbegin(); it != created.rend(); ++it) ::rmdir(it->c_str());
        throw;
    }
}

}  // namespace gantrix
