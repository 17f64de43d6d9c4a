// SPDX-License-Identifier: Apache-2.0
#include "common/Messages.h"

#include <cstdint>

#include "common/ModuleState.h"
#include "common/StringTable.h"
#include "platform/user32/user32.h"

namespace gantrix {
namespace {

// Three-line messages join their lines with LF then CR, as the host's own texts do.
std::string ThreeLines(int first) {
    const std::string separator = "\n\r";
    return LoadResString(first) + separator + LoadResString(ids::EndInstructionWillBeDeleted) +
           separator + LoadResString(ids::PleaseCheckMemoryCapacity);
}

struct Row {
    int textId;  // 0: built by code
    int style;
};

// Indexed by message number.
constexpr Row kMessages[26] = {
    {0, kStyleStopOk},                                          // 0: pending error
    {ids::ChangedDataWillBeLost, kStyleYesNoNoDefault},         // 1
    {ids::InputAValue, kStyleExclamationOk},                    // 2
    {ids::SettingOutOfRange, kStyleExclamationOk},              // 3
    {ids::ExcelNotInstalled, kStyleExclamationOk},              // 4
    {ids::EditingNetworkInExcel, kStyleExclamationOk},          // 5
    {0, 0},                                                     // 6: no box
    {ids::DeviceNoOutOfRange, kStyleExclamationOk},             // 7
    {ids::InvalidRange, kStyleExclamationOk},                   // 8
    {ids::EndPositionExceeded, kStyleExclamationOk},            // 9: three lines
    {ids::Completed, kStyleInformationOk},                      // 10
    {ids::InvalidSettingData, kStyleExclamationOk},             // 11
    {ids::SetParametersBackToDefault, kStyleYesNoNoDefault},    // 12
    {ids::SubprogramCapacityZero, kStyleExclamationOk},         // 13
    {ids::InvalidIoAssignmentData, kStyleExclamationOk},        // 14
    {ids::PrintingParametersInExcel, kStyleExclamationOk},      // 15
    {ids::IoPointsExceeded, kStyleExclamationOk},               // 16
    {ids::MismatchWithRefreshParameters, kStyleExclamationOk},  // 17
    {ids::RemoteStationIoNotAssigned, kStyleExclamationOk},     // 18
    {ids::RemoteStationModuleMismatch, kStyleExclamationOk},    // 19
    {ids::SubEndPositionExceeded, kStyleExclamationOk},         // 20: three lines
    {ids::Sub2EndPositionExceeded, kStyleExclamationOk},        // 21: three lines
    {ids::Sub3EndPositionExceeded, kStyleExclamationOk},        // 22: three lines
    {ids::TotalMemoryExceeded, kStyleExclamationOk},            // 23
    {ids::StartExcelConfirm, kStyleYesNoYesDefault},            // 24
    {ids::DifferentFromCurrentMode, kStyleYesNoNoDefault},      // 25
};

}  // namespace

std::optional<MessageBoxLook> MessageBoxOf(int number, const std::string& pendingError) {
    if (number < 0 || number > 25 || number == 6) return std::nullopt;
    MessageBoxLook box;
    box.number = number;
    box.style = kMessages[number].style;
    box.caption = LoadResString(number == 23 ? ids::MessageBoxCaptionR : ids::MessageBoxCaption);
    switch (number) {
        case 0:
            box.text = pendingError;
            break;
        case 9:
        case 20:
        case 21:
        case 22:
            box.text = ThreeLines(kMessages[number].textId);
            break;
        default:
            box.text = LoadResString(kMessages[number].textId);
            break;
    }
    return box;
}

std::string AnswerText(MessageButton button) {
    switch (button) {
        case MessageButton::Ok:
            return "OK";
        case MessageButton::Cancel:
            return "Cancel";
        case MessageButton::Yes:
            return "YES";
        case MessageButton::No:
            return "No";
        case MessageButton::None:
            break;
    }
    return "";
}

void NotifyHost(const ModuleState& state) {
    // The host reads a 32-bit zero through lParam while the send is handled.
    int32_t zero = 0;
    SendMessageA(state.HostWnd, WM_COMMAND, kHostNotification, reinterpret_cast<intptr_t>(&zero));
}

std::string ShowMessage(ModuleState& state, int number) {
    const auto box = MessageBoxOf(number, state.PendingErrorDescription);
    PostMessageA(state.HostWnd, WM_COMMAND, kHostNotification, 0);
    MessageButton answer = MessageButton::None;
    if (box && state.Presenter) answer = state.Presenter->Present(*box);
    NotifyHost(state);
    return AnswerText(answer);
}

}  // namespace gantrix
