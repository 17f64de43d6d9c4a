// SPDX-License-Identifier: Apache-2.0
#include "headless/ProjectChange.h"

#include "headless/Page.h"

namespace gantrix::headless {

ProjectChange ChangeProject(const ProjectPath& path, const std::string& cpuType,
                            const Change& change) {
    const ProjectHold hold(path);
    ProjectChange result;
    result.file = path.file;
    const ParameterImage before = hold.Load();
    const EndPositions end = ReadEndPositions(path);
    result.outcome = change(before, HeadlessContext(cpuType, path.projectDir), end);
    if (!result.outcome.image) return result;
    if (*result.outcome.image == before) {
        result.unchanged = true;
        return result;
    }
    result.saveWarnings = hold.Save(*result.outcome.image);
    result.saved = true;
    return result;
}

ProjectChange SetInProject(const ProjectPath& path, const std::string& cpuType,
                           const std::vector<Assignment>& assignments) {
    return ChangeProject(
        path, cpuType,
        [&](const ParameterImage& before, const DialogContext& context, const EndPositions& end) {
            SetOutcome set = Set(before, context, assignments, end);
            ChangeOutcome outcome;
            if (set.refusals.empty()) outcome.image = set.image;
            outcome.refusals = std::move(set.refusals);
            outcome.warnings = std::move(set.warnings);
            return outcome;
        });
}

ProjectChange ImportIntoProject(const ProjectPath& path, const std::string& cpuType,
                                const std::string& text) {
    return ChangeProject(
        path, cpuType,
        [&](const ParameterImage& before, const DialogContext& context, const EndPositions& end) {
            ImportOutcome import = ImportText(text, before, context, end);
            return ChangeOutcome{import.image, std::move(import.refusals), import.unlisted,
                                 std::move(import.warnings), std::move(import.notes)};
        });
}

}  // namespace gantrix::headless
