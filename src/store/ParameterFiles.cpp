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

bool IsRegularFile(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
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

}  // namespace

std::string Dir(const std::string& path) {
    const auto [directory, name] = SplitPath(path);
    if (name.empty()) return "";
    if (IsRegularFile(path)) return name;
    DIR* dir = ::opendir(directory.empty() ? "." : directory.c_str());
    if (dir == nullptr) return "";
    std::string found;
    const std::string wanted = Lower(name);
    while (const dirent* entry = ::readdir(dir)) {
        if (Lower(entry->d_name) == wanted && IsRegularFile(directory + entry->d_name)) {
            found = entry->d_name;
            break;
        }
    }
    ::closedir(dir);
    return found;
}

void WriteFileAtomically(const std::string& path, const std::vector<uint8_t>& bytes) {
    static std::atomic<unsigned> counter{0};
    const auto [directory, name] = SplitPath(path);
    const std::string temp = directory + "." + name + "." + std::to_string(::getpid()) + "." +
                             std::to_string(counter++) + ".part";
    // Keep the mode of a file being replaced; a new file gets the usual mode less umask.
    mode_t mode = 0666;
    struct stat info {};
    if (::stat(path.c_str(), &info) == 0) mode = info.st_mode & 07777;
    const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (fd < 0) throw FileError("Cannot write", path, errno);
    if (info.st_mode != 0) ::fchmod(fd, mode);
    if (!WriteAll(fd, bytes.data(), bytes.size()) || ::fdatasync(fd) != 0) {
        const int error = errno;
        ::close(fd);
        ::unlink(temp.c_str());
        throw FileError("Cannot write", path, error);
    }
    if (::close(fd) != 0 || ::rename(temp.c_str(), path.c_str()) != 0) {
        const int error = errno;
        ::unlink(temp.c_str());
        throw FileError("Cannot write", path, error);
    }
}

std::vector<uint8_t> ReadWholeFile(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) throw FileError("Cannot read", path, errno);
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
    }
    ::close(fd);
    return bytes;
}

void CopyFileAtomically(const std::string& from, const std::string& to) {
    WriteFileAtomically(to, ReadWholeFile(from));
}

void RemoveFile(const std::string& path) {
    if (::unlink(path.c_str()) != 0) throw FileError("Cannot delete", path, errno);
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

void DeleteWorkFiles(const StoreState& state) {
    struct WorkFile {
        const char* name;
        bool exact;  // compared exactly, else in lower case
    };
    static constexpr WorkFile kFiles[] = {{"param.$$p", true},    {"temp.dat", false},
                                          {"netpara.$$$", true},  {"param.$$$", true},
                                          {"netpara.net", false}, {"param.net", false}};
    for (const WorkFile& file : kFiles) {
        const std::string found = Dir(state.ProjectDir + file.name);
        if (file.exact ? found == file.name : Lower(found) == file.name) {
            RemoveFile(state.ProjectDir + found);
        }
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

void FinishRunFiles(StoreState& state, bool save) {
    const std::string& dir = state.ProjectDir;
    if (save) {
        SetCheckSum(state.image, state.CpuType, state.NetworkSumValid);
        SaveParameterTemp(state);
        if (Dir(dir + kNetparaWork) == kNetparaWork) {
            CopyFileAtomically(dir + kNetparaWork, dir + kNetparaTmp);
        } else {
            const std::string netpara = Dir(dir + kNetparaTmp);
            if (Lower(netpara) == kNetparaTmp) RemoveFile(dir + netpara);
        }
    }
    DeleteWorkFiles(state);
}

}  // namespace gantrix
