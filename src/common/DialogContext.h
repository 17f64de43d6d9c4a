// SPDX-License-Identifier: Apache-2.0
#pragma once
// What a dialog's rules read besides its fields.

#include <string>

#include "common/ModuleState.h"

namespace gantrix {

struct DialogContext {
    std::string CpuType;
    DeviceMaxSizes DeviceMaxSize;
    bool blnSubEditing1 = false;
    bool blnSubEditing2 = false;
    bool blnSubEditing3 = false;
    std::string ProjectDir;
};

DialogContext ContextOf(const ModuleState& state);

// Whether cpu is one of the listed codes (exact comparison, trailing blanks included).
bool CpuIn(const std::string& cpu, std::initializer_list<const char*> codes);

}  // namespace gantrix
