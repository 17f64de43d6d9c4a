// SPDX-License-Identifier: Apache-2.0
#pragma once
// Module model names of slots 0..63, eight slots to a page. It edits the I/O assignment
// dialog's copy of the slots and writes nothing itself: the I/O assignment saves the names
// on its OK. Having only a Close button (no OK, Cancel or Clear, nothing to check or
// restore), it is a plain form rather than a settings dialog.

#include <array>

#include "common/qt/FormBase.h"
#include "dialogs/frmIOLayout/IOLayoutFields.h"
#include "dialogs/frmTypeNameSet/TypeNameSetFields.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace gantrix {

class frmTypeNameSet : public FormBase {
    Q_OBJECT

  public:
    // assignment: the I/O assignment dialog's slot codes and names; the model-names-edited flag
    // in it is set on load.
    frmTypeNameSet(ModuleState& state, IOLayoutFields& assignment);

    int PageStart() const { return pageStart_; }

    // index 0 is "Previous ", index 1 "Next", in the order they stand.
    void ChangePage_Click(int index);
    void Close_Click();
    void AddName(const std::string& slotCode, int row);

    std::array<QLabel*, kNamesPerPage> Label2{};  // slot numbers
    std::array<QLineEdit*, kNamesPerPage> Text1{};
    std::array<QComboBox*, kNamesPerPage> Combo1{};
    std::array<QLabel*, 3> Label1{};  // "Slot No.", "Module", "Module name"
    std::array<QPushButton*, 2> ChangePage{};
    QPushButton* Close = nullptr;

  protected:
    bool FormKeyDown(QKeyEvent* event, QWidget* focus) override;
    void reject() override;  // Escape and the close box close as Close does

  private:
    void BuildControls();
    void Form_Load();
    void ChangeShowPage(bool forward);
    void ShowPage();
    void StorePage();
    int RowOf(const QWidget* widget, bool& inName) const;
    void FocusRow(int row, bool name);
    void FocusNextRow(int row);
    void Text1_KeyPress(int row, int& keyAscii);
    void Text1_Change(int row);
    void Combo1_KeyPress(int row, int& keyAscii);
    void Combo1_Change(int row);

    IOLayoutFields& slots_;
    int pageStart_ = 0;
    bool changed_ = false;
    bool showing_ = false;  // the page is being filled by code, not typed
};

}  // namespace gantrix
