// SPDX-License-Identifier: Apache-2.0
#pragma once
// "Interrupt Counter": which of the counters C224..C255 count interrupts I0..I31. Opened
// from the timer/counter dialog, it keeps its unsaved state apart from that dialog's, so
// leaving it never clears the caller's DataChanged.

#include <array>

#include "common/qt/DialogBase.h"
#include "dialogs/frmInterruptCounter/InterruptCounterFields.h"

class QCheckBox;
class QLabel;
class QPushButton;

namespace gantrix {

class frmInterruptCounter : public DialogBase {
    Q_OBJECT

  public:
    explicit frmInterruptCounter(ModuleState& state);

    void SetInterruptCounterSettings();
    void SaveInterruptCounterSettings();
    void SetDefaultOfInterruptCounter();
    void PointerFlag_Click(int k);

    InterruptCounterFields Fields() const;

    std::array<QCheckBox*, kInterruptCounters> PointerFlag{};
    std::array<QLabel*, kInterruptCounters> Label1{};
    QLabel* Label2 = nullptr;
    QPushButton* OK = nullptr;
    QPushButton* Cancel = nullptr;
    QPushButton* Clear = nullptr;

    // The dialog's own DataChanged.
    bool DataChanged = false;

  protected:
    bool CheckSettings() override { return true; }  // nothing here can be wrong
    void SaveSettings() override { SaveInterruptCounterSettings(); }
    void SetDefaults() override { SetDefaultOfInterruptCounter(); }
    bool& DataChangedFlag() override { return DataChanged; }

  private:
    void ShowFields(const InterruptCounterFields& fields);
    void ShowPointerLabel(int k);
    void PointerFlag_KeyPress(int k, int& keyAscii);
};

}  // namespace gantrix
