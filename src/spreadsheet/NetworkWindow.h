// SPDX-License-Identifier: Apache-2.0
#pragma once
// A network workbook's window: the network block and the link data of the working parameter
// file "param.$$$" as tables of bytes (report/NetworkBytes.h), editable; Save writes the
// changed bytes into the file, with the mode bits of the workbook's mode and the network sum,
// and the parameter menu's OK takes them over.
//
// The component rewrites the file while the window is open (the network menu clears the
// network area when the mode changes). The window compares the file with what it shows
// whenever it is brought to the front, activated or saves: it shows the file as it is now,
// and unsaved edits stay only when the user says so.

#include <QString>
#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "spreadsheet/WorkbookWindow.h"

class QTableWidget;
class QTableWidgetItem;
class QTabWidget;

namespace gantrix::spreadsheet {

class NetworkWindow : public WorkbookWindow {
    Q_OBJECT

  public:
    NetworkWindow(SpreadsheetWorkbook& book, std::weak_ptr<SpreadsheetApplication> application);

    // Shows "param.$$$" of the project directory in TEMP!B30, for the mode index in
    // TEMP!B32.
    void AutoOpen() override;
    void Reactivate() override;
    // Writes the changed bytes; false when the file could not be written (the reason is
    // shown, the changes stay on the screen).
    bool SaveClicked();

    // The table of range r of kNetworkRanges ("Bytes(r)") and the cell of a byte.
    QTableWidgetItem* CellOf(int index) const;
    const std::map<int, uint8_t>& Edits() const { return edits_; }

    QTabWidget* Ranges = nullptr;
    std::array<QTableWidget*, 2> Bytes{};
    QPushButton* Save = nullptr;

  protected:
    // Unsaved changes: the user saves, discards them or stays.
    bool MayClose() override;
    void changeEvent(QEvent* event) override;

  private:
    void Load();
    // Brings the window up to date with the file when it changed under it. With unsaved edits
    // to the bytes shown, ask decides: the user is asked whether to keep them over the new
    // bytes (true), or nothing changes yet and the window remembers to ask (false).
    bool CatchUp(bool ask);
    void ShowBytes();
    void CellChanged(QTableWidgetItem* item);
    void UpdateSheet();

    std::string path_;
    std::string sheetName_;
    std::vector<uint8_t> file_;
    std::map<int, uint8_t> edits_;
    int modeIndex_ = -1;
    bool filling_ = false;
    bool asking_ = false;
};

}  // namespace gantrix::spreadsheet
