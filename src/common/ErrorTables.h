// SPDX-License-Identifier: Apache-2.0
#pragma once
// The tables in which a dialog's check collects what it has to report: which messages, and
// for each message which controls (by global control number) caused it.

#include <array>
#include <functional>

namespace gantrix {

inline constexpr int kMaxMessageNo = 30;
inline constexpr int kMaxControlNo = 200;

// Messages the checks of several dialogs record.
inline constexpr int kMessageInputAValue = 2;      // a box left empty
inline constexpr int kMessageOutOfRange = 3;       // a value outside its range
inline constexpr int kMessageInvalidSetting = 11;  // a value that contradicts another

struct ErrorTables {
    std::array<bool, kMaxMessageNo + 1> ErrorMessageFlags{};
    std::array<std::array<bool, kMaxMessageNo + 1>, kMaxControlNo + 1> ControlErrorFlags{};

    // Records message for control (a global control number); control -1 records the message
    // alone.
    void Record(int message, int control);
    bool Any() const;
    bool HasMessage(int message) const;
    // Whether any message is recorded for control.
    bool ControlHasError(int control) const;
    bool ControlHasMessage(int control, int message) const;
};

struct ModuleState;

// Shows each recorded message once, in ascending number, through ShowMessage; when a box is
// answered "OK", calls paint for every control recorded for that message. The tables are
// the check's own, built fresh by each Validate function. Returns true when nothing was
// recorded.
bool ReportErrors(ModuleState& state, const ErrorTables& errors,
                  const std::function<void(int control)>& paint);

}  // namespace gantrix
