// SPDX-License-Identifier: Apache-2.0
#pragma once
// The check of projects on disk, many in one process: a pipeline checks every project of a
// plant in one call. What depends on the CPU type alone (the device sizes the host libraries
// give, the dialogs it has) is set up once per CPU type, not once per project.

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "headless/Headless.h"
#include "store/ProjectAccess.h"

namespace gantrix::headless {

struct ProjectFindings {
    std::string file;  // the parameter file
    std::string cpu;   // the CPU type it was checked for
    // What the check covers, in its order: the CPU type's dialogs in menu order, then "menu"
    // (the parameter menu's OK) and "file" (size and check bytes), as Violation::dialog names.
    std::vector<std::string> checks;
    std::vector<Violation> findings;  // none when the project passes
};

class ProjectChecker {
  public:
    // cpuOf gives the CPU type of a project directory, or raises why there is none.
    explicit ProjectChecker(std::function<std::string(const std::string& projectDir)> cpuOf);

    // Loads the parameter file checked, reads the END positions of the project's programs and
    // runs the whole check. A parameter file of another size is a finding of "file"; anything
    // else that cannot be read raises a RuntimeError naming it.
    ProjectFindings Check(const ProjectPath& path);

  private:
    struct CpuSetup {
        DialogContext context;
        std::vector<std::string> checks;
    };
    std::function<std::string(const std::string&)> cpuOf_;
    std::map<std::string, CpuSetup> setups_;
};

}  // namespace gantrix::headless
