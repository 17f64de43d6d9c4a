// SPDX-License-Identifier: Apache-2.0
#pragma once
// The parameter workbook's window: the parameter report (report/ParameterReport.h), one tab
// per sheet, which the user prints (print preview and print dialog, PDF included) and saves
// as an .xlsx file.

#include <QString>
#include <vector>

#include "report/Sheet.h"
#include "spreadsheet/WorkbookWindow.h"

class QPrinter;
class QTabWidget;
class QTextDocument;

namespace gantrix::spreadsheet {

class ReportWindow : public WorkbookWindow {
    Q_OBJECT

  public:
    ReportWindow(SpreadsheetWorkbook& book, std::weak_ptr<SpreadsheetApplication> application);

    // Reads the parameter file of TEMP!A3 for the CPU type of TEMP!A2 and shows its report.
    void AutoOpen() override;

    // The report as printed: a document of every sheet, on pages headed with the project and
    // the CPU type and footed with the date printed, the sheet and "page N of M".
    QString ReportHtml() const;
    void PrintTo(QPrinter& printer) const;
    // The sheet each page printed on printer belongs to, page by page.
    QStringList PageSheets(QPrinter& printer) const;
    // The document name and the orientation the report prints in.
    void SetUpPrinter(QPrinter& printer) const;
    // Saves the sheets; false (and the reason in a message box and the status line) when
    // the file could not be written.
    bool SaveXlsxTo(const QString& path);

    // Behind the buttons: the print dialog, the print preview, the file dialog then
    // SaveXlsxTo.
    void PrintClicked();
    void PrintPreviewClicked();
    void SaveXlsxClicked();

    QTabWidget* Sheets = nullptr;
    QPushButton* Print = nullptr;
    QPushButton* PrintPreview = nullptr;
    QPushButton* SaveXlsx = nullptr;

  private:
    struct Pages;
    // The report laid out in pages for printer, into document.
    Pages LayOut(QTextDocument& document, QPrinter& printer) const;
    void ShowSheets();
    void EnableOutput(bool enabled);

    std::vector<Sheet> sheets_;
    QString title_;
    QString subtitle_;
    QString projectDir_;
    QString cpu_;
};

}  // namespace gantrix::spreadsheet
