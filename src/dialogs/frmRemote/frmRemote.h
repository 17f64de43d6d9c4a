// SPDX-License-Identifier: Apache-2.0
#pragma once
// "Remote I/O, Remote Terminal Setting" of the A2C: the total number of remote stations with
// its spin button, fourteen remote terminal entries in two halves of seven (start station and
// protocol; the keys 0 and 1 set the protocol), and the online mode. Opened from the
// supplementary-functions dialog, it keeps its unsaved state apart from that dialog's.

#include <array>

#include "common/qt/DialogBase.h"
#include "dialogs/frmRemote/RemoteFields.h"

class QButtonGroup;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace gantrix {

class SpinButton;

class frmRemote : public DialogBase {
    Q_OBJECT

  public:
    explicit frmRemote(ModuleState& state);

    void SetRemoteSettings();
    bool CheckRemoteSettings();
    void SaveRemoteSettings();
    void SetDefaultOfRemote();

    // The controls' contents.
    RemoteFields Fields() const;

    QLineEdit* Text1 = nullptr;
    SpinButton* VScroll1 = nullptr;
    // 0..13 start cells of entries 1..14, 14..27 their protocol cells
    std::array<QLineEdit*, 2 * kRemoteEntries> Text2{};
    std::array<QRadioButton*, 3> OnlineMode{};
    QGroupBox* Frame1 = nullptr;
    std::array<QLabel*, 5> Label1{};
    std::array<QLabel*, 20> Label2{};
    QPushButton* OK = nullptr;
    QPushButton* Cancel = nullptr;
    QPushButton* Clear = nullptr;

    // The dialog's own DataChanged.
    bool DataChanged = false;

  protected:
    bool CheckSettings() override { return CheckRemoteSettings(); }
    void SaveSettings() override { SaveRemoteSettings(); }
    void SetDefaults() override { SetDefaultOfRemote(); }
    bool& DataChangedFlag() override { return DataChanged; }
    bool FormKeyDown(QKeyEvent* event, QWidget* focus) override;

  private:
    void BuildControls();
    void NameFields();
    void ShowFields(const RemoteFields& fields);
    void FocusSelectedOnlineMode();
    // The cell of the station table at column 0..3 (left start, left protocol, right start,
    // right protocol) and row 0..6; the column and row of a cell, or -1 for other widgets.
    QLineEdit* Cell(int column, int row) const;
    int IndexOfCell(const QWidget* widget) const;

    void Text1_Change();
    void Text1_KeyPress(int& keyAscii);
    void VScroll1_Change(int value);
    void OnlineMode_Click();
    void StartCell_Change(int e);
    void StartCell_KeyPress(int e, int& keyAscii);
    void ProtocolCell_Change(int e);
    void ProtocolCell_KeyPress(int e, int& keyAscii);

    QButtonGroup* onlineModes_ = nullptr;
    bool updating_ = false;  // controls are being set by code, not by the user
};

}  // namespace gantrix
