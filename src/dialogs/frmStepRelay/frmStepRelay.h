// SPDX-License-Identifier: Apache-2.0
#pragma once
// "Supplementary Functions" of the smallest CPU: one check box deciding whether the relays
// above M1535 serve as step relays.

#include "common/qt/DialogBase.h"
#include "dialogs/frmStepRelay/StepRelayFields.h"

class QCheckBox;
class QLabel;
class QPushButton;

namespace gantrix {

class frmStepRelay : public DialogBase {
    Q_OBJECT

  public:
    explicit frmStepRelay(ModuleState& state);

    void SaveStepRelaySettings();
    void StepRelayFlag_Click();

    QCheckBox* StepRelayFlag = nullptr;
    QLabel* Label1 = nullptr;
    QPushButton* OK = nullptr;
    QPushButton* Cancel = nullptr;

  protected:
    bool CheckSettings() override { return true; }  // a check box cannot be wrong
    void SaveSettings() override { SaveStepRelaySettings(); }
};

}  // namespace gantrix
