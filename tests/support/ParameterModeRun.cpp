#include "support/ParameterModeRun.h"

#include "entry/GantrixA0J.h"
#include "store/CheckSum.h"

namespace gantrix::test {

RunOutcome RunParameterMode(const TempProject& project, ModalDriver& driver, bool contentChanged) {
    ::RKParam* object = RKParam_Create();
    RKParam_Let_szPcName(object, project.Cpu().c_str());
    std::string dir = project.Path();
    dir.pop_back();
    RKParam_Let_ProjectName(object, dir.c_str());
    RKParam_Let_ContentChangeFlag(object, contentChanged ? 1 : 0);
    RunOutcome outcome;
    driver.Run([&] { outcome.status = RKParam_Param_main(object, &outcome.result); });
    outcome.contentChanged = RKParam_Get_ContentChangeFlag(object) != 0;
    if (outcome.status != 0) outcome.error = RKParam_ErrorDescription(object);
    RKParam_Release(object);
    return outcome;
}

ParameterImage SavedWith(const ParameterImage& image, const std::string& cpu,
                         const std::vector<std::pair<int, int>>& words) {
    ParameterImage expected = image;
    for (const auto& [index, value] : words) expected.SetParamWord(value, index);
    SetCheckSum(expected, cpu, false);
    return expected;
}

}  // namespace gantrix::test
