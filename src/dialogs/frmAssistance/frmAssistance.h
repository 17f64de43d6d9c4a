// SPDX-License-Identifier: Apache-2.0
#pragma once
// "Supplementary Functions" of every CPU type but the smallest: step relays, RUN and PAUSE
// contacts, output mode, operating mode at error, watchdog and, by CPU type, END batch
// processing, "With Comment" and the I/O control method (AssistanceLayoutOf). AssistMenuItem
// opens the remote station dialog of the "A2C" or the M-NET/MINI refresh of the extended types.

#include <array>

#include "common/qt/DialogBase.h"
#include "dialogs/frmAssistance/AssistanceFields.h"

class QButtonGroup;
class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace gantrix {

class SpinButton;

class frmAssistance : public DialogBase {
    Q_OBJECT

  public:
    explicit frmAssistance(ModuleState& state);

    void SetAssistanceSettings();
    bool CheckAssistanceSettings();
    void SaveAssistanceSettings();
    void SetDefaltOfAssistance();
    void ChangePage();
    void StepRelayFlag_Click();

    // The controls' contents.
    AssistanceFields Fields() const;

    QCheckBox* StepRelayFlag = nullptr;
    std::array<QLineEdit*, 2> Text1{};
    std::array<SpinButton*, 2> VScroll1{};
    std::array<QLineEdit*, 2> Text2{};
    std::array<SpinButton*, 2> VScroll2{};
    std::array<QRadioButton*, 2> OutputMode{};
    std::array<QRadioButton*, 2> FuseCut{};
    std::array<QRadioButton*, 2> CalcErr{};
    std::array<QRadioButton*, 2> IOErr{};
    std::array<QRadioButton*, 2> ActErr{};
    QLineEdit* Text3 = nullptr;
    SpinButton* VScroll3 = nullptr;
    QCheckBox* EndManageFlag = nullptr;
    QCheckBox* CommentFlag = nullptr;
    std::array<QRadioButton*, 4> XYControl{};
    QLabel* Label1 = nullptr;  // the hint
    QPushButton* AssistMenuItem = nullptr;
    QPushButton* OK = nullptr;
    QPushButton* Cancel = nullptr;
    QPushButton* Clear = nullptr;

  protected:
    bool CheckSettings() override { return CheckAssistanceSettings(); }
    void SaveSettings() override { SaveAssistanceSettings(); }
    void SetDefaults() override { SetDefaltOfAssistance(); }

  private:
    // A text box with its spin button.
    struct Box {
        QLineEdit* text;
        SpinButton* spin;
        bool hex;
    };

    void BuildControls();
    void NameFields(int firstRelay, int lastRelay, int lastInput);
    void ShowLayout();
    void ShowFields(const AssistanceFields& fields);
    void EnableStepRelayBoxes();

    void Text_Change(Box& box);
    void Text_KeyPress(Box& box, int& keyAscii);
    void VScroll_Change(Box& box);
    void SyncSpin(Box& box);
    void Toggle_KeyPress(QWidget* control, int& keyAscii);
    void Option_Click();

    AssistanceLayout layout_;
    std::array<Box, 5> boxes_{};  // Text1(0), Text1(1), Text2(0), Text2(1), Text3
    QButtonGroup* outputGroup_ = nullptr;
    std::array<QButtonGroup*, 4> errorGroups_{};  // FuseCut, CalcErr, IOErr, ActErr
    QButtonGroup* xyGroup_ = nullptr;
    QLabel* stepRelayCaption_ = nullptr;
    QLabel* stepRelayDash_ = nullptr;
    QWidget* watchdogRow_ = nullptr;
    QGroupBox* commentFrame_ = nullptr;
    QGroupBox* xyFrame_ = nullptr;
    bool syncing_ = false;  // a text box is moving its spin button
};

}  // namespace gantrix
