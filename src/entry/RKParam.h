// SPDX-License-Identifier: Apache-2.0
#pragma once
// The component's one class: the host sets the eight properties and calls Param_main, which
// runs the whole parameter mode modally and says whether the parameters were saved.

#include <cstdint>
#include <string>

namespace gantrix {

struct ModuleState;

class RKParam {
  public:
    // The properties, in the order of the automation interface.
    std::string szPcName;            // CPU type code, e.g. "A3 "
    std::string ProjectName;         // project directory; "/" is appended when missing
    bool ContentChangeFlag = false;  // in: the host's change state; out: True after OK
    std::string LanguageMode;        // accepted and not used
    bool blnSubEditing1 = false;
    bool blnSubEditing2 = false;
    bool blnSubEditing3 = false;
    intptr_t hParentWnd = 0;  // receives WM_COMMAND 60000

    // 1 when "param.tmp" was rewritten, 0 otherwise. A runtime error (a failing file
    // operation, a device size that does not fit) is thrown to the caller. A run refused
    // before the menu opens (the project is in use by another run, its lock or its
    // "program.end" cannot be used, or its "param.tmp" cannot be loaded whole) shows the
    // reason in a box and returns 0 without touching a file.
    int16_t Param_main();

    // After Param_main returned: the reason a run was refused, or the warnings of a run
    // whose clean-up after the save failed (each naming its file); empty otherwise.
    const std::string& Notice() const { return notice_; }

  private:
    int16_t Refuse(const std::string& reason);

    std::string notice_;
};

// The state shared by every call in this process: hosts expect one image per process.
ModuleState& ProcessModuleState();

// Makes sure a QApplication exists (the host's, or one of the component's own).
void EnsureApplication();

}  // namespace gantrix
