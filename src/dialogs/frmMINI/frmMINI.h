// SPDX-License-Identifier: Apache-2.0
#pragma once
// "M-NET/MINI Auto-refresh Setting": the refresh of up to eight M-NET/MINI modules, one row
// of eleven cells per module. The number of modules decides which rows exist: a row comes
// into being with the new-row values when its module number appears, and is emptied when
// it goes. Opened from the supplementary functions dialog, it keeps its unsaved state in
// its own DataChanged, so leaving it never clears the caller's.

#include <array>

#include "common/qt/DialogBase.h"
#include "dialogs/frmMINI/MINIFields.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace gantrix {

class SpinButton;

class frmMINI : public DialogBase {
    Q_OBJECT

  public:
    explicit frmMINI(ModuleState& state);

    void SetMINISettings();
    bool CheckMINISettings();
    void SaveMINISettings();
    void SetDefaultOfMINI();

    MINIFields Fields() const;
    // Whether module m (1..8) has a row.
    bool RowExists(int m) const;

    QLineEdit* Text1 = nullptr;
    SpinButton* VScroll1 = nullptr;
    std::array<QLineEdit*, kMiniCells> Text2{};
    std::array<QLabel*, 2> Label1{};   // "Number of Modules", " (0-8) "
    std::array<QLabel*, 20> Label2{};  // 0..10 column captions, 12..19 module numbers
    std::array<QLabel*, 3> Label3{};   // help lines of the field that has the focus
    QPushButton* OK = nullptr;
    QPushButton* Cancel = nullptr;
    QPushButton* Clear = nullptr;

    // The dialog's own DataChanged.
    bool DataChanged = false;

  protected:
    bool CheckSettings() override { return CheckMINISettings(); }
    void SaveSettings() override { SaveMINISettings(); }
    void SetDefaults() override { SetDefaultOfMINI(); }
    bool& DataChangedFlag() override { return DataChanged; }
    bool FormKeyDown(QKeyEvent* event, QWidget* focus) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void BuildControls();
    void NameFields();
    int CellIndex(const QObject* widget) const;

    void Text1_Change();
    void Text1_KeyPress(int& keyAscii);
    void VScroll1_Change(int value);
    // Label2(11 + m) := text; a change runs Label2_Change.
    void SetModuleLabel(int m, const QString& text);
    void Label2_Change(int m);
    void Text2_Change(int index);
    void Text2_KeyPress(int index, int& keyAscii);
    void Text2_GotFocus(int index);

    int rPoints_ = 0;          // word 68 as read when the dialog opened
    bool spinByCode_ = false;  // the spin button follows Text1, not the user
};

}  // namespace gantrix
