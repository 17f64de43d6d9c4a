// SPDX-License-Identifier: Apache-2.0
#pragma once
// The network/link menu of the "A2A" and "A3A": the user picks the MORNET mode the network
// parameters follow, and OK starts their editing in that mode's network workbook. When the
// stored network data belong to another mode, the user may clear them first (message 25);
// the clearing goes to "param.$$$" at once. The menu stays open until Cancel.

#include <array>

#include "common/qt/FormBase.h"

class QButtonGroup;
class QPushButton;
class QRadioButton;

namespace gantrix {

class frmNetworkMenu : public FormBase {
    Q_OBJECT

  public:
    explicit frmNetworkMenu(ModuleState& state);

    // NetworkMode from the image (see NetworkModeOf).
    void GetMode();
    // Selects the option button of NetworkMode; a mode without one changes nothing.
    void SetFlag();
    // True when the editing of mode index must not start: the stored data are of another
    // mode and the user declined to clear them.
    bool CheckMode(int index);
    // OK's action: takes over "param.$$$", checks the mode, opens the mode's workbook.
    void ChangePage(int index);

    void OK_Click();
    void Cancel_Click();

    std::array<QRadioButton*, 3> MenuItem{};
    QPushButton* OK = nullptr;
    QPushButton* Cancel = nullptr;

  protected:
    bool FormKeyDown(QKeyEvent* event, QWidget* focus) override;

  private:
    void Form_Load();

    QButtonGroup* group_ = nullptr;
};

}  // namespace gantrix
