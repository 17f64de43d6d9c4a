// SPDX-License-Identifier: Apache-2.0
#pragma once
// One run of the parameter mode through the C interface while a ModalDriver acts.

#include <utility>

#include "entry/GantrixA0J.h"
#include "store/CheckSum.h"
#include "store/ParameterImage.h"
#include "support/ModalDriver.h"
#include "support/core/TestSupport.h"

namespace gantrix::test {

struct RunOutcome {
    int status = -1;      // RKParam_Param_main's own result: 0 unless a runtime error
    int16_t result = -1;  // 1 saved, 0 not
    bool contentChanged = false;
    std::string error;  // the runtime error's description
};

inline RunOutcome RunParameterMode(const TempProject& project, ModalDriver& driver,
                                   bool contentChanged = false) {
    ::RKParam* object = RKParam_Create();
    RKParam_Let_szPcName(object, project.Cpu().c_str());
    const std::string dir = project.Path().substr(0, project.Path().size() - 1);
    RKParam_Let_ProjectName(object, dir.c_str());
    RKParam_Let_ContentChangeFlag(object, contentChanged ? 1 : 0);
    RunOutcome outcome;
    driver.Run([&] { outcome.status = RKParam_Param_main(object, &outcome.result); });
    outcome.contentChanged = RKParam_Get_ContentChangeFlag(object) != 0;
    if (outcome.status != 0) outcome.error = RKParam_ErrorDescription(object);
    RKParam_Release(object);
    return outcome;
}

// image with the words (index, value) and the check bytes of cpu, as the menu's OK saves it.
inline ParameterImage SavedWith(const ParameterImage& image, const std::string& cpu,
                                const std::vector<std::pair<int, int>>& words) {
    ParameterImage expected = image;
    for (const auto& [index, value] : words) expected.SetParamWord(value, index);
    SetCheckSum(expected, cpu, false);
    return expected;
}

}  // namespace gantrix::test
