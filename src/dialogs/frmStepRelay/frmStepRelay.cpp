// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmStepRelay/frmStepRelay.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "common/DialogContext.h"
#include "common/StringTable.h"
#include "common/qt/DialogRegistry.h"
#include "common/qt/FormControls.h"

namespace gantrix {

frmStepRelay::frmStepRelay(ModuleState& state) : DialogBase(state, "frmStepRelay") {
    setWindowTitle(ResText(ids::SupplementaryFunctions));
    StepRelayFlag = new QCheckBox(ResText(ids::StepRelaySetting), this);
    StepRelayFlag->setObjectName("StepRelayFlag");
    NameField(StepRelayFlag, StepRelayFlag->text(), ResText(ids::SwitchBySpaceOrMouse));
    Label1 = new QLabel(ResText(ids::SwitchBySpaceOrMouse), this);
    Label1->setObjectName("Label1");
    MakeStandardButtons(OK, Cancel, nullptr);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(StepRelayFlag);
    layout->addWidget(Label1);
    layout->addLayout(StandardButtonRow());

    // Load: checked only for the step relay boundary 1535.
    Guard([this] { StepRelayFlag->setChecked(ReadStepRelay(State().image).StepRelayFlag); });
    connect(StepRelayFlag, &QCheckBox::toggled, this,
            [this] { Guard([this] { StepRelayFlag_Click(); }); });
    // Enter moves on to OK (the field order ends there); the space key toggles as usual.
    OnKeyPress(StepRelayFlag, [this](int& key) {
        if (key != 13) return;
        key = 0;
        FocusNextField(StepRelayFlag);
    });
    SetFieldOrder({StepRelayFlag});
    FinishLoad();
}

void frmStepRelay::StepRelayFlag_Click() {
    State().DataChanged = true;
}

void frmStepRelay::SaveStepRelaySettings() {
    WriteStepRelay({StepRelayFlag->isChecked()}, State().image, ContextOf(State()));
}

static DialogRegistrar frmStepRelayRegistrar("frmStepRelay", [](ModuleState& s) {
    frmStepRelay form(s);
    form.exec();
});

}  // namespace gantrix
