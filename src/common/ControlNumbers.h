// SPDX-License-Identifier: Apache-2.0
#pragma once
// Global control numbers: one number for each input control of the dialogs that collect
// their errors before reporting them, so that the error tables can name controls.
//
//   0..5    frmMemory Text1(0)..Text1(5)     6, 7, 8  frmMemory Text2, Text3, Text4
//   9..32   frmLatch Text1(0)..Text1(23)
//   33..40  frmTimerCounter Text1(0)..(7)    41, 42   frmTimerCounter Text2(0), Text2(1)
//   43      frmTimerCounter Text3            44, 45   frmTimerCounter Combo1, Combo2
//   46, 47  frmAssistance Text1(0), (1)      48, 49   frmAssistance Text2(0), (1)
//   50      frmAssistance Text3
//   51      frmRemote Text1                  52..79   frmRemote Text2(0)..Text2(27)
//   80      frmMINI Text1                    81..168  frmMINI Text2(0)..Text2(87)

#include <string>
#include <string_view>

namespace gantrix {

// The number of the control named control ("Text1(3)", "Text2", "Combo1") on the form named
// form; 0 for a form or control that has none.
int GetControlNo(std::string_view form, std::string_view control);

// The form and control name of a number (inverse of GetControlNo); empty for none.
struct ControlName {
    std::string form;
    std::string control;
};
ControlName ControlNameOf(int number);

}  // namespace gantrix
