// SPDX-License-Identifier: Apache-2.0
#pragma once
// "Timer/Counter Setting": the partition of T into low-speed, high-speed and integration
// timers, the timer and counter points and their set-value devices. Which fields show
// depends on the CPU type (TimerGroupOf). OK refits the timer latch ranges to the new
// partition; the InterruptCounter button opens the interrupt counter dialog.

#include <array>
#include <vector>

#include "common/qt/DialogBase.h"
#include "dialogs/frmTimerCounter/TimerCounterFields.h"

class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace gantrix {

class SpinButton;

class frmTimerCounter : public DialogBase {
    Q_OBJECT

  public:
    explicit frmTimerCounter(ModuleState& state);
    ~frmTimerCounter() override;

    void SetTimerCounterSettings();
    bool CheckTimerCounterSettings();
    void SaveTimerCounterSettings();
    void SetDefaultOfTimerCounter();
    void InterruptCounter_Click();

    // The controls' contents.
    TimerCounterFields Fields() const;

    std::array<QLineEdit*, 8> Text1{};
    std::array<QLineEdit*, 2> Text2{};
    QLineEdit* Text3 = nullptr;
    QComboBox* Combo1 = nullptr;
    QComboBox* Combo2 = nullptr;
    std::array<SpinButton*, 8> VScroll1{};
    std::array<SpinButton*, 2> VScroll2{};
    SpinButton* VScroll3 = nullptr;
    QGroupBox* Frame1 = nullptr;  // timers
    QGroupBox* Frame2 = nullptr;  // counters
    QGroupBox* Frame3 = nullptr;  // interrupt counters
    std::vector<QLabel*> Label1;  // captions of the timer frame
    std::vector<QLabel*> Label2;  // captions of the counter frame
    QPushButton* OK = nullptr;
    QPushButton* Cancel = nullptr;
    QPushButton* Clear = nullptr;
    QPushButton* InterruptCounter = nullptr;

  protected:
    bool CheckSettings() override { return CheckTimerCounterSettings(); }
    void SaveSettings() override { SaveTimerCounterSettings(); }
    void SetDefaults() override { SetDefaultOfTimerCounter(); }
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // A text box with its spin button; start numbers also know their device box.
    struct Field {
        QLineEdit* text;
        SpinButton* spin;
        QComboBox* device;  // set for the start numbers Text1(7) and Text2(1)
        int min;            // the spin button's range when it has no device
        int max;
    };

    void BuildControls();
    void NameFields();
    void ShowGroup();
    void ShowFields(const TimerCounterFields& fields);
    bool IsHexField(const Field& field) const;
    void SyncSpin(Field& field);

    void Text_Change(Field& field);
    void Text_KeyPress(Field& field, int& keyAscii);
    void VScroll_Change(Field& field, int value);
    void Combo_Change(QComboBox* combo);
    void Combo_KeyPress(QComboBox* combo, int& keyAscii);
    // Re-applies the device box rules; true when a control changed.
    bool ApplyDeviceRule(QComboBox* combo);
    // Re-applies the point count rules of the timers or counters (focus changes).
    void ApplyPointRule(bool timers);
    void FocusChanged(QObject* watched);

    TimerGroup group_;
    std::vector<Field> fields_;
    bool updating_ = false;  // controls are being set by code, not by the user
};

}  // namespace gantrix
