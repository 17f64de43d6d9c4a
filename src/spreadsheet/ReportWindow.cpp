// SPDX-License-Identifier: Apache-2.0
#include "spreadsheet/ReportWindow.h"

#include <QAbstractTextDocumentLayout>
#include <QDate>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPushButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QTextBlock>
#include <QTextDocument>
#include <QVBoxLayout>
#include <algorithm>
#include <exception>

#include "common/qt/FormControls.h"
#include "report/ParameterReport.h"
#include "report/XlsxExport.h"
#include "spreadsheet/SpreadsheetApplication.h"
#include "store/ProjectAccess.h"

namespace gantrix::spreadsheet {
namespace {

// A sheet as a read-only grid: titles and notes across the table, headings shaded.
QTableWidget* SheetTable(const Sheet& sheet, QWidget* parent) {
    const int columns = std::max(sheet.ColumnCount(), 1);
    auto* table = new QTableWidget(static_cast<int>(sheet.rows.size()), columns, parent);
    table->setObjectName(Q(sheet.name));
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->horizontalHeader()->hide();
    table->verticalHeader()->hide();
    table->setShowGrid(false);
    table->setWordWrap(false);
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 8);
    QFont bold = table->font();
    bold.setBold(true);
    QFont title = bold;
    title.setPointSizeF(bold.pointSizeF() * 1.15);
    QFont note = table->font();
    note.setItalic(true);
    for (int r = 0; r < static_cast<int>(sheet.rows.size()); ++r) {
        const SheetRow& row = sheet.rows[static_cast<std::size_t>(r)];
        const bool across = row.kind == RowKind::Title || row.kind == RowKind::Note;
        if (across && columns > 1) table->setSpan(r, 0, 1, columns);
        if (row.kind == RowKind::Blank) table->setRowHeight(r, table->fontMetrics().height() / 2);
        for (int c = 0; c < static_cast<int>(row.cells.size()); ++c) {
            auto* item = new QTableWidgetItem(Q(row.cells[static_cast<std::size_t>(c)]));
            if (row.kind == RowKind::Title) item->setFont(title);
            if (row.kind == RowKind::Note) item->setFont(note);
            if (row.kind == RowKind::Header) {
                item->setFont(bold);
                item->setBackground(QColor(0xE4, 0xE4, 0xE4));
            }
            table->setItem(r, c, item);
        }
    }
    table->resizeColumnsToContents();
    // Spanning titles and notes do not widen the first column.
    for (int c = 0; c < columns; ++c) {
        int width = 0;
        for (int r = 0; r < table->rowCount(); ++r) {
            const RowKind kind = sheet.rows[static_cast<std::size_t>(r)].kind;
            if (kind == RowKind::Title || kind == RowKind::Note) continue;
            if (const QTableWidgetItem* item = table->item(r, c)) {
                width = std::max(width, table->fontMetrics().horizontalAdvance(item->text()));
            }
        }
        table->setColumnWidth(c, std::max(width + 24, 40));
    }
    return table;
}

}  // namespace

ReportWindow::ReportWindow(SpreadsheetWorkbook& book,
                           std::weak_ptr<SpreadsheetApplication> application)
    : WorkbookWindow(book, std::move(application)) {
    Sheets = new QTabWidget(this);
    Sheets->setObjectName("Sheets");
    Print = new QPushButton("Print...", this);
    Print->setObjectName("Print");
    PrintPreview = new QPushButton("Print Preview...", this);
    PrintPreview->setObjectName("PrintPreview");
    SaveXlsx = new QPushButton("Save as .xlsx...", this);
    SaveXlsx->setObjectName("SaveXlsx");
    connect(Print, &QPushButton::clicked, this, &ReportWindow::PrintClicked);
    connect(PrintPreview, &QPushButton::clicked, this, &ReportWindow::PrintPreviewClicked);
    connect(SaveXlsx, &QPushButton::clicked, this, &ReportWindow::SaveXlsxClicked);

    Heading->setText(
        "The parameter report appears when the workbook's macro auto_open runs: it reads the "
        "parameter file named on the sheet TEMP.");
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(Print);
    buttons->addWidget(PrintPreview);
    buttons->addWidget(SaveXlsx);
    buttons->addStretch();
    buttons->addWidget(Close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(Heading);
    layout->addWidget(Sheets, 1);
    layout->addWidget(Status);
    layout->addLayout(buttons);
    EnableOutput(false);
    resize(880, 600);
}

void ReportWindow::EnableOutput(bool enabled) {
    for (QPushButton* button : {Print, PrintPreview, SaveXlsx}) button->setEnabled(enabled);
}

void ReportWindow::AutoOpen() {
    if (Book() == nullptr) return;
    const std::string cpu = Book()->TempCell(2, 1);
    const std::string file = Book()->TempCell(3, 1);
    const auto slash = file.find_last_of('/');
    const std::string projectDir = slash == std::string::npos ? "" : file.substr(0, slash + 1);
    projectDir_ = Q(projectDir);
    cpu_ = Q(cpu);
    title_ = "Parameter setting data";
    subtitle_ = "CPU type " + Q(cpu) + ", project " + projectDir_;
    try {
        sheets_ = BuildParameterReport(LoadParameterImage(file), ReportContext(cpu, projectDir));
    } catch (const std::exception& error) {
        sheets_.clear();
        Heading->setText("The parameter report cannot be shown: " + Q(error.what()));
        ShowSheets();
        EnableOutput(false);
        return;
    }
    Book()->ReplaceSheets(sheets_);
    Heading->setText("<b>" + title_.toHtmlEscaped() + "</b><br>" + subtitle_.toHtmlEscaped());
    ShowSheets();
    EnableOutput(true);
}

void ReportWindow::ShowSheets() {
    while (Sheets->count() > 0) {
        QWidget* page = Sheets->widget(0);
        Sheets->removeTab(0);
        delete page;
    }
    for (const Sheet& sheet : sheets_) Sheets->addTab(SheetTable(sheet, Sheets), Q(sheet.name));
}

QString ReportWindow::ReportHtml() const {
    return Q(SheetsToHtml(sheets_, title_.toStdString(), subtitle_.toStdString()));
}

struct ReportWindow::Pages {
    QFont font;  // of the header and footer
    qreal line = 0;
    QRectF body;  // the part of each page the document takes
    QStringList sheets;
};

ReportWindow::Pages ReportWindow::LayOut(QTextDocument& document, QPrinter& printer) const {
    QFont font = document.defaultFont();
    font.setPointSize(10);
    document.setDefaultFont(font);
    document.setHtml(ReportHtml());
    // Laid out for the printer, so that its lengths are the printer's pixels.
    document.documentLayout()->setPaintDevice(&printer);
    Pages pages;
    pages.font = font;
    pages.font.setPointSize(8);
    pages.line = QFontMetricsF(pages.font, &printer).height();
    // Above and below the text of a page, a band of a line of text and a line's gap.
    pages.body = QRectF(0, 2 * pages.line, printer.width(), printer.height() - 4 * pages.line);
    document.setPageSize(pages.body.size());
    // Each sheet begins with its name as a second-level heading.
    for (int page = 0; page < document.pageCount(); ++page) pages.sheets << QString();
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() != 2) continue;
        const qreal top = document.documentLayout()->blockBoundingRect(block).top();
        const int page = static_cast<int>(top / pages.body.height());
        if (page < pages.sheets.size() && pages.sheets[page].isEmpty())
            pages.sheets[page] = block.text();
    }
    for (int page = 1; page < pages.sheets.size(); ++page) {
        if (pages.sheets[page].isEmpty()) pages.sheets[page] = pages.sheets[page - 1];
    }
    return pages;
}

QStringList ReportWindow::PageSheets(QPrinter& printer) const {
    QTextDocument document;
    return LayOut(document, printer).sheets;
}

void ReportWindow::PrintTo(QPrinter& printer) const {
    QTextDocument document;
    const Pages pages = LayOut(document, printer);
    QPainter painter;
    if (!painter.begin(&printer)) return;
    const QFontMetricsF metrics(pages.font, &printer);
    const qreal width = printer.width();
    const qreal line = pages.line;
    const QRectF& body = pages.body;
    const int count = static_cast<int>(pages.sheets.size());
    const QString printed = "Printed " + QDate::currentDate().toString(Qt::ISODate);
    const QString cpu = "CPU type " + cpu_;
    const QString project = metrics.elidedText("Project " + projectDir_, Qt::ElideMiddle,
                                               width - metrics.horizontalAdvance(cpu) - 2 * line);
    QPen rule(Qt::black);
    rule.setWidthF(printer.resolution() / 144.0);  // half a point
    for (int page = 0; page < count; ++page) {
        if (page > 0) printer.newPage();
        painter.setFont(pages.font);
        painter.setPen(rule);
        const QRectF header(0, 0, width, line);
        const QRectF footer(0, body.bottom() + line, width, line);
        painter.drawText(header, Qt::AlignLeft | Qt::AlignVCenter, project);
        painter.drawText(header, Qt::AlignRight | Qt::AlignVCenter, cpu);
        painter.drawLine(QPointF(0, 1.4 * line), QPointF(width, 1.4 * line));
        painter.drawLine(QPointF(0, footer.top() - 0.4 * line),
                         QPointF(width, footer.top() - 0.4 * line));
        painter.drawText(footer, Qt::AlignLeft | Qt::AlignVCenter, printed);
        painter.drawText(footer, Qt::AlignHCenter | Qt::AlignVCenter, pages.sheets[page]);
        painter.drawText(footer, Qt::AlignRight | Qt::AlignVCenter,
                         QString("page %1 of %2").arg(page + 1).arg(count));
        painter.save();
        painter.translate(0, body.top() - page * body.height());
        QAbstractTextDocumentLayout::PaintContext context;
        context.clip = QRectF(0, page * body.height(), width, body.height());
        context.palette.setColor(QPalette::Text, Qt::black);
        painter.setClipRect(context.clip);
        document.documentLayout()->draw(&painter, context);
        painter.restore();
    }
}

void ReportWindow::SetUpPrinter(QPrinter& printer) const {
    printer.setDocName(windowTitle());
    // A sheet with a wide table (the M-NET/MINI modules) prints across the long side of the
    // paper, so that its headings keep their words whole; rows of hexadecimal bytes are
    // narrow, however many.
    const bool wide = std::any_of(sheets_.begin(), sheets_.end(), [](const Sheet& sheet) {
        return std::any_of(sheet.rows.begin(), sheet.rows.end(),
                           [](const SheetRow& row) { return !row.hex && row.cells.size() > 8; });
    });
    printer.setPageOrientation(wide ? QPageLayout::Landscape : QPageLayout::Portrait);
    printer.setPageMargins(QMarginsF(15, 12, 15, 12), QPageLayout::Millimeter);
}

void ReportWindow::PrintClicked() {
    QPrinter printer(QPrinter::HighResolution);
    SetUpPrinter(printer);
    QPrintDialog dialog(&printer, this);
    dialog.setObjectName("PrintDialog");
    if (dialog.exec() == QDialog::Accepted) PrintTo(printer);
}

void ReportWindow::PrintPreviewClicked() {
    QPrinter printer(QPrinter::HighResolution);
    SetUpPrinter(printer);
    QPrintPreviewDialog preview(&printer, this);
    preview.setObjectName("PrintPreviewDialog");
    connect(&preview, &QPrintPreviewDialog::paintRequested, this,
            [this](QPrinter* target) { PrintTo(*target); });
    preview.exec();
}

bool ReportWindow::SaveXlsxTo(const QString& path) {
    try {
        WriteXlsx(sheets_, path.toStdString());
    } catch (const std::exception& error) {
        Status->setText(Q(error.what()));
        QMessageBox::warning(this, windowTitle(), Q(error.what()));
        return false;
    }
    Status->setText("Saved " + path);
    return true;
}

void ReportWindow::SaveXlsxClicked() {
    QString suggested = Q(Book() != nullptr ? Book()->Name() : "parameters");
    if (suggested.endsWith(".xls", Qt::CaseInsensitive)) suggested.chop(4);
    QString path = QFileDialog::getSaveFileName(
        this, "Save as .xlsx", projectDir_ + suggested + ".xlsx", "Spreadsheet (*.xlsx)");
    if (path.isEmpty()) return;
    if (!path.endsWith(".xlsx", Qt::CaseInsensitive)) path += ".xlsx";
    SaveXlsxTo(path);
}

}  // namespace gantrix::spreadsheet
