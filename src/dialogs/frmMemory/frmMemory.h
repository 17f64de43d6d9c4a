// SPDX-License-Identifier: Apache-2.0
#pragma once
// The memory capacity dialog: program, microcomputer, comment and file-register capacities
// and the trace/latch work areas, with the total memory recomputed as the user types.
// The rules live in MemoryFields; this form shows them and moves values in and out.

#include <array>
#include <string>

#include "common/qt/DialogBase.h"
#include "dialogs/frmMemory/MemoryFields.h"

class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace gantrix {

class SpinButton;

class frmMemory : public DialogBase {
    Q_OBJECT

  public:
    explicit frmMemory(ModuleState& state);

    // Image to controls, then the total and, for "A0J", the microcomputer marker.
    void SetMemorySettings();
    // Validates every visible field, reports all failures; true when all pass.
    bool CheckMemorySettings();
    // Controls to image.
    void SaveMemorySettings();
    // The Clear values into the controls.
    void SetDefaultOfMemory();
    // The total memory in K bytes, as text.
    std::string CalcMemory() const;
    // The point count beside the comment (kind 0) or extension comment (kind 1).
    std::string SetPointNumber(int kind) const;

    // The controls' contents as the rules read them.
    MemoryFields Fields() const;
    // Form-level limits, fixed when the dialog opens.
    int16_t SequenceMax = 0;
    int16_t MicroMax = 0;
    int32_t ReservedK = 0;
    int16_t MainMax = 0;

    std::array<QLineEdit*, 6> Text1{};
    QLineEdit* Text2 = nullptr;
    QLineEdit* Text3 = nullptr;
    QLineEdit* Text4 = nullptr;
    QLineEdit* Text5 = nullptr;  // total memory, output only
    std::array<SpinButton*, 6> VScroll1{};
    SpinButton* VScroll2 = nullptr;
    SpinButton* VScroll3 = nullptr;
    SpinButton* VScroll4 = nullptr;
    QCheckBox* SanpFlag = nullptr;
    QCheckBox* SlatchDataFlag = nullptr;
    QCheckBox* SlatchFileFlag = nullptr;
    QPushButton* OK = nullptr;
    QPushButton* Cancel = nullptr;
    QPushButton* Clear = nullptr;

    // Labels whose texts depend on the CPU type or the values.
    QLabel* SequenceHeader = nullptr;     // "Sequence (1 -- 30)", or "Sequence" for "A0J"
    QLabel* MicroHeader = nullptr;        // "Microcomputer (0 -- 58)", or "Microcomputer" for "A0J"
    QLabel* MicroState = nullptr;         // "A0J": "None" or "Exist"
    std::array<QLabel*, 4> ProgramRow{};  // "Main", "Sub" / "Sub1", "Sub2", "Sub3"
    QLabel* CommentPoints = nullptr;      // SetPointNumber(0)
    QLabel* ExtCommentPoints = nullptr;   // SetPointNumber(1)
    QLabel* FileRegisterRange = nullptr;  // " (0-4) " or " (0-8) "

  protected:
    bool CheckSettings() override { return CheckMemorySettings(); }
    void SaveSettings() override { SaveMemorySettings(); }
    void SetDefaults() override { SetDefaultOfMemory(); }

  private:
    void BuildControls();
    void LayOut();
    void SetCaptions();
    void NameFields();
    void Form_Load();
    void PutFields(const MemoryFields& fields);

    QLineEdit* TextOf(int control) const;
    SpinButton* ScrollOf(int control) const;

    // Event handlers.
    void Text_Change(int control);
    void VScroll_Change(int control);
    void TraceLatch_Click();
    void Text_KeyPress(QLineEdit* box, int& keyAscii);
    void Flag_KeyPress(QCheckBox* box, int& keyAscii);

    MemoryLimits limits_;
    MemoryVisibility visible_;

    QGroupBox* programFrame_ = nullptr;
    QGroupBox* commentFrame_ = nullptr;
    QGroupBox* extCommentFrame_ = nullptr;
    QGroupBox* fileRegisterFrame_ = nullptr;
    QWidget* traceLatchFrame_ = nullptr;
    QGroupBox* statusLatchFrame_ = nullptr;
    QGroupBox* totalFrame_ = nullptr;
    QLabel* sequenceRange_ = nullptr;  // "A0J": " (1-7) "
    std::array<QLabel*, 4> stepUnit_{};
    std::array<QLabel*, 2> byteUnit_{};
    QLabel* traceLatchHint_ = nullptr;
};

}  // namespace gantrix
