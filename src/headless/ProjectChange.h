// SPDX-License-Identifier: Apache-2.0
#pragma once
// A change of a project's parameters without a display, as set and import make it: under the
// project's hold (headless/Headless.h for what is refused), saved as a run saves.

#include <functional>
#include <string>
#include <vector>

#include "headless/Headless.h"
#include "store/ProjectAccess.h"

namespace gantrix::headless {

// What a change makes of the image before it: the image to save, or the refusals.
struct ChangeOutcome {
    std::optional<ParameterImage> image;  // none when refused
    std::vector<Violation> refusals;
    size_t unlisted = 0;  // refusals beyond those listed
    std::vector<Violation> warnings;
    std::vector<std::string> notes;
};
using Change = std::function<ChangeOutcome(
    const ParameterImage& before, const DialogContext& context, const EndPositions& endPositions)>;

struct ProjectChange {
    std::string file;  // the parameter file
    bool saved = false;
    bool unchanged = false;  // taken, and the file already held it
    ChangeOutcome outcome;
    std::vector<std::string> saveWarnings;  // a directory that could not be synced
};

// Holds the project at path (ProjectInUse when a run has it), loads its parameter file
// checked, reads the END positions of its programs, applies change for cpuType and saves the
// result when it was taken and differs. Raises a RuntimeError naming the file on a failure;
// the file is then as it was.
ProjectChange ChangeProject(const ProjectPath& path, const std::string& cpuType,
                            const Change& change);

ProjectChange SetInProject(const ProjectPath& path, const std::string& cpuType,
                           const std::vector<Assignment>& assignments);
ProjectChange ImportIntoProject(const ProjectPath& path, const std::string& cpuType,
                                const std::string& text);

}  // namespace gantrix::headless
