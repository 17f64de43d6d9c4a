// SPDX-License-Identifier: Apache-2.0
#pragma once
// I/O assignment: the module kind and points of the 128 slots, 64 slots to a page, set by
// one key per field; opens the model-name dialog for slots 0..63.

#include <array>

#include "common/qt/DialogBase.h"
#include "dialogs/frmIOLayout/IOLayoutFields.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace gantrix {

class frmIOLayout : public DialogBase {
    Q_OBJECT

  public:
    explicit frmIOLayout(ModuleState& state);

    // 0 on the page of slots 0..63, 64 on the page of slots 64..127.
    int PageStart() const { return page_ * kSlotsPerPage; }

    void OK_Click() override;
    void ChangePage_Click();
    void Type_Click();

    void SetIOLayoutSettings();
    bool CheckIOLayoutSettings();
    void SaveIOLayoutSettings();
    void SetIOValue();
    void SetDefaultOfIOLayout();

    std::array<QLineEdit*, kSlotsPerPage> Text1{};
    std::array<QLabel*, kSlotsPerPage> SlotNo{};  // slot numbers of the page
    QLabel* PageMarker = nullptr;                 // "0" or "64"
    QLabel* Label1 = nullptr;                     // the key hint
    std::array<QLabel*, 4> Label2{};              // "Slot No." over each column
    std::array<QLabel*, 4> Label3{};              // "I/O module" over each column
    QPushButton* ChangePage = nullptr;
    QPushButton* Type = nullptr;
    QPushButton* OK = nullptr;
    QPushButton* Cancel = nullptr;
    QPushButton* Clear = nullptr;

  protected:
    bool CheckSettings() override { return CheckIOLayoutSettings(); }
    void SaveSettings() override;
    void SetDefaults() override { SetDefaultOfIOLayout(); }
    void ChangePageKey(bool forward) override;
    bool FormKeyDown(QKeyEvent* event, QWidget* focus) override;

  private:
    void BuildControls();
    void Form_Load();
    void ChangeShowPage();
    void StorePage();
    void FillPage();
    int FieldIndex(const QWidget* widget) const;
    void Text1_KeyPress(int index, int& keyAscii);
    void Text1_Change(int index);

    IOLayoutFields slots_;
    int page_ = 0;
};

}  // namespace gantrix
