#include "store/Project.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "platform/rkcmnt/DeviceTable.h"
#include "store/CheckSum.h"
#include "store/ParameterFiles.h"
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

void CreateProject(const std::string& cpuType, const std::string& directory, bool force) {
    if (!IsKnownCpuType(cpuType)) {
        throw RuntimeError(kErrPathFileAccess, "Unknown CPU type \"" + cpuType +
                                                   "\": expected one of A0J A0H A1S A1 A2C A2 "
                                                   "A3 A3H A2A A3A A2U A3U A4U");
    }
    if (directory.empty()) throw RuntimeError(kErrPathNotFound, "No project directory given");
    std::string dir = directory;
    if (dir.back() != '/') dir += '/';
    const std::string target = dir + kParamTmp;
    struct stat info {};
    if (!force && ::stat(target.c_str(), &info) == 0) {
        throw RuntimeError(kErrFileAlreadyOpen, "\"" + target +
                                                    "\" exists already; use --force to "
                                                    "replace it with the defaults");
    }

    const std::vector<std::string> created = MakeDirectories(directory);
    try {
        StoreState state;
        state.CpuType = cpuType;
        state.CpuCode = CpuCodeOf(cpuType);
        state.ProjectDir = dir;
        if (SetParameterDefault(cpuType + std::string(16, '\0'), state.CpuCode, state.image) != 0) {
            throw RuntimeError(kErrPathFileAccess, "No default parameters for \"" + cpuType + "\"");
        }
        SetCheckSum(state.image, state.CpuType, false);
        SaveParameterTemp(state);
    } catch (...) {
        for (auto it = created.rbegin(); it != created.rend(); ++it) ::rmdir(it->c_str());
        throw;
    }
}

}  // namespace gantrix
