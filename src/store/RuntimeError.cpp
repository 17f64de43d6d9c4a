// SPDX-License-Identifier: Apache-2.0
#include "store/RuntimeError.h"

#include <cerrno>
#include <cstring>

namespace gantrix {

RuntimeError OverflowError(const std::string& what) {
    return RuntimeError(kErrOverflow, "Overflow: " + what);
}

RuntimeError FileError(const std::string& action, const std::string& path, int errnoValue) {
    int number = kErrPathFileAccess;
    switch (errnoValue) {
        case ENOENT:
            number = kErrFileNotFound;
            break;
        case ENOTDIR:
            number = kErrPathNotFound;
            break;
        case ENOSPC:
        case EFBIG:
        case EDQUOT:
            number = kErrDiskFull;
            break;
        case EACCES:
        case EPERM:
        case EROFS:
            number = kErrPermissionDenied;
            break;
        default:
            break;
    }
    return RuntimeError(number, action + " \"" + path + "\": " + std::strerror(errnoValue));
}

}  // namespace gantrix
