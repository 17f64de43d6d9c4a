#include "store/ProjectLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "store/RuntimeError.h"

namespace gantrix {

ProjectLock::ProjectLock(const std::string& projectDir) : path_(projectDir + kProjectLockFile) {
    // The holder removes the file when it ends; a lock taken on a file that was removed (or
    // replaced) in between is no lock, so take it again on the file that is there now.
    for (int attempt = 0; attempt < 100; ++attempt) {
        const int fd = ::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        if (fd < 0) throw FileError("Cannot open the lock file", path_, errno);
        if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
            const int error = errno;
            ::close(fd);
            if (error == EWOULDBLOCK) return;
            throw FileError("Cannot lock", path_, error);
        }
        struct stat held {};
        struct stat named {};
        if (::fstat(fd, &held) == 0 && ::stat(path_.c_str(), &named) == 0 &&
            held.st_dev == named.st_dev && held.st_ino == named.st_ino) {
            fd_ = fd;
            return;
        }
        ::close(fd);
    }
    throw FileError("Cannot lock", path_, EAGAIN);
}

ProjectLock::~ProjectLock() {
    if (fd_ < 0) return;
    // Removed while still locked, so that no other run locks this file meanwhile. A file
    // that cannot be removed is harmless: the next run locks it again.
    ::unlink(path_.c_str());
    ::close(fd_);
}

}  // namespace gantrix
