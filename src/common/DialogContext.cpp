// SPDX-License-Identifier: Apache-2.0
#include "common/DialogContext.h"

namespace gantrix {

DialogContext ContextOf(const ModuleState& state) {
    DialogContext context;
    context.CpuType = state.CpuType;
    context.DeviceMaxSize = state.DeviceMaxSize;
    context.blnSubEditing1 = state.blnSubEditing1;
    context.blnSubEditing2 = state.blnSubEditing2;
    context.blnSubEditing3 = state.blnSubEditing3;
    context.ProjectDir = state.ProjectDir;
    return context;
}

bool CpuIn(const std::string& cpu, std::initializer_list<const char*> codes) {
    for (const char* code : codes) {
        if (cpu == code) return true;
    }
    return false;
}

}  // namespace gantrix
