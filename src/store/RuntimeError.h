// SPDX-License-Identifier: Apache-2.0
#pragma once
// A runtime error of the component: a number and a description. Event handlers catch it and
// end in ErrorExit; the entry call lets it reach the host.

#include <stdexcept>
#include <string>

namespace gantrix {

class RuntimeError : public std::runtime_error {
  public:
    RuntimeError(int number, const std::string& description)
        : std::runtime_error(description), number_(number) {}

    int Number() const { return number_; }
    std::string Description() const { return what(); }

  private:
    int number_;
};

// Error numbers, as the host tool knows them.
enum RuntimeErrorNumber : int {
    kErrOverflow = 6,
    kErrFileNotFound = 53,
    kErrFileAlreadyOpen = 55,
    kErrDiskFull = 61,
    kErrPermissionDenied = 70,
    kErrPathFileAccess = 75,
    kErrPathNotFound = 76,
};

// The overflow error of a value that does not fit where it is stored.
RuntimeError OverflowError(const std::string& what);

// A failed file operation: "<action> "<path>": <reason>", numbered after errnoValue.
RuntimeError FileError(const std::string& action, const std::string& path, int errnoValue);

}  // namespace gantrix
