// SPDX-License-Identifier: Apache-2.0
#pragma once
// Fault injection over the C library's file calls (linked in, or under LD_PRELOAD): calls on
// paths under the armed directory, and on descriptors and DIR streams opened there, are
// numbered from 1; the at-th matching the plan fails undone (errno set; a close still closes)
// or SIGKILLs first. GANTRIX_FAULT_DIR in the environment arms before main, with _AT, _ERRNO
// ("EIO", "ENOSPC" or a number), _KILL=1, _OP and _NAME.

#include <string>
#include <vector>

namespace gantrix::faults {

struct Plan {
    std::string dir = {};  // absolute, without a trailing "/"
    long at = 0;           // the matching call that fails; 0 for none
    int error = 0;
    bool kill = false;      // SIGKILL instead of failing
    std::string op = {};    // only calls of this operation match ("open", "read", ...)
    std::string name = {};  // only calls whose path contains this match
};

struct Call {
    std::string op, path;  // for a rename, its target
    bool failed = false;
};

void Arm(const Plan& plan);
std::vector<Call> Disarm();  // stops numbering; the calls numbered since Arm

}  // namespace gantrix::faults
