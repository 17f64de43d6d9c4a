// SPDX-License-Identifier: Apache-2.0
#pragma once
// The spreadsheet application behind "excel.application": the automation model of
// platform/excel implemented by windows of this library. Its workbooks are the template files
// of docs/spreadsheet-workbooks.md; each open workbook has one window (WorkbookWindow), and
// closing the window closes the workbook.
//
// One instance runs at a time. It runs while someone holds it or while a workbook is open, so
// that GetObject finds it as long as a window of it is on the screen.

#include <QPointer>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/excel/Excel.h"
#include "report/Sheet.h"
#include "report/WorkbookTemplate.h"

namespace gantrix::spreadsheet {

class SpreadsheetApplication;
class WorkbookWindow;

class CellSheet final : public excel::Worksheet {
  public:
    explicit CellSheet(std::string name) : name_(std::move(name)) {}
    std::string Name() const override { return name_; }
    std::string CellText(int row, int column) const override;
    void SetCell(int row, int column, const std::string& value) override;
    // The cells become those of sheet.
    void Fill(const Sheet& sheet);

  private:
    std::string name_;
    std::map<std::pair<int, int>, std::string> cells_;
};

class SpreadsheetWorkbook final : public excel::Workbook {
  public:
    SpreadsheetWorkbook(SpreadsheetApplication& application, std::string path,
                        const WorkbookTemplate& layout);
    ~SpreadsheetWorkbook() override;

    std::string Name() const override { return name_; }
    std::vector<excel::Worksheet*> Worksheets() override;
    void Activate() override;

    const std::string& Path() const { return path_; }
    WorkbookKind Kind() const { return kind_; }
    CellSheet* FindSheet(const std::string& name) const;
    // The text of a cell of the sheet "TEMP", where the component hands over its data.
    std::string TempCell(int row, int column) const;
    // Every sheet but "TEMP" gives way to these, "TEMP" staying last.
    void ReplaceSheets(const std::vector<Sheet>& sheets);

    WorkbookWindow* Window() const { return window_; }

  private:
    friend class SpreadsheetApplication;
    SpreadsheetApplication& application_;
    std::string path_;
    std::string name_;
    WorkbookKind kind_;
    std::vector<std::unique_ptr<CellSheet>> sheets_;
    QPointer<WorkbookWindow> window_;
};

class SpreadsheetApplication final : public excel::Application,
                                     public std::enable_shared_from_this<SpreadsheetApplication> {
  public:
    // The running instance, or nullptr.
    static std::shared_ptr<SpreadsheetApplication> Running();
    // The running instance, else a new one; nullptr without a QApplication to show windows in.
    static std::shared_ptr<SpreadsheetApplication> Start();

    SpreadsheetApplication() = default;
    ~SpreadsheetApplication() override;

    std::vector<excel::Workbook*> Workbooks() override;
    // A workbook already open (by its file) is activated and returned. nullptr for a file
    // that cannot be read, is not one of our workbooks, or has the name of another open one.
    excel::Workbook* Open(const std::string& fileName) override;
    // "auto_open" (in any case) runs the active workbook's macro; other names do nothing.
    void Run(const std::string& macro) override;
    void SetVisible(bool visible) override;
    bool Visible() const { return visible_; }
    // The state of the active workbook's window.
    int WindowState() const override;
    void SetWindowState(int state) override;

    SpreadsheetWorkbook* ActiveWorkbook() const { return active_; }
    void Activate(SpreadsheetWorkbook* book);
    // The window of book was closed: the workbook is closed.
    void WorkbookClosed(SpreadsheetWorkbook* book);

  private:
    std::vector<std::unique_ptr<SpreadsheetWorkbook>> books_;
    SpreadsheetWorkbook* active_ = nullptr;
    bool visible_ = false;
    // Held while a workbook is open.
    std::shared_ptr<SpreadsheetApplication> keepRunning_;
};

// Registers the application as "excel.application" (the library does it when it loads; a
// test that registered something else there puts it back with this).
void RegisterSpreadsheetApplication();

}  // namespace gantrix::spreadsheet
