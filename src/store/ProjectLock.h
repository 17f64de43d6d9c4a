// SPDX-License-Identifier: Apache-2.0
#pragma once
// A run's hold on its project. A second run on the same project (from this process or
// another) would delete the first run's working files or overwrite its save, so it is
// refused instead. The lock is an advisory flock on ".param.lock" in the project directory,
// kept for the whole run; the kernel drops it when its process dies, so a crashed run leaves
// no lock behind, and the file is removed when the run ends.

#include <string>

namespace gantrix {

inline constexpr const char* kProjectLockFile = ".param.lock";

class ProjectLock {
  public:
    // Takes the lock of projectDir (ending in "/"). Held() is false when another run holds
    // it; a lock file that cannot be made, or that is not a regular file (a link, a FIFO, a
    // device), raises a RuntimeError naming it.
    explicit ProjectLock(const std::string& projectDir);
    ~ProjectLock();
    ProjectLock(const ProjectLock&) = delete;
    ProjectLock& operator=(const ProjectLock&) = delete;

    bool Held() const { return fd_ >= 0; }

  private:
    std::string path_;
    int fd_ = -1;
};

}  // namespace gantrix
