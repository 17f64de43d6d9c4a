// SPDX-License-Identifier: Apache-2.0
#pragma once
// The numbered message boxes of the component and the one routine that shows them.

#include <optional>
#include <string>

namespace gantrix {

struct ModuleState;

// Button and icon styles, as message-box style values.
enum MessageStyle : int {
    kStyleStopOk = 16,           // OK, stop icon
    kStyleExclamationOk = 48,    // OK, exclamation icon
    kStyleInformationOk = 64,    // OK, information icon
    kStyleYesNoYesDefault = 36,  // Yes/No, question icon, Yes the default
    kStyleYesNoNoDefault = 292,  // Yes/No, question icon, No the default
};

struct MessageBoxLook {
    int number = 0;
    std::string text;
    std::string caption;
    int style = 0;
};

enum class MessageButton { None, Ok, Cancel, Yes, No };

// Shows one box and returns the button that closed it. The product shows a QMessageBox;
// tests script the answers.
class MessagePresenter {
  public:
    virtual ~MessagePresenter() = default;
    virtual MessageButton Present(const MessageBoxLook& box) = 0;
};

// The box of message number (0..25); number 0 carries pendingError as its text. Number 6
// and numbers outside the table have no box.
std::optional<MessageBoxLook> MessageBoxOf(int number, const std::string& pendingError);

// "OK", "Cancel", "YES", "No", or "" for no box.
std::string AnswerText(MessageButton button);

// Posts WM_COMMAND 60000 to the host window, shows the box of number (texts loaded anew from
// the string table), sends WM_COMMAND 60000 with the address of a 32-bit zero, and returns
// the answer as AnswerText gives it. Without a box the answer is "".
std::string ShowMessage(ModuleState& state, int number);

// The notification the host receives on every activation and after every box.
void NotifyHost(const ModuleState& state);

inline constexpr unsigned kHostNotification = 60000;

}  // namespace gantrix
