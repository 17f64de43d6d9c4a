#pragma once
// Making a new project: its directory and a default parameter file.

#include <string>

namespace gantrix {

// The CPU code as the tables hold it: a code given without its trailing blank ("A1") gets
// it back ("A1 "). Other texts are returned unchanged.
std::string NormalizeCpuCode(const std::string& code);

// Whether code is one of the thirteen CPU types.
bool IsKnownCpuType(const std::string& code);

// Creates directory (and its missing parents) and writes the default "param.tmp" of cpuType
// with its check bytes. Refuses an unknown CPU type, an existing "param.tmp" unless force,
// a path that is not a directory, and a directory it cannot write to: it raises a
// RuntimeError saying which and why, and removes the directories it created itself.
void CreateProject(const std::string& cpuType, const std::string& directory, bool force);

}  // namespace gantrix
