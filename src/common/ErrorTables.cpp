// SPDX-License-Identifier: Apache-2.0
#include "common/ErrorTables.h"

#include "common/Messages.h"
#include "common/ModuleState.h"

namespace gantrix {

void ErrorTables::Record(int message, int control) {
    ErrorMessageFlags.at(message) = true;
    if (control >= 0) ControlErrorFlags.at(control).at(message) = true;
}

bool ErrorTables::Any() const {
    for (bool flag : ErrorMessageFlags) {
        if (flag) return true;
    }
    return false;
}

bool ErrorTables::HasMessage(int message) const {
    return ErrorMessageFlags.at(message);
}

bool ErrorTables::ControlHasError(int control) const {
    for (bool flag : ControlErrorFlags.at(control)) {
        if (flag) return true;
    }
    return false;
}

bool ErrorTables::ControlHasMessage(int control, int message) const {
    return ControlErrorFlags.at(control).at(message);
}

bool ReportErrors(ModuleState& state, const ErrorTables& errors,
                  const std::function<void(int)>& paint) {
    const bool clean = !errors.Any();
    for (int n = 0; n <= kMaxMessageNo; ++n) {
        if (!errors.ErrorMessageFlags[n]) continue;
        if (ShowMessage(state, n) != "OK") continue;
        for (int c = 0; c <= kMaxControlNo; ++c) {
            if (errors.ControlErrorFlags[c][n] && paint) paint(c);
        }
    }
    return clean;
}

}  // namespace gantrix
