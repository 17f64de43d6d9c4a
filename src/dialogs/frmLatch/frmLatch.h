// SPDX-License-Identifier: Apache-2.0
#pragma once
// Latch Range Setting: a start and an end device number per device group, each box with a
// spin button and the group's permitted range beside it. The smallest CPU type takes one of
// three fixed patterns from the ChangeLatch buttons instead of typed ranges.

#include <array>

#include "common/qt/DialogBase.h"
#include "dialogs/frmLatch/LatchFields.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace gantrix {

class SpinButton;

class frmLatch : public DialogBase {
    Q_OBJECT

  public:
    explicit frmLatch(ModuleState& state);

    void SetLatchSettings();
    bool CheckLatchSettings();
    void SaveLatchSettings();
    void SetDefaultOfLatch();
    void ChangeLatchSettings(int index);

    void Text1_KeyPress(int index, int& keyAscii);
    void Text1_Change(int index);
    void VScroll1_Change(int index);
    void ChangeLatch_Click(int index);

    const LatchLimits& Limits() const { return limits_; }

    std::array<QLineEdit*, kLatchBoxes> Text1{};
    std::array<SpinButton*, kLatchBoxes> VScroll1{};
    std::array<QLabel*, kLatchBoxes> Label1{};  // 0..11 row names, 12..23 " -"
    std::array<QLabel*, kLatchRows> Label2{};   // range labels
    std::array<QPushButton*, kLatchPatterns> ChangeLatch{};
    QPushButton* OK = nullptr;
    QPushButton* Cancel = nullptr;
    QPushButton* Clear = nullptr;

  protected:
    bool CheckSettings() override { return CheckLatchSettings(); }
    void SaveSettings() override { SaveLatchSettings(); }
    void SetDefaults() override { SetDefaultOfLatch(); }

  private:
    void BuildControls();
    void NameBox(int i);
    LatchFields FieldsOfControls() const;
    void ShowFields(const LatchFields& fields);
    void LockTypedRanges();
    void SyncSpinFromText(int index);

    LatchLimits limits_;
    int rows_ = 8;
    bool textDrivesSpin_ = false;
};

}  // namespace gantrix
