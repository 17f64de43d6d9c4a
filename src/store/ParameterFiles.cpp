// SPDX-License-Identifier: Apache-2.0
#include "store/ParameterFiles.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstring>
#include <optional>
#include <string_view>

#include "platform/rkcmnt/rkcmnt.h"
#include "store/CheckSum.h"
#include "store/RuntimeError.h"

namespace gantrix {
namespace {

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::pair<std::string, std::string> SplitPath(const std::string& path) {
    const auto slash = path.find_last_of('/');
    if (slash == std::string::npos) return {"", path};
    return {path.substr(0, slash + 1), path.substr(slash + 1)};
}

// stat() that tells a missing entry (false) from a failure to look (raises).
bool StatEntry(const std::string& path, struct stat& info, bool followLinks) {
    const int result = followLinks ? ::stat(path.c_str(), &info) : ::lstat(path.c_str(), &info);
    if (result == 0) return true;
    if (errno == ENOENT || errno == ENOTDIR) return false;
    throw FileError("Cannot read", path, errno);
}

// The spelling of the entry at path: the exact name when it is there, else the first entry
// of the directory whose name matches without regard to case. regularOnly skips everything
// but regular files (links followed), as Dir does.
std::string Lookup(const std::string& path, bool regularOnly) {
    const auto [directory, name] = SplitPath(path);
    if (name.empty()) return "";
    struct stat info {};
    if (StatEntry(path, info, true)) {
        if (!regularOnly || S_ISREG(info.st_mode)) return name;
    } else if (!regularOnly && StatEntry(path, info, false)) {
        return name;  // a link to nothing
    }
    const std::string listed = directory.empty() ? "." : directory;
    DIR* dir = ::opendir(listed.c_str());
    if (dir == nullptr) {
        if (errno == ENOENT || errno == ENOTDIR) return "";
        throw FileError("Cannot read the directory", listed, errno);
    }
    const std::string wanted = Lower(name);
    std::string found;
    int error = 0;
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(dir);
        if (entry == nullptr) {
            error = errno;
            break;
        }
        if (entry->d_name == name || Lower(entry->d_name) != wanted) continue;
        const std::string candidate = directory + entry->d_name;
        try {
            if (regularOnly ? StatEntry(candidate, info, true) && S_ISREG(info.st_mode)
                            : StatEntry(candidate, info, false)) {
                found = entry->d_name;
                break;
            }
        } catch (...) {
            ::closedir(dir);
            throw;
        }
    }
    ::closedir(dir);
    if (error != 0) throw FileError("Cannot read the directory", listed, error);
    return found;
}

// write() until done; false with errno set on failure.
bool WriteAll(int fd, const uint8_t* data, size_t size) {
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size);
        if (n < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        data += n;
        size -= static_cast<size_t>(n);
    }
    return true;
}

std::vector<uint8_t> ImageBytes(const StoreState& state) {
    return {state.image.bytes().begin(), state.image.bytes().end()};
}

// The file a write to path replaces: path itself, or the end of the chain of symbolic links
// that starts there (a link to nothing leads to the file to be made). info receives the
// target's own status; st_mode 0 when it does not exist yet.
std::string ResolveLinksOf(const std::string& path, struct stat& info) {
    std::string current = path;
    for (int depth = 0; depth < 40; ++depth) {
        info = {};
        if (!StatEntry(current, info, false)) {
            info = {};
            return current;
        }
        if (!S_ISLNK(info.st_mode)) return current;
        char link[PATH_MAX];
        const ssize_t n = ::readlink(current.c_str(), link, sizeof link);
        if (n < 0) throw FileError("Cannot write", path, errno);
        if (static_cast<size_t>(n) == sizeof link) {
            throw FileError("Cannot write", path, ENAMETOOLONG);
        }
        const std::string next(link, static_cast<size_t>(n));
        current = next.front() == '/' ? next : SplitPath(current).first + next;
    }
    throw FileError("Cannot write", path, ELOOP);
}

// Refuses a write whose final target exists and is not a regular file: renaming over a
// device, a FIFO or a directory would put a regular file in its place. The kernel's own view
// of path is asked too, for links the chain above cannot follow (/proc/self/fd/1 to a pipe).
void RequireRegularTarget(const std::string& path, const std::string& target,
                          const struct stat& info) {
    const auto refuse = [&path](const std::string& what) {
        throw RuntimeError(kErrPathFileAccess,
                           "Cannot write \"" + path + "\": " + what + "; nothing was written");
    };
    if (info.st_mode != 0 && !S_ISREG(info.st_mode)) {
        refuse(target == path ? "it is " + KindOf(info.st_mode) + ", not a regular file"
                              : "it leads to \"" + target + "\", " + KindOf(info.st_mode) +
                                    ", not a regular file");
    }
    struct stat followed {};
    if (::stat(path.c_str(), &followed) != 0) return;  // nothing there yet, or refused below
    if (!S_ISREG(followed.st_mode)) {
        refuse("it leads to " + KindOf(followed.st_mode) + ", not a regular file");
    }
    if (info.st_mode == 0 || followed.st_dev != info.st_dev || followed.st_ino != info.st_ino) {
        refuse("its links cannot be followed to a file in a directory");
    }
}

RuntimeError TooLarge(const std::string& path, size_t limit, uint64_t size) {
    return RuntimeError(kErrPathFileAccess, "Cannot read \"" + path + "\": it holds " +
                                                std::to_string(size) + " bytes, more than the " +
                                                std::to_string(limit) + " such a file can hold");
}

// ".<name>.<pid>.<n>.part", the temporary name StagedFile gives.
bool IsPartName(const std::string& name) {
    static constexpr std::string_view kSuffix = ".part";
    if (name.size() < 2 + kSuffix.size() || name.front() != '.' ||
        name.compare(name.size() - kSuffix.size(), kSuffix.size(), kSuffix) != 0) {
        return false;
    }
    // Two dot-separated runs of digits before the suffix.
    size_t end = name.size() - kSuffix.size();
    for (int field = 0; field < 2; ++field) {
        size_t begin = end;
        while (begin > 0 && std::isdigit(static_cast<unsigned char>(name[begin - 1]))) --begin;
        if (begin == end || begin < 2 || name[begin - 1] != '.') return false;
        end = begin - 1;
    }
    return end > 1;  // a name of at least one character after the leading dot
}

}  // namespace

std::string Dir(const std::string& path) {
    return Lookup(path, true);
}

std::string FindEntry(const std::string& path) {
    return Lookup(path, false);
}

std::string ResolveLinks(const std::string& path) {
    struct stat info {};
    return ResolveLinksOf(path, info);
}

std::string KindOf(unsigned mode) {
    switch (mode & S_IFMT) {
        case S_IFREG:
            return "a regular file";
        case S_IFDIR:
            return "a directory";
        case S_IFIFO:
            return "a FIFO";
        case S_IFCHR:
            return "a character device";
        case S_IFBLK:
            return "a block device";
        case S_IFSOCK:
            return "a socket";
        case S_IFLNK:
            return "a symbolic link";
        default:
            return "a file of an unknown kind";
    }
}

std::string DirectoryOf(const std::string& path) {
    const std::string directory = SplitPath(path).first;
    return directory.empty() ? "./" : directory;
}

StagedFile::StagedFile(const std::string& path, const std::vector<uint8_t>& bytes) : path_(path) {
    static std::atomic<unsigned> counter{0};
    struct stat info {};
    target_ = ResolveLinksOf(path, info);
    RequireRegularTarget(path, target_, info);
    const auto [directory, name] = SplitPath(target_);
    temp_ = directory + "." + name + "." + std::to_string(::getpid()) + "." +
            std::to_string(counter++) + ".part";
    // Keep the mode of a file being replaced; a new file gets the usual mode less umask.
    const bool replacing = info.st_mode != 0;
    const mode_t mode = replacing ? info.st_mode & 07777 : 0666;
    const int fd = ::open(temp_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (fd < 0) throw FileError("Cannot write", path, errno);
    const bool written = (!replacing || ::fchmod(fd, mode) == 0) &&
                         WriteAll(fd, bytes.data(), bytes.size()) && ::fdatasync(fd) == 0;
    const int writeError = errno;
    // A file system may report a failed write only when the file is closed.
    const bool closed = ::close(fd) == 0;
    if (!written || !closed) {
        const int error = written ? errno : writeError;
        ::unlink(temp_.c_str());
        throw FileError("Cannot write", path, error);
    }
}

StagedFile::~StagedFile() {
    if (!committed_) ::unlink(temp_.c_str());
}

void StagedFile::Commit() {
    // What stands at the target may have changed since the file was staged.
    struct stat info {};
    if (::lstat(target_.c_str(), &info) != 0 && errno != ENOENT) {
        throw FileError("Cannot write", path_, errno);
    }
    if (info.st_mode != 0 && !S_ISREG(info.st_mode)) RequireRegularTarget(path_, target_, info);
    if (::rename(temp_.c_str(), target_.c_str()) != 0) {
        throw FileError("Cannot write", path_, errno);
    }
    committed_ = true;
}

void WriteFileAtomically(const std::string& path, const std::vector<uint8_t>& bytes) {
    StagedFile(path, bytes).Commit();
}

std::optional<std::vector<uint8_t>> ReadFileIfAny(const std::string& path, size_t limit) {
    // Not blocking on a FIFO: it is refused below like every other kind of file.
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0 && (errno == ENOENT || errno == ENOTDIR)) return std::nullopt;
    if (fd < 0) throw FileError("Cannot read", path, errno);
    struct stat info {};
    if (::fstat(fd, &info) != 0) {
        const int error = errno;
        ::close(fd);
        throw FileError("Cannot read", path, error);
    }
    if (!S_ISREG(info.st_mode)) {
        ::close(fd);
        throw RuntimeError(kErrPathFileAccess, "Cannot read \"" + path + "\": it is " +
                                                   KindOf(info.st_mode) + ", not a regular file");
    }
    // The size is looked at before anything is read; the reads stop past the limit too, for
    // a file that grows meanwhile.
    if (static_cast<uint64_t>(info.st_size) > limit) {
        ::close(fd);
        throw TooLarge(path, limit, static_cast<uint64_t>(info.st_size));
    }
    std::vector<uint8_t> bytes;
    uint8_t buffer[8192];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0) {
            if (errno == EINTR) continue;
            const int error = errno;
            ::close(fd);
            throw FileError("Cannot read", path, error);
        }
        if (n == 0) break;
        bytes.insert(bytes.end(), buffer, buffer + n);
        if (bytes.size() > limit) {
            ::close(fd);
            throw TooLarge(path, limit, bytes.size());
        }
    }
    ::close(fd);
    return bytes;
}

std::vector<uint8_t> ReadWholeFile(const std::string& path, size_t limit) {
    auto bytes = ReadFileIfAny(path, limit);
    if (!bytes) throw FileError("Cannot read", path, ENOENT);
    return std::move(*bytes);
}

void CopyFileAtomically(const std::string& from, const std::string& to) {
    WriteFileAtomically(to, ReadWholeFile(from));
}

void RemoveFile(const std::string& path) {
    if (::unlink(path.c_str()) != 0) throw FileError("Cannot delete", path, errno);
}

void SyncDirectory(const std::string& directory) {
    const int fd = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) throw FileError("Cannot sync the directory", directory, errno);
    // EINVAL: a file system that has nothing to sync for directories.
    const bool synced = ::fsync(fd) == 0 || errno == EINVAL;
    const int error = errno;
    ::close(fd);
    if (!synced) throw FileError("Cannot sync the directory", directory, error);
}

void SaveParameterFile(const StoreState& state, const std::string& name) {
    WriteFileAtomically(state.ProjectDir + name, ImageBytes(state));
}

void SaveParameterTemp(const StoreState& state) {
    SaveParameterFile(state, kParamTmp);
}

void MergeParameterFile(StoreState& state, const std::string& name) {
    std::vector<uint8_t> file = ReadWholeFile(state.ProjectDir + name);
    file.resize(kImageSize, 0);  // a short file reads as zeros past its end
    const ParameterImage& before = state.image;
    ParameterImage result = before;

    // The network block and link data come from the file, except the ranges that belong to
    // this component's own dialogs (1071 below, 2304..2417 and 2434..2435).
    for (int i = 1024; i < kImageSize; ++i) {
        const bool kept = i == 1071 || (i >= 2304 && i <= 2417) || i == 2434 || i == 2435;
        if (!kept) result[i] = file[i];
    }
    // 1071, the I/O-assignment flag, is taken from the file only while the image has none;
    // when the two disagree the network block changed and its sum has to be rewritten.
    const uint8_t f = file[1071], i = before[1071];
    result[1071] = i == 0xFF ? f : i;
    state.NetworkSumValid = i != 0xFF && f != i;

    const std::string& cpu = state.CpuType;
    if (cpu == "A2U" || cpu == "A3U" || cpu == "A4U") {
        result[138] = file[138];
        result[139] = file[139];
        for (int index : {138, 2432}) {
            if (result[index] == 0xFF && result[index + 1] == 0xFF) {
                result[index] = 0;
                result[index + 1] = 0;
            }
        }
    }
    state.image = result;
}

int32_t LoadParameter(const std::string& path, ParameterImage& image) {
    std::vector<char> buffer(path.begin(), path.end());
    buffer.push_back('\0');
    return RkLoadParameter(buffer.data(), image.data());
}

int16_t GetDeviceMaxSize(const std::string& device) {
    std::vector<char> buffer(device.begin(), device.end());
    buffer.push_back('\0');
    return DeviceSizeToModuleValue(RkGetDeviceMaxSize(buffer.data()), device);
}

int16_t DeviceSizeToModuleValue(int32_t size, const std::string& device) {
    if (size > 32767 || size < -32768) {
        throw OverflowError("device size " + std::to_string(size) + " of " + device);
    }
    return static_cast<int16_t>(size);
}

int32_t SetParameterDefault(const std::string& cpuBuffer, int16_t cpuCode, ParameterImage& image) {
    std::string app = GetAppPath();
    std::vector<char> appBuffer(app.begin(), app.end());
    appBuffer.push_back('\0');
    std::vector<char> cpu(cpuBuffer.begin(), cpuBuffer.end());
    cpu.push_back('\0');
    return RkSetParameter2Default(appBuffer.data(), cpu.data(), cpuCode, image.data());
}

std::string GetAppPath() {
    Dl_info info{};
    std::string path;
    if (::dladdr(reinterpret_cast<void*>(&GetAppPath), &info) != 0 && info.dli_fname) {
        path = info.dli_fname;
    }
    char resolved[PATH_MAX];
    if (!path.empty() && ::realpath(path.c_str(), resolved) != nullptr) path = resolved;
    std::string directory = SplitPath(path).first;
    if (directory.empty()) directory = "./";
    if (directory.back() != '/') directory += '/';
    return directory;
}

bool ClearAllParameters(StoreState& state, const std::function<std::string(int)>& showMessage) {
    const std::string buffer = state.CpuType + std::string(16, '\0');
    if (showMessage(12) != "YES") return false;
    // The buffer's NULs end the code for the library; an unknown code leaves all as it was.
    if (SetParameterDefault(buffer, state.CpuCode, state.image) != 0) return false;
    SaveParameterFile(state, kParamWork);
    if (Dir(state.ProjectDir + kNetparaWork) == kNetparaWork) {
        RemoveFile(state.ProjectDir + kNetparaWork);
    }
    showMessage(10);
    return true;
}

ParamLoad LoadParamTmp(const std::string& projectDir, ParameterImage& image) {
    std::string name;
    try {
        name = FindEntry(projectDir + kParamTmp);
    } catch (const RuntimeError& error) {
        return {false, error.Description()};
    }
    const std::string path = projectDir + (name.empty() ? std::string(kParamTmp) : name);
    const int32_t result = LoadParameter(path, image);
    if (result == kRkLoadOk) return {true, ""};
    if (name.empty()) return {false, ""};
    // The library gives only a code; say what is wrong with the file in the user's terms.
    const std::string quoted = "\"" + path + "\"";
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0)
        return {false, FileError("Cannot load", path, errno).Description()};
    if (!S_ISREG(info.st_mode)) return {false, "Cannot load " + quoted + ": not a regular file"};
    if (info.st_size != kImageSize) {
        return {false, "Cannot load " + quoted + ": it holds " + std::to_string(info.st_size) +
                           " bytes; a parameter file holds " + std::to_string(kImageSize)};
    }
    try {
        ReadWholeFile(path);
    } catch (const RuntimeError& error) {
        return {false, error.Description()};
    }
    return {false,
            "Cannot load " + quoted + ": reading it failed (code " + std::to_string(result) + ")"};
}

std::vector<std::string> DeleteWorkFiles(const StoreState& state) {
    struct WorkFile {
        const char* name;
        bool exact;  // compared exactly, else in lower case
    };
    static constexpr WorkFile kFiles[] = {{"param.$$p", true},    {"temp.dat", false},
                                          {"netpara.$$$", true},  {"param.$$$", true},
                                          {"netpara.net", false}, {"param.net", false}};
    std::vector<std::string> failures;
    for (const WorkFile& file : kFiles) {
        const std::string exact = state.ProjectDir + file.name;
        // The exact name is removed without a lookup first, so that a failing lookup cannot
        // leave it behind; ENOENT and EISDIR mean there is no such file.
        if (::unlink(exact.c_str()) == 0) continue;
        if (errno != ENOENT && errno != EISDIR) {
            failures.push_back(FileError("Cannot delete", exact, errno).Description());
            continue;
        }
        if (file.exact) continue;
        try {
            const std::string found = Dir(exact);
            if (Lower(found) == file.name) RemoveFile(state.ProjectDir + found);
        } catch (const RuntimeError& error) {
            failures.push_back(error.Description());
        }
    }
    return failures;
}

void RemoveStaleParts(const std::string& projectDir) {
    // Best effort: a part that stays is only clutter, and the next run tries again.
    DIR* dir = ::opendir(projectDir.c_str());
    if (dir == nullptr) return;
    std::vector<std::string> stale;
    while (const dirent* entry = ::readdir(dir)) {
        if (IsPartName(entry->d_name)) stale.emplace_back(entry->d_name);
    }
    ::closedir(dir);
    for (const std::string& name : stale) {
        struct stat info {};
        const std::string path = projectDir + name;
        if (::lstat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode)) ::unlink(path.c_str());
    }
}

void CopyWorkFiles(const StoreState& state) {
    const std::string& dir = state.ProjectDir;
    const std::string param = Dir(dir + kParamTmp);
    if (Lower(param) == kParamTmp) CopyFileAtomically(dir + param, dir + kParamWork);
    const std::string netpara = Dir(dir + kNetparaTmp);
    if (Lower(netpara) == kNetparaTmp && Dir(dir + kNetparaWork) != kNetparaWork) {
        CopyFileAtomically(dir + netpara, dir + kNetparaWork);
    }
}

std::vector<std::string> SaveRunFiles(StoreState& state) {
    const std::string& dir = state.ProjectDir;
    SetCheckSum(state.image, state.CpuType, state.NetworkSumValid);
    // An existing file is replaced under its own spelling ("PARAM.TMP" stays one file).
    const std::string paramName = Dir(dir + kParamTmp);
    StagedFile param(dir + (paramName.empty() ? std::string(kParamTmp) : paramName),
                     ImageBytes(state));
    const std::string netparaName = Dir(dir + kNetparaTmp);
    const std::string netpara =
        dir + (Lower(netparaName) == kNetparaTmp ? netparaName : std::string(kNetparaTmp));
    if (Dir(dir + kNetparaWork) == kNetparaWork) {
        StagedFile(netpara, ReadWholeFile(dir + kNetparaWork)).Commit();
    } else if (Lower(netparaName) == kNetparaTmp) {
        RemoveFile(netpara);
    }
    // "param.tmp" commits last: from here the parameters are saved.
    param.Commit();
    return SyncAfterSave(param.Target(), dir);
}

std::vector<std::string> SyncAfterSave(const std::string& target, const std::string& projectDir) {
    std::vector<std::string> warnings;
    std::vector<std::string> directories{SplitPath(target).first};
    if (directories.front() != projectDir) directories.push_back(projectDir);
    for (const std::string& directory : directories) {
        try {
            SyncDirectory(directory.empty() ? "." : directory);
        } catch (const RuntimeError& error) {
            warnings.push_back(error.Description() + " (\"" + target +
                               "\" is saved but may not survive a power loss)");
        }
    }
    return warnings;
}

std::vector<std::string> FinishRunFiles(StoreState& state, bool save) {
    std::vector<std::string> warnings;
    try {
        if (save) warnings = SaveRunFiles(state);
    } catch (const RuntimeError& error) {
        std::string description = error.Description();
        for (const std::string& failure : DeleteWorkFiles(state)) description += "\n" + failure;
        throw RuntimeError(error.Number(), description);
    }
    for (std::string& failure : DeleteWorkFiles(state)) warnings.push_back(std::move(failure));
    return warnings;
}

}  // namespace gantrix
