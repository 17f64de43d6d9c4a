// SPDX-License-Identifier: Apache-2.0
#pragma once
// The parameter menu: the first and last window of a run. Its items open the settings
// dialogs; OK checks the END positions and the total memory and asks the entry call to save,
// Cancel (or the close box) leaves without saving, asking first when something changed.

#include <array>

#include "common/qt/FormBase.h"

class QGroupBox;
class QLabel;
class QPushButton;

namespace gantrix {

class frmMenu : public FormBase {
    Q_OBJECT

  public:
    explicit frmMenu(ModuleState& state);

    // The action of item index (0..7): opens its dialog or hands over to the spreadsheet, or
    // does nothing when the CPU type has none or the dialog has not joined the component.
    void ChangePage(int index);

    // The name under which the dialog registry holds item index's action for the CPU type
    // of the run; empty when the item does nothing for it.
    std::string ActionOf(int index) const;

    void MenuItem_Click(int index);
    void OK_Click();
    void Cancel_Click();

    std::array<QPushButton*, 8> MenuItem{};
    QGroupBox* Frame1 = nullptr;
    QLabel* Label1 = nullptr;
    QPushButton* OK = nullptr;
    QPushButton* Cancel = nullptr;

  protected:
    bool FormKeyDown(QKeyEvent* event, QWidget* focus) override;
    void reject() override;  // the close box and Escape (Form_QueryUnload)

  private:
    void Form_Load();
    bool AskBeforeLeaving();
};

}  // namespace gantrix
