// SPDX-License-Identifier: Apache-2.0
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
    std::map<DIR*, std::string> dirs;
};

State& S() {
    static State* state = new State;  // never destroyed: calls come until the very end
    return *state;
}

bool Under(const char* path) {
    const std::string& dir = S().plan.dir;
    return S().armed.load() && path != nullptr &&
           std::strncmp(path, dir.c_str(), dir.size()) == 0 &&
           (path[dir.size()] == '/' || path[dir.size()] == '\0');
}

// Numbers a call on path; true when it is to fail (errno set).
bool Hit(const char* op, const std::string& path) {
    if (path.empty() || !S().armed.load()) return false;
    std::lock_guard<std::mutex> guard(S().mutex);
    const Plan& plan = S().plan;
    const bool fail = (plan.op.empty() || plan.op == op) &&
                      (plan.name.empty() || path.find(plan.name) != std::string::npos) &&
                      ++S().matched == plan.at;
    S().calls.push_back({op, path, fail});
    if (!fail) return false;
    if (plan.kill) ::kill(::getpid(), SIGKILL);
    errno = plan.error;
    return true;
}

// The path a descriptor or stream was opened on ("" for one not numbered).
template <typename Key>
std::string PathOf(std::map<Key, std::string>& paths, Key key, bool forget = false) {
    std::lock_guard<std::mutex> guard(S().mutex);
    const auto it = paths.find(key);
    if (it == paths.end()) return "";
    std::string path = it->second;
    if (forget) paths.erase(it);
    return path;
}

template <typename Key>
void Track(std::map<Key, std::string>& paths, Key key, const char* path) {
    if (!Under(path)) return;
    std::lock_guard<std::mutex> guard(S().mutex);
    paths[key] = path;
}

// A close that fails has still released the descriptor or stream.
template <typename Real, typename Key>
int Close(Real real, const char* op, std::map<Key, std::string>& paths, Key key) {
    const bool fail = S().armed.load() && Hit(op, PathOf(paths, key, true));
    const int error = errno;
    const int result = real(key);
    if (fail) errno = error;
    return fail ? -1 : result;
}

const char* Env(const char* name) {
    return std::getenv(name) ? std::getenv(name) : "";
}

__attribute__((constructor)) void ArmFromEnvironment() {
    std::string dir = Env("GANTRIX_FAULT_DIR");
    if (dir.empty()) return;
    while (dir.size() > 1 && dir.back() == '/') dir.pop_back();
    const std::string error = Env("GANTRIX_FAULT_ERRNO");
    Arm({.dir = dir,
         .at = std::atol(Env("GANTRIX_FAULT_AT")),
         .error = error == "ENOSPC"                 ? ENOSPC
                  : error.empty() || error == "EIO" ? EIO
                                                    : std::atoi(error.c_str()),
         .kill = std::strcmp(Env("GANTRIX_FAULT_KILL"), "1") == 0,
         .op = Env("GANTRIX_FAULT_OP"),
         .name = Env("GANTRIX_FAULT_NAME")});
}

}  // namespace

void Arm(const Plan& plan) {
    std::lock_guard<std::mutex> guard(S().mutex);
    S().plan = plan;
    S().matched = 0;
    S().calls.clear();
    S().fds.clear();
    S().dirs.clear();
    S().armed = true;
}

std::vector<Call> Disarm() {
    std::lock_guard<std::mutex> guard(S().mutex);
    S().armed = false;
    return std::move(S().calls);
}

}  // namespace gantrix::faults

using namespace gantrix::faults;

// Each declaration matches the C library's (noexcept where it declares __THROW).
extern "C" {

#define GANTRIX_REAL(name) \
    static const auto real = reinterpret_cast<decltype(&::name)>(::dlsym(RTLD_NEXT, #name))
#define GANTRIX_WRAP(type, name, params, except, hit, args) \
    type name params except {                               \
        GANTRIX_REAL(name);                                 \
        return hit ? -1 : real args;                        \
    }
#define GANTRIX_FD(type, name, params, except, args)                                              \
    GANTRIX_WRAP(type, name, params, except, S().armed.load() && Hit(#name, PathOf(S().fds, fd)), \
                 args)
#define GANTRIX_PATH(name, params, args) \
    GANTRIX_WRAP(int, name, params, noexcept, Under(path) && Hit(#name, path), args)

GANTRIX_FD(ssize_t, read, (int fd, void* data, size_t size), , (fd, data, size))
GANTRIX_FD(ssize_t, write, (int fd, const void* data, size_t size), , (fd, data, size))
GANTRIX_FD(int, fsync, (int fd), , (fd))
GANTRIX_FD(int, fdatasync, (int fd), , (fd))
GANTRIX_FD(int, fchmod, (int fd, mode_t mode), noexcept, (fd, mode))
GANTRIX_FD(int, fstat, (int fd, struct stat* info), noexcept, (fd, info))
GANTRIX_FD(int, flock, (int fd, int operation), noexcept, (fd, operation))
GANTRIX_PATH(stat, (const char* path, struct stat* info), (path, info))
GANTRIX_PATH(lstat, (const char* path, struct stat* info), (path, info))
GANTRIX_PATH(unlink, (const char* path), (path))
GANTRIX_WRAP(int, rename, (const char* from, const char* to), noexcept,
             (Under(from) || Under(to)) && Hit("rename", to), (from, to))

int open(const char* path, int flags, ...) {
    GANTRIX_REAL(open);
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE) {
        va_list args;
        va_start(args, flags);
        mode = static_cast<mode_t>(va_arg(args, int));
        va_end(args);
    }
    if (Under(path) && Hit("open", path)) return -1;
    const int fd = real(path, flags, mode);
    if (fd >= 0) Track(S().fds, fd, path);
    return fd;
}

int close(int fd) {
    GANTRIX_REAL(close);
    return Close(real, "close", S().fds, fd);
}

DIR* opendir(const char* path) {
    GANTRIX_REAL(opendir);
    if (Under(path) && Hit("opendir", path)) return nullptr;
    DIR* dir = real(path);
    if (dir != nullptr) Track(S().dirs, dir, path);
    return dir;
}

struct dirent* readdir(DIR* dir) {
    GANTRIX_REAL(readdir);
    return S().armed.load() && Hit("readdir", PathOf(S().dirs, dir)) ? nullptr : real(dir);
}

int closedir(DIR* dir) {
    GANTRIX_REAL(closedir);
    return Close(real, "closedir", S().dirs, dir);
}

}  // extern "C"
