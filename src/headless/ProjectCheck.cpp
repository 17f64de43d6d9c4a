// SPDX-License-Identifier: Apache-2.0
#include "headless/ProjectCheck.h"

#include "headless/Page.h"

namespace gantrix::headless {

ProjectChecker::ProjectChecker(std::function<std::string(const std::string&)> cpuOf)
    : cpuOf_(std::move(cpuOf)) {}

ProjectFindings ProjectChecker::Check(const ProjectPath& path) {
    ProjectFindings result;
    result.file = path.file;
    result.cpu = cpuOf_(path.projectDir);
    auto setup = setups_.find(result.cpu);
    if (setup == setups_.end()) {
        CpuSetup made{HeadlessContext(result.cpu), {}};
        for (const auto& page : PagesFor(made.context)) made.checks.push_back(page->Name());
        made.checks.insert(made.checks.end(), {"menu", "file"});
        setup = setups_.emplace(result.cpu, std::move(made)).first;
    }
    result.checks = setup->second.checks;
    ParameterImage image;
    try {
        image = LoadParameterImage(path.file);
    } catch (const WrongParameterFileSize& wrong) {
        result.findings.push_back({"file", "", -1, wrong.Description()});
        return result;
    }
    const EndPositions end = ReadEndPositions(path);
    // The dialogs read the project's own files (a U type's working file, the microcomputer
    // program), and the host libraries answer for the CPU of the last setup.
    DialogContext& context = setup->second.context;
    context.ProjectDir = path.projectDir;
    SetUpHostLibraries(result.cpu, path.projectDir);
    result.findings = headless::Check(image, context, end);
    return result;
}

}  // namespace gantrix::headless
