// SPDX-License-Identifier: Apache-2.0
#pragma once
// What the host program keeps beside a project's parameter file.

#include <string>

namespace rkparam {

// The CPU type a project was made for, kept beside its parameter file by "rkparam new":
// the parameter file itself does not say which CPU it belongs to.
inline constexpr const char* kCpuFile = "rkparam.cpu";

std::string WithSeparator(std::string dir);

// The CPU type noted by "rkparam new" in dir; "" when there is no note. Anything but a small
// regular file that can be read is refused with a RuntimeError naming it (a FIFO would
// block, a huge file would be read whole).
std::string ReadCpuNote(const std::string& dir);

}  // namespace rkparam
