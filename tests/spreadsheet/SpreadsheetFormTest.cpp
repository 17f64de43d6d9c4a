// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <QApplication>
#include <QDate>
#include <QDialog>
#include <QLabel>
#include <QLayout>
#include <QMessageBox>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <cstdlib>
#include <sstream>
#include <tuple>

#include "print/PrintRules.h"
#include "report/NetworkBytes.h"
#include "spreadsheet/NetworkWindow.h"
#include "spreadsheet/ReportWindow.h"
#include "spreadsheet/SpreadsheetApplication.h"
#include "store/ParameterFiles.h"
#include "support/ParameterModeRun.h"

namespace gantrix {
namespace {

using spreadsheet::NetworkWindow;
using spreadsheet::ReportWindow;
using spreadsheet::SpreadsheetWorkbook;
using Cells = std::vector<std::tuple<int, int, std::string>>;

std::shared_ptr<excel::Application> StartApplication() {
    spreadsheet::RegisterSpreadsheetApplication();  // another test may have replaced it
    return excel::CreateObject("excel.application");
}

// What the printing does: copy the template in, open, activate, fill TEMP, run, show.
SpreadsheetWorkbook* OpenAsPrinting(excel::Application& application, const test::TempDir& project,
                                    const std::string& file, const Cells& cells) {
    const std::string path = project.File("dproject" + file);
    CopyFileAtomically(GetTemplatePath() + file, path);
    excel::Workbook* book = application.Open(path);
    if (book == nullptr) return nullptr;
    book->Activate();
    for (const auto& [row, column, value] : cells)
        book->Worksheets().back()->SetCell(row, column, value);
    application.Run("auto_open");
    application.SetVisible(true);
    return dynamic_cast<SpreadsheetWorkbook*>(book);
}

// Runs body inside the modal loop of dialog, which it is to close (else a timer does).
void InModalLoop(QDialog& dialog, const std::function<void()>& body) {
    QTimer::singleShot(0, &dialog, body);
    QTimer::singleShot(10000, &dialog, [&dialog] { dialog.reject(); });
    dialog.exec();
}

// From Open to Close, opened from the network menu above the menu: the window takes clicks
// while both wait in their modal loops, and outlives the modal window that opened it.
TEST(SpreadsheetApplication, WorkbookLivesUntilItsWindowCloses) {
    test::TempProject project("A3 ");
    auto application = StartApplication();
    ASSERT_NE(application, nullptr);
    EXPECT_EQ(application->Open(project.File("missing.xls")), nullptr);
    EXPECT_EQ(application->Open(project.File("param.tmp")), nullptr);  // not a workbook
    project.Write("param.$$p", std::vector<uint8_t>(100, 0));
    QDialog menu;
    auto* networkMenu = new QDialog(&menu);
    ReportWindow* window = nullptr;
    InModalLoop(menu, [&] {
        InModalLoop(*networkMenu, [&] {
            SpreadsheetWorkbook* book =
                OpenAsPrinting(*application, project, "Parameter mode.xls",
                               {{1, 1, "Param"}, {2, 1, "A3 "}, {3, 1, project.File("param.$$p")}});
            window = dynamic_cast<ReportWindow*>(book ? book->Window() : nullptr);
            networkMenu->accept();
        });
        delete networkMenu;
        ASSERT_NE(window, nullptr);
        EXPECT_EQ(window->Owner(), &menu);
        EXPECT_TRUE(window->Heading->text().contains("100 bytes"));
        EXPECT_FALSE(window->Print->isEnabled());
        CopyFileAtomically(project.File("param.tmp"), project.File("param.$$p"));
        SpreadsheetWorkbook* book =
            OpenAsPrinting(*application, project, "Parameter mode.xls",
                           {{1, 1, "Param"}, {2, 1, "A3 "}, {3, 1, project.File("param.$$p")}});
        ASSERT_EQ(application->Workbooks(), std::vector<excel::Workbook*>{book});  // the same
        EXPECT_EQ(book->Name(), "dprojectParameter mode.xls");
        EXPECT_TRUE(window->Print->isEnabled());
        // The tables' titles, and they alone, stand out: set larger than the sheet's text
        // (titles are the rows across the sheet that are not notes, which are in italics).
        const auto* memory = window->findChild<QTableWidget*>("Memory Capacity Setting");
        ASSERT_NE(memory, nullptr);
        int titles = 0;
        for (int r = 0; r < memory->rowCount(); ++r) {
            const QTableWidgetItem* item = memory->item(r, 0);
            if (item == nullptr) continue;
            const bool title = memory->columnSpan(r, 0) > 1 && !item->font().italic();
            titles += title;
            EXPECT_EQ(item->font().pointSizeF() > memory->font().pointSizeF(), title) << r;
        }
        EXPECT_GT(titles, 0);
        const std::vector<excel::Worksheet*> sheets = book->Worksheets();
        ASSERT_EQ(sheets.size(), 7u);
        EXPECT_EQ(sheets[0]->CellText(1, 1), "CPU type A3 ");
        EXPECT_EQ(sheets[6]->Name(), "TEMP");
        EXPECT_EQ(sheets[6]->CellText(1, 1), "Param");
        // Printed, each sheet begins a page of its own, and every page names the project, the
        // CPU type, the day, its sheet (a sheet's later pages too) and its number.
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(QString::fromStdString(project.File("report.pdf")));
        window->PrintTo(printer);
        const QStringList sheetOf = window->PageSheets(printer);
        QStringList order = sheetOf;
        order.erase(std::unique(order.begin(), order.end()), order.end());
        EXPECT_EQ(order.join("|").toStdString(),
                  "Memory Capacity Setting|Latch Range Setting|Timer/Counter Setting|I/O "
                  "Assignment|Supplementary Functions|Network/Link Setting");
        ASSERT_EQ(std::system(("pdftotext '" + project.File("report.pdf") + "'").c_str()), 0);
        const std::vector<uint8_t> text = project.Read("report.txt");
        std::istringstream pdf(std::string(text.begin(), text.end()));
        std::vector<std::string> pages;
        for (std::string page; std::getline(pdf >> std::ws, page, '\f');) pages.push_back(page);
        ASSERT_EQ(pages.size(), static_cast<std::size_t>(sheetOf.size()));
        const std::string today = QDate::currentDate().toString(Qt::ISODate).toStdString();
        for (std::size_t p = 0; p < pages.size(); ++p)
            for (const std::string& part :
                 {"Project " + project.Path(), std::string("CPU type A3"), "Printed " + today,
                  sheetOf[static_cast<int>(p)].toStdString(),
                  "page " + std::to_string(p + 1) + " of " + std::to_string(pages.size())})
                EXPECT_NE(pages[p].find(part), std::string::npos) << p << part;
        EXPECT_NE(pages.front().find("Parameter setting data"), std::string::npos);
        EXPECT_NE(pages.back().find("3040"), std::string::npos);  // the last row of bytes
        // The preview shows those pages.
        int previewed = -1;
        QTimer::singleShot(50, window, [&previewed] {
            QWidget* preview = QApplication::activeModalWidget();
            if (preview == nullptr) return;
            if (auto* shown = preview->findChild<QPrintPreviewWidget*>())
                previewed = shown->pageCount();
            static_cast<QDialog*>(preview)->reject();
        });
        window->PrintPreview->click();
        EXPECT_EQ(previewed, sheetOf.size());
        EXPECT_TRUE(window->SaveXlsxTo(QString::fromStdString(project.File("report.xlsx"))));
        EXPECT_TRUE(window->Status->text().startsWith("Saved ") && project.Exists("report.xlsx"));
        // A workbook that cannot be written is a warning naming it, kept in the status line.
        QString warned;
        QTimer::singleShot(50, window, [&warned] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
                warned = box->text(), box->accept();
        });
        const QString nowhere = QString::fromStdString(project.File("missing/report.xlsx"));
        EXPECT_FALSE(window->SaveXlsxTo(nowhere));
        EXPECT_TRUE(warned.contains(nowhere)) << warned.toStdString();
        EXPECT_EQ(window->Status->text().toStdString(), warned.toStdString());
        application->SetWindowState(excel::kWindowMinimized);
        EXPECT_EQ(application->WindowState(), excel::kWindowMinimized);
        application->SetWindowState(excel::kWindowNormal);
        EXPECT_EQ(application->WindowState(), excel::kWindowNormal);
        const QPoint close = window->Close->mapTo(window, window->Close->rect().center());
        QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, close);
        EXPECT_TRUE(application->Workbooks().empty());
        menu.accept();
    });
    application.reset();  // nothing is left running once the last holder lets go
    EXPECT_EQ(excel::GetObject("excel.application"), nullptr);
    QApplication::processEvents();
}

TEST(SpreadsheetNetwork, EditedBytesGoIntoTheWorkingFile) {
    test::TempProject project("A3A");
    CopyFileAtomically(project.File("param.tmp"), project.File("param.$$$"));
    auto application = StartApplication();
    SpreadsheetWorkbook* book = OpenAsPrinting(
        *application, project, "MORNET2.xls",
        {{29, 1, "NetParam"}, {29, 2, GetAppPath()}, {30, 2, ""}, {31, 2, "A3A"}, {32, 2, "2"}});
    auto* window = dynamic_cast<NetworkWindow*>(book ? book->Window() : nullptr);
    ASSERT_NE(window, nullptr);
    // Without a project directory there is nothing to show.
    EXPECT_TRUE(window->CellOf(1030)->text().isEmpty());
    EXPECT_TRUE(window->Status->text().contains("B30"));
    book->FindSheet("TEMP")->SetCell(30, 2, project.Path());
    application->Run("AUTO_OPEN");
    std::vector<uint8_t> file = project.Read("param.$$$");
    EXPECT_EQ(window->CellOf(1030)->text().toStdString(), ByteText(file[1030]));
    EXPECT_FALSE(window->CellOf(1071)->flags() & Qt::ItemIsEditable);
    window->CellOf(1030)->setText("5a");
    EXPECT_TRUE(window->Status->text().startsWith("1 changed byte"));
    window->layout()->activate();  // the message stands under the byte tables
    EXPECT_GT(window->Status->geometry().top(), window->Ranges->geometry().bottom());
    window->CellOf(1031)->setText("G");  // refused: the byte keeps its value
    EXPECT_EQ(window->CellOf(1030)->text(), "5A");
    EXPECT_EQ(window->CellOf(1031)->text().toStdString(), ByteText(file[1031]));
    EXPECT_TRUE(window->Status->text().contains("00 to FF"));
    EXPECT_EQ(window->Edits(), (std::map<int, uint8_t>{{1030, 0x5A}}));
    // The sheet holds the bytes too: its first row of the block starts at 1024.
    EXPECT_EQ(book->FindSheet("MORNET(II) mode")->CellText(3, 1), "1024");
    EXPECT_EQ(book->FindSheet("MORNET(II) mode")->CellText(3, 1 + 1 + 6), "5A");
    // Rewritten under the window outside the bytes shown: Save keeps those bytes. Rewritten
    // in them: brought to the front, the window shows the file as it is; with an edit made
    // before, Save asks, and Keep saves the edit over the new bytes.
    file[64] = 0x42;
    project.Write("param.$$$", file);
    window->Save->click();
    file = project.Read("param.$$$");
    EXPECT_TRUE(file[64] == 0x42 && file[1030] == 0x5A && window->Edits().empty());
    EXPECT_EQ(
        window->Status->text(),
        QString("Saved 1 byte(s) into %1.").arg(QString::fromStdString(project.File("param.$$$"))));
    file[1031] = 0x77;
    project.Write("param.$$$", file);
    book->Activate();
    EXPECT_EQ(window->CellOf(1031)->text(), "77");
    window->CellOf(1032)->setText("01");
    file[1031] = 0x78;
    project.Write("param.$$$", file);
    QString asked;
    QTimer::singleShot(50, [&asked] {
        if (QWidget* box = QApplication::activeModalWidget())
            test::ChildAs<QPushButton>(box, "Keep")->click(), asked = box->objectName();
    });
    window->Save->click();
    file = project.Read("param.$$$");
    EXPECT_TRUE(asked == "FileChanged" && file[1031] == 0x78 && file[1032] == 1);
    // Closing with a change not saved asks; Save writes it, then the workbook closes.
    window->CellOf(2560)->setText("2");
    QTimer::singleShot(50, [] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
            box->button(QMessageBox::Save)->click();
    });
    window->Close->click();
    EXPECT_EQ(project.Read("param.$$$")[2560], 2);
    EXPECT_TRUE(application->Workbooks().empty());
    QApplication::processEvents();
}

// The menu's item 6 asks, then opens the report beside the menu; the menu does not end while
// it is open, and the hand-over file goes with the run.
TEST(SpreadsheetEndToEnd, TheMenuWaitsForTheReportWindowThenSaves) {
    test::TempProject project("A3 ");
    test::ModalDriver driver;
    driver
        .On("frmMenu",
            [](QWidget* menu) { test::PressKey(test::Child(menu, "MenuItem(6)"), Qt::Key_Return); })
        .Message(24, "Yes")
        .On("frmMenu", [](QWidget* menu) { test::PressKey(menu, Qt::Key_End); })
        .Message(15, "OK")  // not while the report is open
        .On("frmMenu", [](QWidget* menu) {
            QWidget* report = nullptr;
            for (QWidget* w : QApplication::topLevelWidgets())
                if (w->objectName() == "frmSpreadsheet" && w->isVisible()) report = w;
            ASSERT_NE(report, nullptr);
            test::ChildAs<QPushButton>(report, "Close")->click();
            test::PressKey(menu, Qt::Key_End);
        });
    const test::RunOutcome run = test::RunParameterMode(project, driver);
    EXPECT_EQ(run.result, 1) << run.error;
    EXPECT_EQ(driver.messages, (std::vector<int>{24, 15}));
    EXPECT_FALSE(project.Exists("param.$$p"));
}

}  // namespace
}  // namespace gantrix
