#pragma once
// One run of the parameter mode through the C interface while a ModalDriver acts.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

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

RunOutcome RunParameterMode(const TempProject& project, ModalDriver& driver,
                            bool contentChanged = false);

// image with the words (index, value) and the check bytes of cpu, as the menu's OK saves it.
ParameterImage SavedWith(const ParameterImage& image, const std::string& cpu,
                         const std::vector<std::pair<int, int>>& words);

}  // namespace gantrix::test
