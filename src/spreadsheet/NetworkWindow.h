#pragma once
// A network workbook's window: the network block and the link data of the working parameter
// file "param.$$$" as tables of bytes (report/NetworkBytes.h), editable; Save writes the
// changed bytes into the file, from which the parameter menu's OK takes them over.

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

    // Shows "param.$$$" of the project directory in TEMP!B30.
    void AutoOpen() override;
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

  private:
    void Load();
    void ShowBytes();
    void CellChanged(QTableWidgetItem* item);
    void UpdateSheet();

    std::string path_;
    std::string sheetName_;
    std::vector<uint8_t> file_;
    std::map<int, uint8_t> edits_;
    bool filling_ = false;
};

}  // namespace gantrix::spreadsheet
