#include "fault/FileFaults.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>

namespace gantrix::faults {
namespace {

struct State {
    std::mutex mutex;
    std::atomic<bool> armed{false};
    Plan plan;
    long matched = 0;
    std::vector<Call> calls;
    std::map<int, std::string> fds;
    std::map<FILE*, int> files;
    std::map<DIR*, std::string> dirs;
    std::string log;
};

State& TheState() {
    static State* state = new State;  // never destroyed: calls come until the very end
    return *state;
}

template <typename F>
F Next(const char* name) {
    return reinterpret_cast<F>(::dlsym(RTLD_NEXT, name));
}

bool Under(const State& s, const char* path) {
    const std::string& dir = s.plan.dir;
    return path != nullptr && std::strncmp(path, dir.c_str(), dir.size()) == 0 &&
           (path[dir.size()] == '/' || path[dir.size()] == '\0');
}

void AppendLog(const std::string& file, const std::string& line) {
    using OpenFn = int (*)(const char*, int, ...);
    using WriteFn = ssize_t (*)(int, const void*, size_t);
    using CloseFn = int (*)(int);
    static const auto realOpen = Next<OpenFn>("open");
    static const auto realWrite = Next<WriteFn>("write");
    static const auto realClose = Next<CloseFn>("close");
    const int fd = realOpen(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (fd < 0) return;
    [[maybe_unused]] const ssize_t written = realWrite(fd, line.data(), line.size());
    realClose(fd);
}

// Numbers a call on path; true when it is to fail (errno set). Does not return when the plan
// kills.
bool Hit(const char* op, const std::string& path) {
    State& s = TheState();
    if (!s.armed.load()) return false;
    std::lock_guard<std::mutex> guard(s.mutex);
    const bool matches = (s.plan.op.empty() || s.plan.op == op) &&
                         (s.plan.name.empty() || path.find(s.plan.name) != std::string::npos);
    const bool fail = matches && ++s.matched == s.plan.at;
    s.calls.push_back({op, path, fail});
    if (!s.log.empty()) {
        AppendLog(s.log, std::to_string(s.calls.size()) + " " + op + " " + path +
                             (fail ? " FAILED\n" : "\n"));
    }
    if (!fail) return false;
    if (s.plan.kill) ::kill(::getpid(), SIGKILL);
    errno = s.plan.error;
    return true;
}

bool HitPath(const char* op, const char* path) {
    State& s = TheState();
    return s.armed.load() && Under(s, path) && Hit(op, path);
}

// The path of a numbered descriptor, or "" when it is not one.
std::string PathOf(int fd) {
    State& s = TheState();
    if (!s.armed.load()) return "";
    std::lock_guard<std::mutex> guard(s.mutex);
    const auto it = s.fds.find(fd);
    return it == s.fds.end() ? "" : it->second;
}

bool HitFd(const char* op, int fd) {
    const std::string path = PathOf(fd);
    return !path.empty() && Hit(op, path);
}

void Track(int fd, const char* path) {
    State& s = TheState();
    if (fd < 0 || !s.armed.load() || !Under(s, path)) return;
    std::lock_guard<std::mutex> guard(s.mutex);
    s.fds[fd] = path;
}

std::string Untrack(int fd) {
    State& s = TheState();
    std::lock_guard<std::mutex> guard(s.mutex);
    const auto it = s.fds.find(fd);
    if (it == s.fds.end()) return "";
    std::string path = it->second;
    s.fds.erase(it);
    return path;
}

const char* Env(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

// A child started with a plan in its environment is armed before main.
__attribute__((constructor)) void ArmFromEnvironment() {
    if (*Env("GANTRIX_FAULT_DIR") == '\0') return;
    Plan plan;
    plan.dir = Env("GANTRIX_FAULT_DIR");
    while (plan.dir.size() > 1 && plan.dir.back() == '/') plan.dir.pop_back();
    plan.at = std::atol(Env("GANTRIX_FAULT_AT"));
    plan.error = ErrnoFromText(Env("GANTRIX_FAULT_ERRNO"));
    plan.kill = std::strcmp(Env("GANTRIX_FAULT_KILL"), "1") == 0;
    plan.op = Env("GANTRIX_FAULT_OP");
    plan.name = Env("GANTRIX_FAULT_NAME");
    Arm(plan);
    TheState().log = Env("GANTRIX_FAULT_LOG");
}

}  // namespace

int ErrnoFromText(const std::string& text) {
    if (text == "EIO") return EIO;
    if (text == "ENOSPC") return ENOSPC;
    return text.empty() ? EIO : std::atoi(text.c_str());
}

void Arm(const Plan& plan) {
    State& s = TheState();
    std::lock_guard<std::mutex> guard(s.mutex);
    s.plan = plan;
    s.matched = 0;
    s.calls.clear();
    s.fds.clear();
    s.files.clear();
    s.dirs.clear();
    s.armed = true;
}

std::vector<Call> Disarm() {
    State& s = TheState();
    std::lock_guard<std::mutex> guard(s.mutex);
    s.armed = false;
    s.fds.clear();
    s.files.clear();
    s.dirs.clear();
    return std::move(s.calls);
}

}  // namespace gantrix::faults

using namespace gantrix::faults;

// The C library's functions, numbered as above. Each declaration matches the C library's
// (noexcept where it declares __THROW).
extern "C" {

#define GANTRIX_NEXT(name) static const auto real = Next<decltype(&::name)>(#name)

static int OpenWith(decltype(&::open) real, const char* path, int flags, va_list args) {
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE) {
        mode = static_cast<mode_t>(va_arg(args, int));
    }
    if (HitPath("open", path)) return -1;
    const int fd = real(path, flags, mode);
    Track(fd, path);
    return fd;
}

int open(const char* path, int flags, ...) {
    GANTRIX_NEXT(open);
    va_list args;
    va_start(args, flags);
    const int fd = OpenWith(real, path, flags, args);
    va_end(args);
    return fd;
}

int open64(const char* path, int flags, ...) {
    GANTRIX_NEXT(open64);
    va_list args;
    va_start(args, flags);
    const int fd = OpenWith(real, path, flags, args);
    va_end(args);
    return fd;
}

static FILE* FopenWith(decltype(&::fopen) real, const char* path, const char* mode) {
    if (HitPath("open", path)) return nullptr;
    FILE* file = real(path, mode);
    if (file != nullptr) {
        Track(::fileno(file), path);
        if (!PathOf(::fileno(file)).empty()) {
            State& s = TheState();
            std::lock_guard<std::mutex> guard(s.mutex);
            s.files[file] = ::fileno(file);
        }
    }
    return file;
}

FILE* fopen(const char* path, const char* mode) {
    GANTRIX_NEXT(fopen);
    return FopenWith(real, path, mode);
}

FILE* fopen64(const char* path, const char* mode) {
    GANTRIX_NEXT(fopen64);
    return FopenWith(real, path, mode);
}

int fclose(FILE* file) {
    GANTRIX_NEXT(fclose);
    int fd = -1;
    {
        State& s = TheState();
        std::lock_guard<std::mutex> guard(s.mutex);
        const auto it = s.files.find(file);
        if (it != s.files.end()) {
            fd = it->second;
            s.files.erase(it);
        }
    }
    const std::string path = fd >= 0 ? Untrack(fd) : "";
    const bool fail = !path.empty() && Hit("close", path);
    const int error = errno;
    const int result = real(file);
    if (!fail) return result;
    errno = error;
    return EOF;
}

ssize_t read(int fd, void* buffer, size_t size) {
    GANTRIX_NEXT(read);
    if (HitFd("read", fd)) return -1;
    return real(fd, buffer, size);
}

ssize_t write(int fd, const void* buffer, size_t size) {
    GANTRIX_NEXT(write);
    if (HitFd("write", fd)) return -1;
    return real(fd, buffer, size);
}

int fsync(int fd) {
    GANTRIX_NEXT(fsync);
    if (HitFd("fsync", fd)) return -1;
    return real(fd);
}

int fdatasync(int fd) {
    GANTRIX_NEXT(fdatasync);
    if (HitFd("fdatasync", fd)) return -1;
    return real(fd);
}

int fchmod(int fd, mode_t mode) noexcept {
    GANTRIX_NEXT(fchmod);
    if (HitFd("fchmod", fd)) return -1;
    return real(fd, mode);
}

int fstat(int fd, struct stat* info) noexcept {
    GANTRIX_NEXT(fstat);
    if (HitFd("fstat", fd)) return -1;
    return real(fd, info);
}

int flock(int fd, int operation) noexcept {
    GANTRIX_NEXT(flock);
    if (HitFd("flock", fd)) return -1;
    return real(fd, operation);
}

int close(int fd) {
    GANTRIX_NEXT(close);
    const std::string path = Untrack(fd);
    // A close that fails has still released the descriptor.
    const bool fail = !path.empty() && Hit("close", path);
    const int error = errno;
    const int result = real(fd);
    if (!fail) return result;
    errno = error;
    return -1;
}

int stat(const char* path, struct stat* info) noexcept {
    GANTRIX_NEXT(stat);
    if (HitPath("stat", path)) return -1;
    return real(path, info);
}

int lstat(const char* path, struct stat* info) noexcept {
    GANTRIX_NEXT(lstat);
    if (HitPath("lstat", path)) return -1;
    return real(path, info);
}

ssize_t readlink(const char* path, char* buffer, size_t size) noexcept {
    GANTRIX_NEXT(readlink);
    if (HitPath("readlink", path)) return -1;
    return real(path, buffer, size);
}

int rename(const char* from, const char* to) noexcept {
    GANTRIX_NEXT(rename);
    State& s = TheState();
    if (s.armed.load() && (Under(s, from) || Under(s, to)) && Hit("rename", to)) return -1;
    return real(from, to);
}

int unlink(const char* path) noexcept {
    GANTRIX_NEXT(unlink);
    if (HitPath("unlink", path)) return -1;
    return real(path);
}

int mkdir(const char* path, mode_t mode) noexcept {
    GANTRIX_NEXT(mkdir);
    if (HitPath("mkdir", path)) return -1;
    return real(path, mode);
}

int rmdir(const char* path) noexcept {
    GANTRIX_NEXT(rmdir);
    if (HitPath("rmdir", path)) return -1;
    return real(path);
}

DIR* opendir(const char* path) {
    GANTRIX_NEXT(opendir);
    if (HitPath("opendir", path)) return nullptr;
    DIR* dir = real(path);
    State& s = TheState();
    if (dir != nullptr && s.armed.load() && Under(s, path)) {
        std::lock_guard<std::mutex> guard(s.mutex);
        s.dirs[dir] = path;
    }
    return dir;
}

struct dirent* readdir(DIR* dir) {
    GANTRIX_NEXT(readdir);
    State& s = TheState();
    if (s.armed.load()) {
        std::string path;
        {
            std::lock_guard<std::mutex> guard(s.mutex);
            const auto it = s.dirs.find(dir);
            if (it != s.dirs.end()) path = it->second;
        }
        if (!path.empty() && Hit("readdir", path)) return nullptr;
    }
    return real(dir);
}

int closedir(DIR* dir) {
    GANTRIX_NEXT(closedir);
    State& s = TheState();
    std::string path;
    if (s.armed.load()) {
        std::lock_guard<std::mutex> guard(s.mutex);
        const auto it = s.dirs.find(dir);
        if (it != s.dirs.end()) {
            path = it->second;
            s.dirs.erase(it);
        }
    }
    const bool fail = !path.empty() && Hit("closedir", path);
    const int error = errno;
    const int result = real(dir);
    if (!fail) return result;
    errno = error;
    return -1;
}

}  // extern "C"
