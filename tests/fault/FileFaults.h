#pragma once
// Fault injection for the file calls on one directory's files: FileFaults.cpp defines open,
// read, write, rename, unlink, stat, ... over the C library's, for the whole process when
// linked into a program, or under LD_PRELOAD when built as a module. Calls on paths under
// the armed directory, and on descriptors and DIR streams opened there, are numbered from
// 1; the at-th of those matching the plan's operation and name fails without being done
// (errno set; a close still closes), or SIGKILLs the process first. A process whose
// environment has GANTRIX_FAULT_DIR is armed before main from GANTRIX_FAULT_DIR, _AT,
// _ERRNO ("EIO", "ENOSPC" or a number), _KILL=1, _OP and _NAME.

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
