// The spreadsheet application's windows, driven through the automation model as the printing
// drives them: the report printed to PDF and read back, the workbook's life from Open to the
// window's Close, its window usable under modal windows, and the network bytes edited.

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPrinter>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <cstdio>
#include <tuple>

#include "platform/excel/Excel.h"
#include "report/NetworkBytes.h"
#include "report/ParameterReport.h"
#include "report/ReportTestSupport.h"
#include "spreadsheet/NetworkWindow.h"
#include "spreadsheet/ReportWindow.h"
#include "spreadsheet/SpreadsheetApplication.h"
#include "store/ParameterFiles.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using spreadsheet::NetworkWindow;
using spreadsheet::ReportWindow;
using spreadsheet::SpreadsheetWorkbook;
using Cells = std::vector<std::tuple<int, int, std::string>>;

std::shared_ptr<excel::Application> StartApplication() {
    // Another test may have put its own application under the identifier.
    spreadsheet::RegisterSpreadsheetApplication();
    return excel::CreateObject("excel.application");
}

// What the printing does: the template copied into the project, opened, activated, the
// "TEMP" cells written, "auto_open" run, the application made visible.
SpreadsheetWorkbook* OpenAsPrinting(excel::Application& application, const test::TempDir& project,
                                    const std::string& file, const Cells& cells) {
    const std::string path = project.File("dproject" + file);
    CopyFileAtomically(GetAppPath() + file, path);
    excel::Workbook* book = application.Open(path);
    if (book == nullptr) return nullptr;
    book->Activate();
    for (excel::Worksheet* sheet : book->Worksheets()) {
        if (sheet->Name() != "TEMP") continue;
        for (const auto& [row, column, value] : cells) sheet->SetCell(row, column, value);
    }
    application.Run("auto_open");
    application.SetVisible(true);
    return dynamic_cast<SpreadsheetWorkbook*>(book);
}

SpreadsheetWorkbook* OpenParameterBook(excel::Application& application,
                                       const test::TempProject& project,
                                       const ParameterImage& image) {
    project.Write("param.$$p", {image.bytes().begin(), image.bytes().end()});
    return OpenAsPrinting(application, project, "Parameter mode.xls",
                          {{1, 1, "Param"},
                           {2, 1, project.Cpu()},
                           {3, 1, project.File("param.$$p")},
                           {4, 1, project.File("temp.dat")},
                           {10, 1, GetAppPath()}});
}

// The text of the report's PDF, page by page.
std::vector<std::string> PdfPages(const ReportWindow& window, const test::TempDir& dir) {
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(QString::fromStdString(dir.File("report.pdf")));
    window.PrintTo(printer);
    std::string text;
    FILE* pipe = ::popen(("pdftotext -layout '" + dir.File("report.pdf") + "' -").c_str(), "r");
    if (pipe == nullptr) return {};
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        text.append(buffer, n);
    ::pclose(pipe);
    std::vector<std::string> pages;
    std::size_t start = 0;
    for (std::size_t end; (end = text.find('\f', start)) != std::string::npos; start = end + 1) {
        pages.push_back(text.substr(start, end - start));
    }
    return pages;
}

// Each sheet begins a page of the PDF, which shows the sheet's values.
TEST(SpreadsheetReport, PrintsEverySheetOnItsOwnPages) {
    using Expected = std::vector<std::pair<std::string, std::vector<std::string>>>;
    const Expected defaults = {
        {"Memory Capacity Setting", {"CPU type A3U", "Main", "6 K steps", "Memory Capacity"}},
        {"Latch Range Setting", {"L", "1000", "2047", "not latched"}},
        {"Timer/Counter Setting",
         {"T0-255", "256", "Interrupt Counter", "No counter counts interrupts."}},
        {"I/O Assignment", {"No slot is assigned."}},
        {"Supplementary Functions", {"Before operation", "Fuse blown", "Stop"}},
        {"M-NET/MINI Auto-refresh Setting", {"Number of Modules", "No module is set."}}};
    const Expected edited = {
        {"Memory Capacity Setting", {"2 K steps", "8 K bytes (448Points)"}},
        {"Latch Range Setting", {"D", "100", "199"}},
        {"Timer/Counter Setting", {"I3", "C227"}},
        {"I/O Assignment", {"X16", "Input module", "AX41", "Y32", "Output module"}},
        {"Supplementary Functions", {"RUN", "X1F"}},
        {"M-NET/MINI Auto-refresh Setting", {"1A0", "X100", "M9016", "D9010", "OFF"}}};
    for (const bool edit : {false, true}) {
        SCOPED_TRACE(edit ? "edited" : "default");
        test::TempProject project("A3U");
        ParameterImage image = project.ParamTmp();
        if (edit) image = test::EditedImage(image, ReportContext("A3U", project.Path()));
        const auto application = StartApplication();
        SpreadsheetWorkbook* book = OpenParameterBook(*application, project, image);
        ASSERT_NE(book, nullptr);
        auto* window = dynamic_cast<ReportWindow*>(book->Window());
        ASSERT_NE(window, nullptr);
        EXPECT_TRUE(window->Print->isEnabled());

        const std::vector<std::string> pages = PdfPages(*window, project);
        std::size_t page = 0;
        for (const auto& [sheet, texts] : edit ? edited : defaults) {
            SCOPED_TRACE(sheet);
            while (page < pages.size() && pages[page].find(sheet) == std::string::npos) ++page;
            ASSERT_LT(page, pages.size());
            // The sheet's heading is the first line of its page (the title page aside).
            if (page > 0) {
                EXPECT_EQ(pages[page].find_first_not_of(" \n"), pages[page].find(sheet));
            }
            for (const std::string& text : texts) {
                EXPECT_NE(pages[page].find(text), std::string::npos) << text;
            }
        }
        window->Close->click();
        QApplication::processEvents();
    }
}

// From Open to the window's Close, as the printing and the menu's check see the workbook.
TEST(SpreadsheetApplication, WorkbookLivesUntilItsWindowCloses) {
    test::TempProject project("A3 ");
    auto application = StartApplication();
    ASSERT_NE(application, nullptr);
    EXPECT_EQ(excel::GetObject("excel.application"), application);
    EXPECT_EQ(application->Open(project.File("missing.xls")), nullptr);
    EXPECT_EQ(application->Open(project.File("param.tmp")), nullptr);  // not a workbook

    project.Write("param.$$p", std::vector<uint8_t>(100, 0));
    SpreadsheetWorkbook* book =
        OpenAsPrinting(*application, project, "Parameter mode.xls",
                       {{1, 1, "Param"}, {2, 1, "A3 "}, {3, 1, project.File("param.$$p")}});
    ASSERT_NE(book, nullptr);
    auto* window = dynamic_cast<ReportWindow*>(book->Window());
    ASSERT_NE(window, nullptr);
    // A parameter file the report cannot read: said in the window, nothing to print.
    EXPECT_TRUE(window->Heading->text().contains("100 bytes"));
    EXPECT_FALSE(window->Print->isEnabled());

    const ParameterImage image = project.ParamTmp();
    book = OpenParameterBook(*application, project, image);  // the same file: the same book
    ASSERT_EQ(application->Workbooks(), std::vector<excel::Workbook*>{book});
    EXPECT_EQ(book->Name(), "dprojectParameter mode.xls");
    EXPECT_EQ(window->objectName(), "frmSpreadsheet");
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(window->Print->isEnabled());
    EXPECT_TRUE(window->Heading->text().contains(QString::fromStdString(project.Path())));
    // The report's sheets, then TEMP, each readable through the automation model.
    const std::vector<excel::Worksheet*> sheets = book->Worksheets();
    ASSERT_EQ(sheets.size(), 6u);
    EXPECT_EQ(sheets[0]->Name(), "Memory Capacity Setting");
    EXPECT_EQ(sheets[0]->CellText(1, 1), "CPU type A3 ");
    EXPECT_EQ(sheets[5]->Name(), "TEMP");
    EXPECT_EQ(sheets[5]->CellText(1, 1), "Param");
    EXPECT_EQ(window->Sheets->count(), 5);

    application->SetWindowState(excel::kWindowMinimized);
    EXPECT_EQ(application->WindowState(), excel::kWindowMinimized);
    application->SetWindowState(excel::kWindowNormal);
    EXPECT_EQ(application->WindowState(), excel::kWindowNormal);

    const QString xlsx = QString::fromStdString(project.File("report.xlsx"));
    EXPECT_TRUE(window->SaveXlsxTo(xlsx));
    EXPECT_TRUE(project.Exists("report.xlsx"));

    QTest::mouseClick(window->Close, Qt::LeftButton);
    EXPECT_TRUE(application->Workbooks().empty());
    // Nothing is left running once the last holder lets go.
    application.reset();
    EXPECT_EQ(excel::GetObject("excel.application"), nullptr);
    QApplication::processEvents();
}

// Runs body inside the modal loop of a dialog, which it is to close; a test that fails to
// close it does not hang.
void InModalLoop(QDialog& dialog, const std::function<void()>& body) {
    QTimer::singleShot(0, &dialog, body);
    QTimer::singleShot(10000, &dialog, [&dialog] { dialog.reject(); });
    dialog.exec();
}

// The workbook opens from a modal window (the menu or the network menu above it): its window
// takes clicks meanwhile, and outlives the modal window that opened it.
TEST(SpreadsheetApplication, WindowWorksAboveTheModalWindowsAndOutlivesThem) {
    test::TempProject project("A3U");
    auto application = StartApplication();
    QDialog menu;
    auto* networkMenu = new QDialog(&menu);
    SpreadsheetWorkbook* book = nullptr;
    InModalLoop(menu, [&] {
        InModalLoop(*networkMenu, [&] {
            book = OpenParameterBook(*application, project, project.ParamTmp());
            ASSERT_NE(book, nullptr);
            EXPECT_EQ(book->Window()->Owner(), networkMenu);
            networkMenu->accept();
        });
        delete networkMenu;
        ASSERT_EQ(application->Workbooks().size(), 1u);
        spreadsheet::WorkbookWindow* window = book->Window();
        EXPECT_EQ(window->Owner(), &menu);
        EXPECT_TRUE(window->isVisible());
        // Through the window system, which drops the clicks on a window blocked by a modal one.
        const QPoint close = window->Close->mapTo(window, window->Close->rect().center());
        QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, close);
        EXPECT_TRUE(application->Workbooks().empty());
        menu.accept();
    });
    QApplication::processEvents();
}

// Answers the question that the window asks with button, from the event loop.
void Answer(QMessageBox::StandardButton button) {
    QTimer::singleShot(50, [button] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            box->button(button)->click();
        }
    });
}

TEST(SpreadsheetNetwork, EditedBytesGoIntoTheWorkingFile) {
    test::TempProject project("A3A");
    CopyFileAtomically(project.File("param.tmp"), project.File("param.$$$"));
    auto application = StartApplication();
    SpreadsheetWorkbook* book = OpenAsPrinting(*application, project, "MORNET2.xls",
                                               {{29, 1, "NetParam"},
                                                {29, 2, GetAppPath()},
                                                {30, 2, project.Path()},
                                                {31, 2, "A3A"},
                                                {32, 2, "2"}});
    ASSERT_NE(book, nullptr);
    auto* window = dynamic_cast<NetworkWindow*>(book->Window());
    ASSERT_NE(window, nullptr);
    std::vector<uint8_t> file = project.Read("param.$$$");
    EXPECT_EQ(window->CellOf(1030)->text().toStdString(), ByteText(file[1030]));
    EXPECT_FALSE(window->CellOf(1071)->flags() & Qt::ItemIsEditable);
    EXPECT_TRUE(window->CellOf(2560)->flags() & Qt::ItemIsEditable);
    // Without a project directory there is nothing to show.
    excel::Worksheet* temp = book->FindSheet("TEMP");
    temp->SetCell(30, 2, "");
    application->Run("auto_open");
    EXPECT_TRUE(window->CellOf(1030)->text().isEmpty());
    EXPECT_TRUE(window->Status->text().contains("B30"));
    temp->SetCell(30, 2, project.Path());
    application->Run("auto_open");

    window->CellOf(1030)->setText("5a");
    EXPECT_TRUE(window->Status->text().startsWith("1 changed byte"));
    window->CellOf(1031)->setText("G");  // refused: the byte keeps its value
    EXPECT_EQ(window->CellOf(1030)->text(), "5A");
    EXPECT_EQ(window->CellOf(1031)->text().toStdString(), ByteText(file[1031]));
    EXPECT_TRUE(window->Status->text().contains("00 to FF"));
    EXPECT_EQ(window->Edits(), (std::map<int, uint8_t>{{1030, 0x5A}}));
    // The sheet holds the bytes too: its first row of the block starts at 1024.
    excel::Worksheet* sheet = book->Worksheets()[0];
    EXPECT_EQ(sheet->Name(), "MORNET(II) mode");
    EXPECT_EQ(sheet->CellText(3, 1), "1024");
    EXPECT_EQ(sheet->CellText(3, 1 + 1 + 6), "5A");

    // Meanwhile the component rewrote the file; its bytes stay.
    file[64] = 0x42;
    project.Write("param.$$$", file);
    window->Save->click();
    file[1030] = 0x5A;
    EXPECT_EQ(project.Read("param.$$$"), file);
    EXPECT_TRUE(window->Edits().empty());

    // Closing with a change not saved asks; Save writes it, then the workbook closes.
    window->CellOf(2560)->setText("2");
    Answer(QMessageBox::Save);
    window->Close->click();
    file[2560] = 2;
    EXPECT_EQ(project.Read("param.$$$"), file);
    EXPECT_TRUE(application->Workbooks().empty());
    QApplication::processEvents();
}

}  // namespace
}  // namespace gantrix
