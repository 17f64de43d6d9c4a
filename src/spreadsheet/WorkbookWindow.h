// SPDX-License-Identifier: Apache-2.0
#pragma once
// The window of an open workbook ("frmSpreadsheet"). It is owned by the window that is modal
// when the workbook opens, so that the user can work in it while that window waits in its
// modal loop; when its owner closes, it passes to the modal window beneath (or stands alone).
// Closing it closes the workbook.

#include <QPointer>
#include <QWidget>
#include <memory>

class QLabel;
class QPushButton;

namespace gantrix::spreadsheet {

class SpreadsheetApplication;
class SpreadsheetWorkbook;

class WorkbookWindow : public QWidget {
    Q_OBJECT

  public:
    WorkbookWindow(SpreadsheetWorkbook& book, std::weak_ptr<SpreadsheetApplication> application);
    ~WorkbookWindow() override;

    // The workbook's macro "auto_open": reads the "TEMP" cells and shows the workbook's data.
    virtual void AutoOpen() = 0;
    // The application brings the workbook to the front again; a window showing a file the
    // component may have rewritten catches up with it first.
    virtual void Reactivate() {}

    QWidget* Owner() const { return owner_; }

    QLabel* Heading = nullptr;
    QLabel* Status = nullptr;
    QPushButton* Close = nullptr;

  protected:
    SpreadsheetWorkbook* Book() const { return book_; }
    // Whether the window may close now (it may ask the user); the workbook closes after it.
    virtual bool MayClose() { return true; }
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Follow(QWidget* owner);
    // Tells the application once that the workbook is closed.
    void Detach();

    SpreadsheetWorkbook* book_;
    std::weak_ptr<SpreadsheetApplication> application_;
    QPointer<QWidget> owner_;
};

}  // namespace gantrix::spreadsheet
