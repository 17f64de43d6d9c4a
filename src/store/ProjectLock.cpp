// SPDX-License-Identifier: Apache-2.0
#include "store/ProjectLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "store/ParameterFiles.h"
#include "store/RuntimeError.h"

namespace gantrix {

ProjectLock::ProjectLock(const std::string& projectDir) : path_(projectDir + kProjectLockFile) {
    const auto refuse = [this](unsigned mode) {
        throw RuntimeError(kErrPathFileAccess, "Cannot lock the project: \"" + path_ + "\" is " +
                                                   KindOf(mode) + ", not a regular file");
    };
    // The holder removes the file when it ends; a lock taken on a file that was removed (or
    // replaced) in between is no lock, so take it again on the file that is there now.
    for (int attempt = 0; attempt < 100; ++attempt) {
        // Never through a link (a dangling one would make a file outside the project) and
        // never blocking or opening a device: anything but a regular file is refused.
        struct stat named {};
        if (::lstat(path_.c_str(), &named) == 0 && !S_ISREG(named.st_mode)) refuse(named.st_mode);
        const int fd =
            ::open(path_.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666);
        if (fd < 0 && errno == ELOOP) refuse(S_IFLNK);
        if (fd < 0) throw FileError("Cannot open the lock file", path_, errno);
        struct stat held {};
        if (::fstat(fd, &held) != 0) {
            const int error = errno;
            ::close(fd);
            throw FileError("Cannot lock", path_, error);
        }
        if (!S_ISREG(held.st_mode)) {
            ::close(fd);
            refuse(held.st_mode);
        }
        if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
            const int error = errno;
            ::close(fd);
            if (error == EWOULDBLOCK) return;
            throw FileError("Cannot lock", path_, error);
        }
        if (::lstat(path_.c_str(), &named) == 0 && held.st_dev == named.st_dev &&
            held.st_ino == named.st_ino) {
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
