#pragma once
// Fault injection for the file calls made on one directory's files. FileFaults.cpp defines
// open, read, write, rename, unlink, stat, ... (C linkage) over the C library's: linked into a
// test program they replace the library's for the whole process, and built as a module they
// do the same under LD_PRELOAD.
//
// Calls on paths under the armed directory, and on descriptors, FILE and DIR streams opened
// there, are numbered from 1. The Nth of those that match the plan's operation and name
// fails without being done (errno set; a close still closes), or kills the process with
// SIGKILL before it is done. With at 0 the calls are only numbered.
//
// Under LD_PRELOAD (and in a child the test program starts) the plan comes from the
// environment: GANTRIX_FAULT_DIR, GANTRIX_FAULT_AT, GANTRIX_FAULT_ERRNO ("EIO", "ENOSPC" or a
// number), GANTRIX_FAULT_KILL=1, GANTRIX_FAULT_OP, GANTRIX_FAULT_NAME, and GANTRIX_FAULT_LOG,
// a file to which each numbered call is appended as "<n> <op> <path>[ FAILED]".

#include <string>
#include <vector>

namespace gantrix::faults {

struct Plan {
    std::string dir;    // absolute, without a trailing "/"
    long at = 0;        // the matching call that fails; 0 for none
    int error = 0;      // errno of the failure
    bool kill = false;  // SIGKILL instead of failing
    std::string op;     // only calls of this operation match ("open", "read", "write", ...)
    std::string name;   // only calls whose path contains this match
};

struct Call {
    std::string op;
    std::string path;  // for a rename, its target
    bool failed = false;
};

void Arm(const Plan& plan);
// Stops numbering and returns the calls numbered since Arm.
std::vector<Call> Disarm();

// "EIO" and "ENOSPC" by name, other values as numbers.
int ErrnoFromText(const std::string& text);

}  // namespace gantrix::faults
