// SPDX-License-Identifier: Apache-2.0
#pragma once
// Making a new project: its directory and a default parameter file.

#include <cstdint>
#include <string>
#include <vector>

namespace gantrix {

// The CPU code as the tables hold it: a code given without its trailing blank ("A1") gets
// it back ("A1 "). Other texts are returned unchanged.
std::string NormalizeCpuCode(const std::string& code);

// Whether code is one of the thirteen CPU types.
bool IsKnownCpuType(const std::string& code);

// A file a host keeps in the project beside "param.tmp" (rkparam notes the CPU type so).
struct ProjectFile {
    std::string name;
    std::vector<uint8_t> bytes;
};

// Creates directory (and its missing parents) and writes the default "param.tmp" of cpuType
// with its check bytes, and the files alongside, all or none: "param.tmp" is put in place
// last, and a failure before takes back what was done. Refuses an unknown CPU type, an
// existing "param.tmp" unless force, a file alongside that exists and is not a regular file,
// a project in use by a run, a path that is not a directory, and a directory it cannot
// write to: it raises a RuntimeError saying which and why, and removes the directories it
// created itself. Returns warnings (a directory that could not be synced).
std::vector<std::string> CreateProject(const std::string& cpuType, const std::string& directory,
                                       bool force, const std::vector<ProjectFile>& alongside = {});

}  // namespace gantrix
